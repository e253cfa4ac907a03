#include "documents/reg/RegChildren.h"

#include <functional>

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

void RegChildren::Insert(std::size_t row, RegNode* node) {
  ForgetTexts();
  nodes_.insert(nodes_.begin() + static_cast<std::ptrdiff_t>(row), node);
}

void RegChildren::InsertAll(std::span<const Place> places) {
  ForgetTexts();
  std::size_t from = nodes_.size();
  nodes_.resize(nodes_.size() + places.size());
  for (std::size_t to = nodes_.size(); !places.empty();) {
    const bool is_here = --to == places.back().row;
    nodes_[to] = is_here ? places.back().node : nodes_[--from];
    if (is_here) places = places.first(places.size() - 1);
  }
}

void RegChildren::EraseAll(std::span<const Place> places) {
  if (places.empty()) return;
  ForgetTexts();
  const std::size_t count = nodes_.size() - places.size();
  std::size_t to = places.front().row;
  for (std::size_t from = to; from < nodes_.size(); ++from) {
    if (!places.empty() && from == places.front().row)
      places = places.subspan(1);
    else
      nodes_[to++] = nodes_[from];
  }
  nodes_.resize(count);
}

void RegChildren::InsertFirst(std::span<RegNode* const> nodes) {
  ForgetTexts();
  nodes_.insert(nodes_.begin(), nodes.begin(), nodes.end());
}

void RegChildren::EraseFirst(std::size_t count) {
  ForgetTexts();
  nodes_.erase(nodes_.begin(), nodes_.begin() + static_cast<std::ptrdiff_t>(count));
}

RegNode* RegChildren::Find(std::string_view text) {
  if (nodes_.size() <= kFewChildren) {
    for (std::uint32_t row = 0; row < nodes_.size(); ++row)
      if (IsIt(row, text)) return nodes_[row];
    return nullptr;
  }
  if (rows_.Room() == 0) MakeTable();
  const std::uint32_t row = rows_.Find(HashOf(text), [this, text](std::uint32_t other) { return IsIt(other, text); });
  return row == HashIndex::kNone ? nullptr : nodes_[row];
}

bool RegChildren::IsIt(std::uint32_t row, std::string_view text) const {
  const RegNode& node = *nodes_[row];
  if (letters_ == RegLetters::Exact) return node.Text() == text;
  return IsKey(node.Tag()) && SameRegName(node.Text(), text);
}

std::uint32_t RegChildren::HashOf(std::string_view text) const {
  if (letters_ == RegLetters::AnyCase) return HashOfRegName(text);
  return static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
}

void RegChildren::MakeTable() {
  rows_.Reset(2 * nodes_.size());
  for (std::uint32_t row = 0; row < nodes_.size(); ++row) Enter(row);
}

void RegChildren::Enter(std::uint32_t row) {
  if (!IsKey(nodes_[row]->Tag())) return;
  const std::string_view text = nodes_[row]->Text();
  rows_.FindOrEnter(HashOf(text), row, [this, text](std::uint32_t other) { return IsIt(other, text); });
}

}  // namespace tme
