#pragma once

namespace tme {

/// For a loop over a range from its end to its start. The range outlives it.
template <class Range>
class Reversed {
 public:
  explicit Reversed(Range& range) : range_(range) {}
  auto begin() const { return range_.rbegin(); }
  auto end() const { return range_.rend(); }

 private:
  Range& range_;
};

}  // namespace tme
