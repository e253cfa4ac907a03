#pragma once

#include <QTextBlock>

namespace tme {

/// Where the row of an outermost table begins that a block stands in, else where the block itself does: in the
/// document's coordinates, never above that of the block before. Lays the text out as far as that.
double TopInDocument(const QTextBlock& block);

/// The first block of which something may stand at or below a height. No more is laid out than about twice of what
/// stands above. To ask the layout what stands at a point would take it through the whole text, where that is between
/// two paragraphs.
QTextBlock FirstBlockBelow(const QTextDocument& document, double top);

}  // namespace tme
