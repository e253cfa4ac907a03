#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <string_view>

#include "files/TextEncoding.h"

namespace tme {

inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

struct EncodingTraits {
  std::string_view name;
  /// The byte order mark; empty for none.
  std::string_view mark;
  /// Null for all but UTF-16.
  std::optional<std::endian> utf16_order;
};
const EncodingTraits& TraitsOf(TextEncoding encoding);

/// Returns the encoding that a byte order mark at the start names, null without one.
std::optional<TextEncoding> MarkedEncoding(std::string_view bytes);
/// Returns the encoding of UTF-16 without a mark, null for anything else.
std::optional<TextEncoding> UnmarkedUtf16(std::string_view bytes);

/// Counts what speaks for UTF-8 in bytes without a mark. Parts end where characters do.
class Utf8Evidence {
 public:
  void Add(std::string_view part);
  bool IsAscii() const { return characters_ + invalid_ == 0; }
  bool IsUtf8() const { return !IsAscii() && characters_ >= 2 * invalid_; }

 private:
  std::uint64_t characters_ = 0;
  std::uint64_t invalid_ = 0;
};

/// Counts what speaks for UTF-16 of one byte order in bytes without a mark. Parts may end anywhere.
class Utf16Evidence {
 public:
  explicit Utf16Evidence(std::endian order) : order_(order) {}

  void Add(std::string_view part);
  bool IsUtf16() const {
    return !refuted_ && !has_first_ && !after_high_ && units_ >= 4 && 3 * for_ >= units_ && for_ > against_;
  }

 private:
  void AddUnit(unsigned high, unsigned low);

  const std::endian order_;
  bool has_first_ = false;
  unsigned first_ = 0;
  bool after_high_ = false;
  bool refuted_ = false;
  std::uint64_t units_ = 0, for_ = 0, against_ = 0;
};

}  // namespace tme
