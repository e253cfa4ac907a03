#pragma once

#include <string>
#include <string_view>

namespace tme::rtf {

/// Takes a word or a quoted text off the front of a field's instruction.
std::string TakeArgument(std::string_view& text);

/// The same of its first word, in capitals.
std::string FieldWord(std::string_view& instruction);
/// Whether word processors fetch or run something for a field of this word.
bool IsActiveField(std::string_view word);

/// Where a HYPERLINK field leads, with "#" and the place in it; empty for other fields. `instruction`: the text of its
/// \fldinst group.
std::string UrlOfInstruction(std::string_view instruction);

}  // namespace tme::rtf
