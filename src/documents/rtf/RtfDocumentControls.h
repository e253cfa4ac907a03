#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfControls.h"

namespace tme::rtf {

/// Keeps control words of the whole document, in the order in which they first came, and those of its first section as
/// they came. Internal to the reader.
class DocumentControls {
 public:
  /// A Control::DocumentWord, `raw` in the file's bytes, which outlive this. The last one of its name counts.
  void Keep(const ControlWord& word, std::string_view raw) {
    std::uint32_t& place = places_[static_cast<std::size_t>(word.value)];
    if (place == 0) {
      words_.emplace_back();
      place = static_cast<std::uint32_t>(words_.size());
    }
    words_[place - 1] = raw;
  }
  /// A word that is in no table; the same again is kept once, and those over a limit are dropped.
  void KeepUnknown(std::string_view raw) {
    if (words_.size() < kMaxWordsWithUnknown && std::ranges::find(words_, raw) == words_.end()) words_.push_back(raw);
  }

  /// Of the section; all count, in their order.
  void KeepSection(std::string_view raw) { section_words_.push_back(raw); }
  void ResetSection() { section_words_.clear(); }

  std::string Joined() const {
    std::string joined;
    for (const auto* words : {&words_, &section_words_})
      for (const std::string_view word : *words) joined += word;
    return joined;
  }

 private:
  /// Counts known words too, because they are looked through for each unknown one.
  static constexpr std::size_t kMaxWordsWithUnknown = 256;

  std::vector<std::string_view> words_;
  std::vector<std::string_view> section_words_;
  std::vector<std::uint32_t> places_ = std::vector<std::uint32_t>(kDocumentWordCount);  ///< index plus 1, by value
};

}  // namespace tme::rtf
