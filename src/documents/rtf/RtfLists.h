#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfTokenizer.h"

/// What the reader finds out of groups about lists that are kept as they came. Internal to the reader.
namespace tme::rtf {

struct ListStyle {
  ListKind kind = ListKind::None;
  std::int32_t start = 1;
  std::string text{};  ///< as ParagraphFormat::list_text
};
/// Makes a paragraph's format that of the list which a \pn group describes.
void ReadLegacyNumbering(std::string_view group, ParagraphFormat& format);

/// What kind of list the number or bullet before a paragraph (\pntext, \listtext) speaks of.
ListKind ListKindOfText(std::string_view text);

/// The lists of a file: \ls names an override, which names a list.
class ListTables {
 public:
  static constexpr std::size_t kLevels = 9;

  /// \listtable; false when some lists are over the limit.
  bool ReadLists(std::string_view group);
  /// \listoverridetable, behind \listtable; the same.
  bool ReadOverrides(std::string_view group);

  /// ListKind::None for a list that is not known.
  ListStyle Find(std::int32_t override_number, std::uint8_t level) const;

 private:
  struct List {
    std::int32_t id = 0;
    std::array<ListStyle, kLevels> levels{};
  };
  /// What a table calls the begin of an entry, the begin of each of its levels, and the entry's number at its end.
  struct TableWords {
    std::string_view entry, level, number;
  };
  bool ReadTable(std::string_view group, const TableWords& words, std::vector<List>& lists);
  /// Behind \leveltext; ends before the group does.
  static std::string ReadLevelText(Tokenizer& tokens, Token& token);
  static const List* FindIn(const std::vector<List>& lists, std::int32_t id);

  std::vector<List> lists_;      ///< by \listid
  std::vector<List> overrides_;  ///< by \ls
};

}  // namespace tme::rtf
