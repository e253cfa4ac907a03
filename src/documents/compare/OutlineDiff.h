#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "documents/compare/Outline.h"

namespace tme {

/// What leads from one outline to another at one place: a group as such, or one of its items.
struct OutlineChange {
  enum class Kind : std::uint8_t { Removed, Added, Changed, Moved };
  static constexpr Outline::Index kNone = Outline::kNone;

  Kind kind;
  /// Joined groups. One is none where it was added or removed.
  Outline::Index group_before = kNone;
  Outline::Index group_after = kNone;
  /// None for the group itself, and where it was added or removed.
  Outline::Index item_before = kNone;
  Outline::Index item_after = kNone;

  bool IsOfGroup() const { return item_before == kNone && item_after == kNone; }
};

/// Whether groups and items in another order are a difference.
enum class OutlineOrder : std::uint8_t { PassedOver, Told };

/// Lists the changes in the order of the first outline, what was added behind what it follows in the second. The
/// outlines are of one kind and were read with the same options. Linear but for sorting what was added or moved; takes
/// 4 bytes an item.
std::vector<OutlineChange> DiffOutlines(const Outline& before, const Outline& after,
                                        OutlineOrder order = OutlineOrder::PassedOver);

/// A group for people: "[section]", "[path]", "[-path]"; the second of a name has " (2)" behind it. Empty for the top.
std::string GroupLabel(const Outline& outline, Outline::Index group);
/// An item in one line for people: that of an INI file without blanks around it, and "\n" where it goes on; a registry
/// value decoded, such as "Name"=expand:"%Path%".
std::string ItemLabel(const Outline& outline, Outline::Index item);
/// The value alone; empty where there is none.
std::string ValueLabel(const Outline& outline, Outline::Index item);

/// The changes as lines like those of a line diff, where "[path]" stands before those of a group: "-" removed, "+"
/// added, both changed, ">" moved. Line ends within texts are shown as \r and \n.
std::string DiffText(const Outline& before, const Outline& after, const std::vector<OutlineChange>& changes);

}  // namespace tme
