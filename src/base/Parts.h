#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace tme {

/// Takes the next part of a text or file. Returns false when it could not, and the producer should stop.
using PartSink = std::function<bool(std::string_view)>;
/// Hands over all parts in order. Returns false when it gave up or the sink did.
using PartProducer = std::function<bool(const PartSink&)>;

/// Gathers small pieces for a sink into parts of kPartBytes or a little more.
class PartBuffer {
 public:
  static constexpr std::size_t kPartBytes = std::size_t{1} << 16;

  /// sink: not owned.
  explicit PartBuffer(const PartSink& sink) : sink_(sink) { part_.reserve(2 * kPartBytes); }

  PartBuffer& Append(std::string_view piece) {
    part_.append(piece);
    return *this;
  }
  /// Ends a piece that must not be parted. Returns false when the sink stopped, as Flush does.
  bool EndPiece() { return part_.size() < kPartBytes || Flush(); }
  /// Hands over what is left.
  bool Flush() {
    const bool going_on = part_.empty() || sink_(part_);
    part_.clear();
    return going_on;
  }

 private:
  const PartSink& sink_;
  std::string part_;
};

}  // namespace tme
