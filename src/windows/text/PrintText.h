#pragma once

#include <string_view>

class QFont;
class QPrinter;

namespace tme {

/// Prints UTF-8 text line by line, wrapped to the page's width inside its margins (of 2 cm at least), tabs at every
/// eighth column. Needs the memory of one page, whatever the text's length. A form feed begins a new page.
void PrintText(QPrinter& printer, std::string_view text, const QFont& font);

}  // namespace tme
