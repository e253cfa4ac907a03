#include "windows/reg/RegDataFilter.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "documents/reg/RegData.h"
#include "documents/reg/RegHex.h"
#include "documents/search/TextMatcher.h"

namespace tme {
namespace {

/// What numbers, bytes and strings beside one another are shown with besides their own characters.
constexpr std::string_view kShownWith = "0123456789abcdefABCDEFxX(). ,";
/// And the marks of a file, which nearly all data have.
constexpr std::string_view kOfMarks = "dword:hexDWORDHEX()";
/// Letters that others beyond ASCII are a form of.
constexpr std::string_view kWithOtherForms = "kKsSiI";

bool TellsApart(char c) {
  const bool is_printable = c > ' ' && c < 0x7F;
  return is_printable && std::ranges::none_of(std::array{kShownWith, kOfMarks, kWithOtherForms},
                                              [c](std::string_view set) { return set.find(c) != set.npos; });
}

std::string InHex(char c, std::string_view digits) {
  const auto byte = static_cast<unsigned char>(c);
  return {digits[byte >> 4U], digits[byte & 0xFU]};
}

bool HasAny(std::string_view text, std::string_view characters) {
  return std::ranges::any_of(characters, [text](char c) { return text.find(c) != text.npos; });
}

}  // namespace

RegDataFilter::RegDataFilter(const TextMatcher* matcher) {
  const std::string_view wanted = matcher == nullptr ? std::string_view() : matcher->Wanted();
  const auto found = std::ranges::find_if(wanted, TellsApart);
  if (found == wanted.end()) return;
  const auto byte = static_cast<unsigned char>(*found);
  for (const int form : {std::tolower(byte), std::toupper(byte)}) {
    const char c = static_cast<char>(form);
    if (characters_.find(c) != characters_.npos) continue;
    characters_ += c;
    for (const std::string_view digits : {"0123456789abcdef", "0123456789ABCDEF"})
      if (const std::string hex = InHex(c, digits); std::ranges::find(in_hex_, hex) == in_hex_.end())
        in_hex_.push_back(hex);
  }
}

bool RegDataFilter::MayHold(std::string_view assignment) const {
  if (characters_.empty()) return true;
  const RegMark mark = RegMarkOf(assignment);
  // What is not understood is shown as it stands.
  if (mark.form == RegForm::None || HasAny(assignment, characters_)) return true;
  if (mark.form == RegForm::Dword) return false;
  const RegContent content = ContentOf(mark.type);
  if (content != RegContent::Text && content != RegContent::Strings) return false;
  const std::string_view digits = assignment.substr(mark.size);
  return std::ranges::any_of(in_hex_, [digits](const std::string& hex) { return digits.find(hex) != digits.npos; });
}

}  // namespace tme
