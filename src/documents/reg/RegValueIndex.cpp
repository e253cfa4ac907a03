#include "documents/reg/RegValueIndex.h"

namespace tme {

RegValueIndex::RegValueIndex(const RegDocument& document) : document_(document) {
  runs_.reserve(document.runs_.size());
  group_of_text_.Reset(document.runs_.size());
  for (const RegRun& records : document.runs_) {
    const auto run = static_cast<std::uint32_t>(runs_.size());
    const auto new_group = static_cast<std::uint32_t>(groups_.size());
    const std::uint32_t group = group_of_text_.FindOrEnter(records.owner->Text(), new_group, TextOfGroup());
    if (group == new_group) {
      groups_.push_back({run, run});
    } else {
      runs_[groups_[group].last_run].next = run;
      groups_[group].last_run = run;
    }
    runs_.push_back({group, RegNode::kNoRun});
  }
}

std::uint32_t RegValueIndex::GroupOf(const RegNode& node) const {
  if (node.first_run_ != RegNode::kNoRun) return runs_[node.first_run_].group;
  return group_of_text_.Find(node.Text(), TextOfGroup());
}

std::vector<const RegNode*> RegValueIndex::SoleOwners() const {
  std::vector<const RegNode*> owners(groups_.size());
  for (std::size_t group = 0; group < groups_.size(); ++group)
    owners[group] = document_.runs_[groups_[group].first_run].owner;
  for (std::size_t run = 0; run < runs_.size(); ++run)
    if (document_.runs_[run].owner != owners[runs_[run].group]) owners[runs_[run].group] = nullptr;
  return owners;
}

}  // namespace tme
