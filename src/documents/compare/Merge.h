#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "documents/compare/Outline.h"

namespace tme {

/// Where both sides changed the same thing, each in its own way.
struct MergeConflict {
  enum class Kind : std::uint8_t {
    BothChanged,  ///< an entry has two new values: ours stands, theirs is in a comment above it
    TheyDeleted,  ///< what we changed: it stays, and a [-key] of theirs behind it is in a comment
    WeDeleted,    ///< what they changed: it is there again, and a [-key] of ours behind it is in a comment
    Unsayable,    ///< their value has no form in our version of registry files: it is in a comment
  };
  Kind kind;
  /// "[section]" or "[path]"; empty for the top.
  std::string group;
  /// The entry; empty for the group as such.
  std::string item;
  /// Of the merged text, from 1: the comment that marks it.
  std::uint64_t line = 0;
};

struct MergeResult {
  std::string text;
  std::vector<MergeConflict> conflicts;
};

/// How the comments begin that mark conflicts, behind ";" or "#".
inline constexpr const char* kMergeMark = " MERGE CONFLICT ";

/// Merges what two files made of a third, section by section and entry by entry. The result is our file with their
/// changes: its order, comments and bytes stay. What they added comes behind what it follows there, with the comments
/// and blank lines above it; what one side deleted goes where the other one did not change it, but for comments that
/// the other one wrote; comments above an entry become theirs where ours are as they were. An order that they changed
/// is passed over. A file that we did not change becomes theirs. Null where some of the files are REGEDIT and others
/// are not. Linear. All of one kind, with blocks apart.
std::optional<MergeResult> MergeOutlines(const Outline& base, const Outline& ours, const Outline& theirs);

}  // namespace tme
