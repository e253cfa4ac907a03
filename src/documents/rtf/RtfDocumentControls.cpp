#include "documents/rtf/RtfDocumentControls.h"

#include <algorithm>

namespace tme::rtf {
namespace {

/// Counts known words too, because they are looked through for each unknown one.
constexpr std::size_t kMaxWordsWithUnknown = 256;

}  // namespace

void DocumentControls::Keep(const ControlWord& word, std::string_view raw) {
  std::uint32_t& place = places_[static_cast<std::size_t>(word.value)];
  if (place == 0) {
    words_.push_back(raw);
    place = static_cast<std::uint32_t>(words_.size());
  } else {
    words_[place - 1] = raw;
  }
}

void DocumentControls::KeepUnknown(std::string_view raw) {
  if (words_.size() >= kMaxWordsWithUnknown || std::find(words_.begin(), words_.end(), raw) != words_.end()) return;
  words_.push_back(raw);
}

std::string DocumentControls::Joined() const {
  std::string joined;
  for (const std::string_view word : words_) joined += word;
  return joined;
}

}  // namespace tme::rtf
