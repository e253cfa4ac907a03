#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfHeaderTables.h"
#include "documents/rtf/RtfNames.h"

namespace tme::rtf {

/// Makes what text of one document names good in another one: a style or author of the same name there is used, others
/// join its tables under new numbers, and so do lists. Within one document, and between its copies, all numbers stay.
class RtfTableJoin {
 public:
  /// From numbers of the source to such of the target.
  struct Numbers {
    std::function<std::int32_t(std::int32_t)> font;   ///< of \fN
    std::function<std::int32_t(std::int32_t)> color;  ///< of \cfN
  };

  /// Adds to target.joined. Documents and `decode` outlive this.
  RtfTableJoin(const RtfDocument& source, RtfDocument& target, Numbers numbers, const DecodeCodePage& decode);

  /// Control words or groups of the source, as they are written in the target. What names nothing is left out.
  std::string Mapped(std::string_view rtf);
  /// Of a \lsN; 0 for none.
  std::int32_t ListNumber(std::int32_t number);

 private:
  using Key = std::pair<HeaderTable, std::int32_t>;

  bool IsSameDocument() const;
  void FindUsedNumbers();
  std::optional<std::int32_t> NumberOf(const RtfNamed& named);
  std::optional<std::int32_t> Joined(HeaderTable table, std::int32_t number);
  bool IsLike(const HeaderEntry& own, const HeaderEntry& other);
  std::int32_t FreeNumber(HeaderTable table, std::int32_t wanted) const;
  std::int32_t Enter(const HeaderEntry& own);
  void WriteEntries();
  std::string Written(const HeaderEntry& own);

  const RtfDocument& source_;
  RtfDocument& target_;
  const Numbers numbers_;
  const DecodeCodePage& decode_;
  const std::vector<HeaderEntry> own_;    ///< of the source
  const std::vector<HeaderEntry> there_;  ///< of the target, those that joined it before included
  const bool is_same_document_;
  std::map<Key, std::size_t> entries_;   ///< indices into own_
  std::map<Key, std::int32_t> known_;    ///< what an entry is there
  std::set<Key> used_;                   ///< numbers that are taken there
  std::vector<std::size_t> to_write_{};  ///< indices into own_ of those that joined last
};

}  // namespace tme::rtf
