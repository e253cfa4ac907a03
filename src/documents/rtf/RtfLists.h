#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfFontTable.h"
#include "documents/rtf/RtfTokenizer.h"

/// What is found out of groups about lists that are kept as they came.
namespace tme::rtf {

struct ListStyle {
  ListKind kind = ListKind::None;
  std::int32_t start = 1;
  std::string text{};  ///< as ParagraphFormat::list_text
  /// Which side of the number stands where the first line begins.
  enum class Side : std::uint8_t { Left, Middle, Right };
  Side side = Side::Left;
  bool is_legal = false;       ///< numbers of other levels are digits, whatever these have
  bool goes_on = false;        ///< behind an item of a higher level
  bool has_own_start = false;  ///< an override begins anew with `start`
};
/// Makes a paragraph's format that of the list which a \pn group describes.
void ReadLegacyNumbering(std::string_view group, const FontTable& fonts, ParagraphFormat& format);

/// The lists of a file: \ls names an override, which names a list.
class ListTables {
 public:
  static constexpr std::size_t kLevels = 9;

  /// \listtable; false when some lists are over the limit. fonts: for bullets; null when these do not matter.
  bool ReadLists(std::string_view group, const FontTable* fonts);
  /// \listoverridetable, behind \listtable; the same.
  bool ReadOverrides(std::string_view group, const FontTable* fonts);

  /// Both, anew, among the groups before a document's text (RtfDocument::kept_header). Bullets are not known.
  void ReadHeader(std::string_view header);

  /// ListKind::None for a list that is not known.
  const ListStyle& Find(std::int32_t override_number, std::size_t level) const;
  /// What is counted together has one number; 0 for a list that is not known.
  std::int32_t CounterOf(std::int32_t override_number) const;

 private:
  struct List {
    std::int32_t id = 0;
    std::int32_t counter = 0;  ///< \listid
    std::array<ListStyle, kLevels> levels{};
  };
  /// What a table calls the begin of an entry, the begin of each of its levels, and the entry's number at its end.
  struct TableWords {
    std::string_view entry, level, number;
  };
  bool ReadTable(std::string_view group, const TableWords& words, const FontTable* fonts, std::vector<List>& lists);
  /// Behind \leveltext; ends before the group does.
  static std::string ReadLevelText(Tokenizer& tokens, Token& token);
  static const List* FindIn(const std::vector<List>& lists, std::int32_t id);

  std::vector<List> lists_;      ///< by \listid
  std::vector<List> overrides_;  ///< by \ls
};

}  // namespace tme::rtf
