#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "documents/SourceLines.h"
#include "documents/reg/RegChildren.h"

namespace tme {

/// Kind of a node. The last two are in whole documents alone.
enum class RegTag : std::uint8_t {
  File,
  Hive,
  Branch,
  Deletion,  ///< [-path]: the key is deleted where the file is imported; stands beside the key of that name, if any
  Comment,   ///< a comment line, where the user asks for them
};
constexpr bool IsKey(RegTag tag) { return tag <= RegTag::Branch; }

/// Type of a value; None for a deleted record. In a whole document its form: in quotes, dword:, hex: with or without a
/// type number; None for the deletion of a value ("name"=-).
enum class RegType : std::uint8_t { None, String, Dword, Hex };

/// What a type of value is in texts.
struct RegTypeTraits {
  RegType type;
  std::string_view name;    ///< for people
  std::string_view before;  ///< in a line of a file, from the quote behind the value's name to the data
  std::string_view after;   ///< behind the data
};
/// By RegType.
inline constexpr std::array<RegTypeTraits, 4> kRegTypes{{
    {RegType::None, "", "\"=", ""},
    {RegType::String, "REG_SZ", "\"=\"", "\""},
    {RegType::Dword, "DWORD", "\"=dword:", ""},
    {RegType::Hex, "HEX", "\"=hex:", ""},
}};
/// Those whose mark ("=dword:") a reader looks for in a line, in this order. A line without one is a string.
inline constexpr std::span kMarkedRegTypes = std::span(kRegTypes).subspan<2>();

constexpr const RegTypeTraits& TraitsOf(RegType type) { return kRegTypes[static_cast<std::size_t>(type)]; }

/// The hives of a registry, in the order in which they are offered. Compared with regard to letter case.
inline constexpr std::string_view HiveNames[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",   "HKEY_LOCAL_MACHINE",
                                                 "HKEY_USERS",        "HKEY_CURRENT_CONFIG", "HKEY_DYN_DATA"};
bool IsHiveName(std::string_view text);

/// One key of the tree. Nodes belong to their RegDocument and stay at one address; a removed node lives on unseen,
/// since its values still count for saving.
class RegNode {
 public:
  /// The root: the document's title; a hive: its name; a branch: one component of the path. UTF-8; bytes that are not
  /// valid UTF-8 pass through. A comment: its line without blanks at both ends.
  std::string_view Text() const { return {text_, size_}; }
  RegTag Tag() const { return tag_; }
  /// Null for the root only.
  RegNode* Parent() const { return parent_; }
  /// Position among the parent's children, in order of creation, from 0.
  int Row() const { return static_cast<int>(row_); }
  int ChildCount() const { return children_ == nullptr ? 0 : static_cast<int>(children_->Count()); }
  RegNode* Child(int row) const { return children_->At(static_cast<std::size_t>(row)); }
  /// How many of the children are comments. They stand before all others. Linear in them.
  std::size_t CommentCount() const;
  /// The path without the root ("HKEY_USERS\\Alpha\\Beta"); empty for the root. Costs a walk up the tree.
  std::string KeyPath() const;

 private:
  friend class RegDocument;
  friend class RegValueIndex;

  static constexpr std::uint32_t kNoRun = UINT32_MAX;

  RegNode(RegNode* parent, std::string_view text, RegTag tag) : parent_(parent), tag_(tag) { SetTextView(text); }

  void SetTextView(std::string_view text) {
    text_ = text.data();
    size_ = static_cast<std::uint32_t>(text.size());
  }

  /// In memory of the document.
  const char* text_ = nullptr;
  /// Kept when the node is removed.
  RegNode* parent_;
  /// In memory of the document; null until the first child comes.
  RegChildren* children_ = nullptr;
  std::uint32_t size_ = 0;
  std::uint32_t row_ = 0;
  /// The node's records, as a chain of runs of the document.
  std::uint32_t first_run_ = kNoRun;
  std::uint32_t last_run_ = kNoRun;
  /// Whole holding. A key or deletion: the last of its header lines in the document's ring, 0 for none. A comment: its
  /// piece.
  std::uint32_t place_ = 0;
  RegTag tag_;
};

/// One value of the flat table. Records are never removed or moved. A deleted one has no type, name and data by the
/// rules, and keeps them in a whole document.
struct RegValueRecord {
  RegNode* owner = nullptr;
  /// Without quotes; "[default]" for the default value. In a whole document unescaped, and empty for the default value.
  std::string_view name;
  /// As in the file, not decoded: text between the quotes, eight hexadecimal digits, or bytes separated by commas.
  /// In a whole document all that stands behind "=", over several lines where it is wrapped: see DecodeAssignment.
  std::string_view data;
  RegType type = RegType::None;
  bool deleted = false;
  /// Whole holding: of Lines.
  SourceLines::Piece piece = SourceLines::kEnds;
};

}  // namespace tme
