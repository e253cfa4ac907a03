#include "documents/rtf/RtfPatch.h"

#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
void Patch::Append(std::string_view text) {
  if (text.empty()) return;
  const char first = text.front();
  if ((IsLetter(first) || IsDigit(first) || first == '-' || first == ' ') && EndsWithWord()) result_ += ' ';
  result_ += text;
}

/// Whether the last token is a control word without a blank behind it.
bool Patch::EndsWithWord() const {
  std::size_t at = result_.size();
  while (at > 0 && IsDigit(result_[at - 1])) --at;
  if (at > 0 && at < result_.size() && result_[at - 1] == '-') --at;
  const std::size_t letters = at;
  while (at > 0 && IsLetter(result_[at - 1])) --at;
  if (at == letters || at == 0 || result_[at - 1] != '\\') return false;
  std::size_t slashes = 0;
  while (slashes < at && result_[at - 1 - slashes] == '\\') ++slashes;
  return slashes % 2 == 1;
}

}  // namespace tme::rtf
