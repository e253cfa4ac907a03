#pragma once

#include <string>

class QPrinter;
class QTextDocument;

namespace tme {

class RtfTraces;

/// Prints page by page, on the printer's paper, inside the margins that the file's document controls name ("\\margl").
/// The text is laid out anew; its handlers for objects must be set.
/// traces: of the document, drawn over it; null for none.
void PrintRtf(QPrinter& printer, QTextDocument& text, const std::string& document_controls,
              RtfTraces* traces = nullptr);

}  // namespace tme
