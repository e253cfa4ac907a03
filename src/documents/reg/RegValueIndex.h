#pragma once

#include <cstdint>
#include <vector>

#include "base/HashIndex.h"
#include "documents/reg/RegDocument.h"

namespace tme {

/// The values of a document by the last component of their key, as a save wants them: whatever stands above it, removed
/// keys and deleted records included. Holds while the document does not change.
class RegValueIndex {
 public:
  static constexpr std::uint32_t kNoGroup = TextTable::kNone;

  explicit RegValueIndex(const RegDocument& document);

  std::size_t GroupCount() const { return groups_.size(); }
  /// Returns a number from 0, or kNoGroup when no record's owner has the node's text.
  std::uint32_t GroupOf(const RegNode& node) const;
  /// Returns for each group the one key that owns its records, null where several do.
  std::vector<const RegNode*> SoleOwners() const;

  /// Calls visit(record), in table order.
  template <typename Visit>
  void ForEachRecord(std::uint32_t group, Visit visit) const {
    for (std::uint32_t run = groups_[group].first_run; run != RegNode::kNoRun; run = runs_[run].next) {
      const RegRun& records = document_.runs_[run];
      for (std::uint32_t i = 0; i < records.count; ++i) visit(document_.values_[records.first + i]);
    }
  }

  /// Calls visit(group, number of records) for the runs of the whole table.
  template <typename Visit>
  void ForEachRun(Visit visit) const {
    for (std::uint32_t run = 0; run < runs_.size(); ++run)
      visit(runs_[run].group, std::size_t{document_.runs_[run].count});
  }

  /// Calls visit(group, record) for the whole table.
  template <typename Visit>
  void ForEachRecord(Visit visit) const {
    for (std::uint32_t run = 0; run < runs_.size(); ++run) {
      const RegRun& records = document_.runs_[run];
      for (std::uint32_t i = 0; i < records.count; ++i) visit(runs_[run].group, document_.values_[records.first + i]);
    }
  }

 private:
  struct Group {
    std::uint32_t first_run;
    std::uint32_t last_run;
  };
  struct RunOfGroup {
    std::uint32_t group;
    /// RegNode::kNoRun at the end.
    std::uint32_t next;
  };

  auto TextOfGroup() const {
    return [this](std::uint32_t group) { return document_.runs_[groups_[group].first_run].owner->Text(); };
  }

  const RegDocument& document_;
  std::vector<Group> groups_;
  TextTable group_of_text_;
  /// One for each run of the document.
  std::vector<RunOfGroup> runs_;
};

}  // namespace tme
