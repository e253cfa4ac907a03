#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfLists.h"

namespace tme::rtf {

/// Counts the items of lists as one goes through the paragraphs in their order.
class RtfNumbering {
 public:
  /// tables: of the file, which outlive this and its copies; null where each list is taken for one of its own.
  explicit RtfNumbering(const ListTables* tables = nullptr) : tables_(tables) {}

  /// What stands before the paragraph: "\u2022" or "3."; empty outside a list. To be asked once for each paragraph,
  /// those outside lists included, because they end lists that have no entry in the file's tables.
  std::string Next(const ParagraphFormat& format);

 private:
  static constexpr std::size_t kLevels = ListTables::kLevels;
  struct Counter {
    ListKind kind = ListKind::None;
    std::int64_t last = 0;
    std::int32_t start = 1;
  };
  using Levels = std::array<Counter, kLevels>;
  Levels& LevelsOf(const ParagraphFormat& format);
  const ListStyle& StyleOf(const ParagraphFormat& format, std::size_t level) const;

  const ListTables* tables_;
  Levels plain_;
  /// By the list of the file's tables, or by the number of one that these do not know.
  std::map<std::pair<bool, std::int32_t>, Levels> named_;
  std::set<std::pair<std::int32_t, std::size_t>> begun_;  ///< levels of overrides with a start of their own
};

}  // namespace tme::rtf
