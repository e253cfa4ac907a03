#include "documents/rtf/RtfColorTable.h"

#include <algorithm>

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxColors = 65'536;
constexpr std::size_t kMaxWords = 200;  // bytes of an entry

}  // namespace

void ColorTable::ReadWord(const ControlWord& word, std::int32_t value, std::string_view raw) {
  if (word.control != Control::ColorPart) {
    if (words_.size() + raw.size() <= kMaxWords) words_ += raw;
    return;
  }
  entry_ |= static_cast<std::uint32_t>(std::clamp(value, 0, 255)) << word.value;
  is_entry_given_ = true;
}

void ColorTable::ReadText(std::string_view text) {
  for (const char c : text) {
    if (c == ';') EndEntry();
  }
}

void ColorTable::EndEntry() {
  if (document_.colors.size() >= kMaxColors) {
    ++document_.losses.limits;
    return;
  }
  const bool is_first = document_.colors.empty();
  document_.colors.push_back(is_first ? 0 : entry_);
  if (!words_.empty() && !is_first) {
    document_.color_words.resize(document_.colors.size());
    document_.color_words.back().swap(words_);
  }
  words_.clear();
  if (is_first && is_entry_given_) first_ = entry_;
  entry_ = 0;
  is_entry_given_ = false;
}

/// A first colour that is given is a colour like the others; it goes on under another number.
void ColorTable::EndTable() {
  if (first_ == 0 || index_of_zero_ != 0) return;
  document_.colors.push_back(first_);
  index_of_zero_ = static_cast<std::uint32_t>(document_.colors.size() - 1);
}

std::uint32_t ColorTable::IndexOf(std::int32_t number) const {
  if (number <= 0) return index_of_zero_;
  return static_cast<std::size_t>(number) < document_.colors.size() ? static_cast<std::uint32_t>(number) : 0;
}

}  // namespace tme::rtf
