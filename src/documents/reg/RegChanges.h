#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/Reversed.h"
#include "documents/SourceLines.h"
#include "documents/reg/RegData.h"
#include "documents/reg/RegNode.h"

namespace tme {

/// Records that follow one another and have one owner. A file gives one run for nearly every key.
struct RegRun {
  RegNode* owner;
  std::uint32_t first;
  std::uint32_t count;
  /// The owner's next run, or RegNode::kNoRun.
  std::uint32_t next;
};

/// A header line of a whole document, in two rings: of the file in its order, in which the first of the table is the
/// ends, and of its node, which has the number of the last one.
struct RegHeader {
  RegNode* node = nullptr;
  SourceLines::Piece piece = SourceLines::kEnds;
  std::uint32_t next = 0;
  std::uint32_t previous = 0;
  std::uint32_t next_of_node = 0;
};

/// What a step changed in a table that only grows: rows as they were before, and those that came.
template <class Row>
class RegTableChanges {
 public:
  using Table = std::vector<Row>;

  void Begin(const Table& table) { first_ = table.size(); }
  /// Must come before a row changes.
  void Note(const Table& table, std::size_t row) {
    const bool is_noted = row >= first_ || (!changed_.empty() && changed_.back().row == row);
    if (!is_noted) changed_.push_back({static_cast<std::uint32_t>(row), table[row]});
  }
  bool HasAny(const Table& table) const { return !changed_.empty() || table.size() > first_; }
  /// Rows that came with the last step that was done or undone.
  bool HasAdded(const Table& table) const { return !added_.empty() || table.size() > first_; }
  /// visit(row): of those that were there before and changed, or are to be again.
  template <typename Visit>
  void ForEachChanged(Visit visit) const {
    for (const Change& change : changed_) visit(change.row);
  }
  /// The same of those that came, where they are in the table.
  template <typename Visit>
  void ForEachAdded(const Table& table, Visit visit) const {
    for (const Row& row : added_) visit(row);
    for (std::size_t row = first_; row < table.size(); ++row) visit(table[row]);
  }
  bool HasChanged() const { return !changed_.empty(); }
  std::size_t Count(const Table& table) const { return changed_.size() + added_.size() + table.size() - first_; }
  void Revert(Table& table) {
    for (auto& [row, other] : Reversed(changed_)) std::swap(table[row], other);
    const auto first = table.begin() + static_cast<std::ptrdiff_t>(first_);
    added_.assign(first, table.end());
    table.erase(first, table.end());
  }
  void Reapply(Table& table) {
    table.insert(table.end(), added_.begin(), added_.end());
    added_ = {};
    for (auto& [row, other] : changed_) std::swap(table[row], other);
  }

 private:
  struct Change {
    std::uint32_t row;
    Row other;
  };
  std::size_t first_ = 0;
  std::vector<Change> changed_;
  Table added_;
};

/// What the edits of a step changed in a RegDocument. Nodes that came or went stay in memory.
struct RegChanges {
  /// What edits change in a node itself, as it was before, or is afterwards when the step was taken back.
  struct NodeChange {
    RegNode* node;
    const char* text;
    std::uint32_t size;
    std::uint32_t first_run;
    std::uint32_t last_run;
    std::uint32_t place;
  };
  /// A row of its parent.
  struct ListChange {
    enum class Kind : std::uint8_t { Added, Removed };
    RegNode* node;
    std::uint32_t row;
    /// How many of the rows before it were comments.
    std::uint32_t comments;
    Kind kind;
  };
  /// Records that were marked as deleted.
  struct Deleted {
    std::size_t first;
    std::size_t count;
  };

  /// Rows were noted under several arrangements of comments.
  static constexpr std::uint64_t kSeveral = UINT64_MAX;

  bool has_begun = false;
  RegNode* selected_before = nullptr;
  RegNode* selected_after = nullptr;
  /// Those of the other side.
  RegVersion version = RegVersion::Version5;
  bool paths_are_unique = true;
  /// The arrangement of comments under which rows were noted.
  std::uint64_t arrangement = 0;
  SourceLines::Changes lines;
  RegTableChanges<RegValueRecord> records;
  RegTableChanges<RegRun> runs;
  RegTableChanges<RegHeader> headers;
  std::vector<Deleted> deleted;
  std::vector<NodeChange> nodes;
  std::vector<ListChange> lists;
};

}  // namespace tme
