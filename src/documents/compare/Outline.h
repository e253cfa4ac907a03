#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/HashIndex.h"
#include "documents/reg/RegData.h"

namespace tme {

/// How outlines are read.
struct OutlineOptions {
  /// Whether blocks of one registry key are one group. Sections of an INI file never are.
  enum class Blocks : std::uint8_t { Apart, Joined };
  /// Whether comments are found like entries, by their text.
  enum class Comments : std::uint8_t { PassedOver, Found };
  Blocks blocks = Blocks::Joined;
  Comments comments = Comments::PassedOver;
};

/// What an INI or registry file says, as groups (sections, keys) of items, which are views of its text. It knows the
/// same group or item of another outline: names are compared without regard to letter case, and those that come several
/// times by their number. 32 bytes a line and 16 to 32 for finding it; at most kMostBytes of text.
class Outline {
 public:
  using Index = std::uint32_t;
  static constexpr Index kNone = HashIndex::kNone;
  static constexpr std::size_t kMostBytes = UINT32_MAX - 1;

  enum class Kind : std::uint8_t { Ini, Reg };
  enum class Sort : std::uint8_t { Blank, Comment, FileHeader, Header, Entry, Other };
  enum class GroupSort : std::uint8_t {
    Top,  ///< what stands before the first header; always there, and the first one
    Named,
    Deletion,  ///< [-path]
  };

  /// Some whole lines: a header, an entry with those that it goes on in, one comment, one or more blank ones. They
  /// follow one another without a gap.
  struct Item {
    std::uint32_t at;
    /// Between its quotes, still escaped, in a registry file; for Comment and Other the line without blanks around it.
    std::uint32_t name_at;
    std::uint32_t name_size;
    /// What stands behind "=" without blanks around it; quotes are part of it. In an INI file it may go on in lines
    /// that stand deeper (ContinuesEntry), with the comments and blank lines between them.
    std::uint32_t value_at;
    std::uint32_t value_size;
    Index group;
    /// How many of the same name stand before it in its group.
    std::uint32_t number;
    Sort sort;
    bool has_value;
    /// Another one of the same name stands behind it in its group.
    bool has_next;
    /// The name has backslashes to take off.
    bool is_escaped;
  };

  struct Group {
    /// Without empty components.
    std::string_view path;
    GroupSort sort;
    /// A deletion: keys that it deletes stand before it.
    bool follows_keys;
    /// A key: a deletion behind this block takes it away again.
    bool is_deleted;
    /// How many of the same path and sort stand before it; 0 for joined ones.
    std::uint32_t number;
    /// The first group of its key, where blocks are joined; else itself.
    Index joined;
    /// The next one of its key; kNone.
    Index next_joined;
    /// Its items. Unless it is the top, the first one is the header.
    Index begin;
    Index end;
  };

  class Reading;

  Outline(const Outline&) = delete;
  Outline& operator=(const Outline&) = delete;
  Outline(Outline&&) = default;
  Outline& operator=(Outline&&) = delete;
  ~Outline() = default;

  Kind FileKind() const { return kind_; }
  /// Registry: what the file's version says.
  const RegCoding& Coding() const { return coding_; }
  const std::string& Text() const { return *text_; }
  const std::vector<Item>& Items() const { return items_; }
  const std::vector<Group>& Groups() const { return groups_; }
  std::string_view LinesOf(Index item) const { return Lines(item, item + 1); }
  /// Those of several items.
  std::string_view Lines(Index begin, Index end) const;
  /// From 1. Linear in the bytes before it.
  std::uint64_t LineNumberOf(Index item) const;
  std::string_view RawNameOf(const Item& item) const { return View(item.name_at, item.name_size); }
  /// Unescaped; empty for a default value.
  std::string NameOf(const Item& item) const;
  std::string_view ValueOf(const Item& item) const { return View(item.value_at, item.value_size); }
  /// The value of an INI file: its lines without blanks around them and without comments, unless these are found.
  std::string IniValueOf(const Item& item, std::string_view between) const;
  /// Comments within and behind a registry value, each with a blank before it; empty unless comments are found.
  std::string CommentsOf(Index item) const;
  /// Whether an item can be found.
  bool IsContent(const Item& item) const {
    return item.sort == Sort::Entry || item.sort == Sort::Other ||
           (item.sort == Sort::Comment && options_.comments == OutlineOptions::Comments::Found);
  }

  /// The group here that is the same as a group of another outline; kNone.
  Index FindGroup(const Group& theirs) const;
  /// The item here that is the same as one of another outline in the same group. group: a joined one of this outline.
  /// guess: an item that it may be, which then takes no search.
  Index FindItem(Index group, const Outline& other, const Item& theirs, Index guess = kNone) const;
  /// Whether the same items have the same value: decoded, where the files are of the registry.
  bool SameValue(Index item, const Outline& other, Index theirs) const;

 private:
  Outline() = default;

  std::string_view View(std::uint32_t at, std::uint32_t size) const { return {text_->data() + at, size}; }
  static std::uint32_t HashOfGroup(const Group& group);
  static bool SameGroup(const Group& one, const Group& other);
  static std::uint32_t HashOfItem(Index group, const Outline& other, const Item& theirs);
  bool IsItem(Index at, Index group, const Outline& other, const Item& theirs) const;
  /// Both return the first that is the same, and enter it where there is none.
  Index EnterGroup(Index at);
  Index EnterItem(Index at);

  Kind kind_ = Kind::Ini;
  OutlineOptions options_;
  RegCoding coding_;
  /// At one address.
  std::unique_ptr<const std::string> text_;
  std::vector<Item> items_;
  std::vector<Group> groups_;
  /// Paths that had empty components.
  std::deque<std::string> paths_;
  HashIndex found_items_;
  HashIndex found_groups_;
};

/// text: at most Outline::kMostBytes, any bytes.
Outline ReadIniOutline(std::string text, const OutlineOptions& options = {});
/// coding: the code page's functions, and the version where the text says none. With joined blocks a REGEDIT file is
/// read as the REGEDIT4 file that says the same, else its lines are entries of the top, named by their paths.
Outline ReadRegOutline(std::string text, const RegCoding& coding, const OutlineOptions& options = {});

}  // namespace tme
