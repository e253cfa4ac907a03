#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"

/// What the reader finds out of groups that are kept as they came. Internal to the reader.
namespace tme::rtf {

struct PictureGroup {
  std::string bytes;  ///< of a PNG or JPEG file; empty for any other picture
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::string_view label = "Picture";  ///< what it is, for people
  bool is_there = false;
  bool too_large = false;
};
/// The first \pict of the group.
PictureGroup ReadPicture(std::string_view group);

struct ListLook {
  ListKind kind = ListKind::None;
  std::int32_t start = 1;
};
struct LegacyList {
  ListLook look;
  std::uint8_t level = 0;
};
/// A \pn group.
LegacyList ReadLegacyNumbering(std::string_view group);

/// What kind of list the number or bullet before a paragraph (\pntext, \listtext) speaks of.
ListKind ListKindOfText(std::string_view text);

class ListTables {
 public:
  static constexpr std::size_t kLevels = 9;

  /// \listtable; false when some lists are over the limit.
  bool ReadLists(std::string_view group);
  /// \listoverridetable, behind \listtable; the same.
  bool ReadOverrides(std::string_view group);

  /// Nothing for a list that is not known.
  ListLook Find(std::int32_t override_number, std::uint8_t level) const;

 private:
  struct List {
    std::int32_t id = 0;
    std::array<ListLook, kLevels> levels{};
  };
  static const List* FindIn(const std::vector<List>& lists, std::int32_t id);

  std::vector<List> lists_;      ///< by \listid
  std::vector<List> overrides_;  ///< by \ls
};

/// Where a HYPERLINK field leads, with "#" and the place in it; empty for other fields.
std::string UrlOfInstruction(std::string_view instruction);

}  // namespace tme::rtf
