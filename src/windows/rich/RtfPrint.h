#pragma once

#include <string>

class QPrinter;
class QTextDocument;

namespace tme {

/// Prints page by page, on the printer's paper, inside the margins that the file's document controls name ("\\margl").
/// The text is laid out anew; its handlers for objects must be set.
void PrintRtf(QPrinter& printer, QTextDocument& text, const std::string& document_controls);

}  // namespace tme
