#include "documents/rtf/RtfPatch.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

/// Whether the last token is a control word without a blank behind it.
bool EndsWithWord(std::string_view bytes) {
  std::size_t at = bytes.size();
  while (at > 0 && IsDigit(bytes[at - 1])) --at;
  if (at > 0 && at < bytes.size() && bytes[at - 1] == '-') --at;
  const std::size_t letters = at;
  while (at > 0 && IsLetter(bytes[at - 1])) --at;
  if (at == letters || at == 0 || bytes[at - 1] != '\\') return false;
  std::size_t slashes = 0;
  while (slashes < at && bytes[at - 1 - slashes] == '\\') ++slashes;
  return slashes % 2 == 1;
}

void Append(std::string& result, std::string_view text) {
  if (text.empty()) return;
  const char first = text.front();
  if ((IsLetter(first) || IsDigit(first) || first == '-' || first == ' ') && EndsWithWord(result)) result += ' ';
  result += text;
}

}  // namespace

void Patch::Replace(std::uint32_t begin, std::uint32_t end, std::string_view text) {
  if (begin == end && text.empty()) return;
  texts_ += text;
  replacements_.push_back({begin, end, texts_.size()});
}

void Patch::TakeBack(std::size_t count) {
  replacements_.resize(count);
  texts_.resize(count > 0 ? replacements_.back().text_end : 0);
}

std::string Patch::Result() {
  std::vector<std::size_t> order(replacements_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {},
                           [this](std::size_t i) { return std::pair(replacements_[i].begin, replacements_[i].end); });
  std::string result;
  result.reserve(bytes_.size() + texts_.size() + replacements_.size());
  std::size_t taken = 0;
  for (const std::size_t i : order) {
    const Replacement& it = replacements_[i];
    const std::size_t text = i > 0 ? replacements_[i - 1].text_end : 0;
    Append(result, bytes_.substr(taken, it.begin - taken));
    Append(result, std::string_view(texts_).substr(text, it.text_end - text));
    taken = it.end;
  }
  Append(result, bytes_.substr(taken));
  return result;
}

}  // namespace tme::rtf
