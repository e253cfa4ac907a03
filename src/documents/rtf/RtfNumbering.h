#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Counts the items of lists as one goes through the paragraphs in their order.
class RtfNumbering {
 public:
  /// What stands before the paragraph: "\u2022" or "3."; empty outside a list. To be asked once for each paragraph,
  /// those outside lists included, because they end lists that have no entry in the file's tables.
  std::string Next(const ParagraphFormat& format);

 private:
  static constexpr std::size_t kLevels = 9;
  struct Counter {
    ListKind kind = ListKind::None;
    std::int64_t last = 0;
  };
  using Levels = std::array<Counter, kLevels>;

  Levels plain_;
  std::map<std::int32_t, Levels> named_;
};

}  // namespace tme::rtf
