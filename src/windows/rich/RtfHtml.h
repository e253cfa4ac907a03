#pragma once

class QTextDocument;

namespace tme {

/// Gives a text that was made of marked-up text the sizes, names of fonts and indents outright that its formats only
/// describe, so that it is saved as it looks. points: of text without a size.
void ResolveHtml(QTextDocument& text, double points);

}  // namespace tme
