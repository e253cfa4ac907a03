#include "documents/reg/RegChildren.h"

#include <algorithm>

#include "documents/reg/RegDocument.h"

namespace tme {

namespace {

constexpr std::size_t kFewChildren = 12;

}  // namespace

void RegChildren::Append(RegNode* node) {
  nodes_.push_back(node);
  if (rows_.Room() == 0) return;
  if (nodes_.size() <= rows_.Room())
    Enter(static_cast<std::uint32_t>(nodes_.size() - 1));
  else
    MakeTable();
}

void RegChildren::Erase(std::size_t row) {
  ForgetTexts();
  nodes_.erase(nodes_.begin() + static_cast<std::ptrdiff_t>(row));
}

RegNode* RegChildren::Find(std::string_view text) {
  if (nodes_.size() <= kFewChildren) {
    const auto found = std::ranges::find(nodes_, text, &RegNode::Text);
    return found == nodes_.end() ? nullptr : *found;
  }
  if (rows_.Room() == 0) MakeTable();
  const std::uint32_t row = rows_.Find(text, [this](std::uint32_t other) { return nodes_[other]->Text(); });
  return row == TextTable::kNone ? nullptr : nodes_[row];
}

void RegChildren::MakeTable() {
  rows_.Reset(2 * nodes_.size());
  for (std::uint32_t row = 0; row < nodes_.size(); ++row) Enter(row);
}

void RegChildren::Enter(std::uint32_t row) {
  rows_.FindOrEnter(nodes_[row]->Text(), row, [this](std::uint32_t other) { return nodes_[other]->Text(); });
}

}  // namespace tme
