#include "documents/rtf/RtfFieldInstruction.h"

#include <algorithm>
#include <iterator>

namespace tme::rtf {

std::string TakeArgument(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n"), text.size()));
  const bool is_quoted = text.starts_with('"');
  if (is_quoted) text.remove_prefix(1);
  const std::size_t end = std::min(text.find_first_of(is_quoted ? "\"" : " \t\n"), text.size());
  std::string argument;
  for (std::size_t i = 0; i < end; ++i) {
    if (is_quoted && text[i] == '\\' && i + 1 < end && text[i + 1] == '\\') ++i;
    argument += text[i];
  }
  text.remove_prefix(std::min(end + (is_quoted ? 1u : 0u), text.size()));
  return argument;
}

std::string FieldWord(std::string_view& instruction) {
  std::string word = TakeArgument(instruction);
  for (char& c : word)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return word;
}

bool IsActiveField(std::string_view word) {
  constexpr std::string_view kWords[] = {
      "ADDIN",       "AUTOTEXT",    "BARCODE", "CONTROL", "DATABASE",       "DDE",         "DDEAUTO",
      "EMBED",       "HTMLACTIVEX", "IMPORT",  "INCLUDE", "INCLUDEPICTURE", "INCLUDETEXT", "LINK",
      "MACROBUTTON", "PRINT",       "RD",      "SHAPE",   "SUBSCRIBER"};
  return std::ranges::find(kWords, word) != std::end(kWords);
}

std::string UrlOfInstruction(std::string_view instruction) {
  if (TakeArgument(instruction) != "HYPERLINK") return {};
  std::string url;
  std::string place;
  while (true) {
    instruction.remove_prefix(std::min(instruction.find_first_not_of(" \t\n"), instruction.size()));
    if (instruction.empty()) break;
    const bool is_quoted = instruction.starts_with('"');
    const std::string argument = TakeArgument(instruction);
    if (is_quoted || !argument.starts_with('\\')) {
      if (url.empty()) url = argument;
    } else if (argument == "\\l") {
      place = TakeArgument(instruction);
    } else if (argument == "\\o" || argument == "\\t") {
      TakeArgument(instruction);
    }
  }
  return place.empty() ? url : url + "#" + place;
}

}  // namespace tme::rtf
