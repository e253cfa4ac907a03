#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tme {

/// Splits a text into lines that end in CR LF, LF or a lone CR; the last line may lack its end.
class LineReader {
 public:
  explicit LineReader(std::string_view text)
      : position_(text.data()), end_(text.data() + text.size()), next_cr_(Find('\r')), next_lf_(Find('\n')) {}

  /// Returns false at the end of the text, with line as it was.
  bool Next(std::string_view& line) {
    if (position_ == end_) return false;
    // Each search goes on from where it last stopped, so a text without CR is searched for it only once.
    if (next_cr_ < position_) next_cr_ = Find('\r');
    if (next_lf_ < position_) next_lf_ = Find('\n');
    const char* stop = std::min(next_cr_, next_lf_);
    line = {position_, static_cast<std::size_t>(stop - position_)};
    position_ = stop;
    if (stop != end_) ++position_;
    if (stop == next_cr_ && position_ != end_ && position_ == next_lf_) ++position_;
    ++number_;
    return true;
  }

  /// Whether no line is left.
  bool AtEnd() const { return position_ == end_; }

  /// Where the next line begins.
  const char* Position() const { return position_; }

  /// The number of the line that Next gave last, from 1; 0 before the first.
  std::uint64_t Number() const { return number_; }

 private:
  const char* Find(char wanted) const {
    if (position_ == end_) return end_;
    const void* found = std::memchr(position_, wanted, static_cast<std::size_t>(end_ - position_));
    return found == nullptr ? end_ : static_cast<const char*>(found);
  }

  const char* position_;
  const char* end_;
  const char* next_cr_;
  const char* next_lf_;
  std::uint64_t number_ = 0;
};

}  // namespace tme
