#pragma once

#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

#include "documents/search/TreeOrder.h"

namespace tme {

template <class Node>
int LevelOf(const Node* node) {
  int level = 0;
  while ((node = node->Parent()) != nullptr) ++level;
  return level;
}

template <class Node>
bool IsAtOrBelow(const Node* node, const Node* top) {
  while (node != nullptr && node != top) node = node->Parent();
  return node != nullptr;
}

/// The nodes of the selected rows from the root downwards. Model: see TreeItemModel.
template <class Model>
auto SelectedNodes(const QItemSelectionModel& selection) {
  std::vector<decltype(Model::NodeOf({}))> nodes;
  for (const QItemSelectionRange& range : selection.selection())
    for (int row = range.top(); row <= range.bottom(); ++row)
      nodes.push_back(Model::NodeOf(range.model()->index(row, 0, range.parent())));
  const auto is_before = [](const auto* one, const auto* other) { return IsBeforeInTree(one, other); };
  if (!std::is_sorted(nodes.begin(), nodes.end(), is_before)) std::sort(nodes.begin(), nodes.end(), is_before);
  return nodes;
}

/// The same without those that stand below another one of them.
template <class Model>
auto SelectedTops(const QItemSelectionModel& selection) {
  auto nodes = SelectedNodes<Model>(selection);
  auto end = nodes.begin();
  for (auto* node : nodes)
    if (end == nodes.begin() || !IsAtOrBelow<std::remove_pointer_t<decltype(node)>>(node, *(end - 1))) *end++ = node;
  nodes.erase(end, nodes.end());
  return nodes;
}

/// The rows of nodes, those of one parent that follow one another as one range. nodes: in the order of the tree, all of
/// them in it.
template <class Node, class Model>
QItemSelection RowsOf(const std::vector<Node*>& nodes, const Model& model) {
  QItemSelection rows;
  for (std::size_t first = 0, next = 0; first < nodes.size(); first = next) {
    for (next = first + 1; next < nodes.size() && nodes[next]->Parent() == nodes[first]->Parent() &&
                           nodes[next]->Row() == nodes[next - 1]->Row() + 1;)
      ++next;
    rows.append(QItemSelectionRange(model.IndexOf(nodes[first]), model.IndexOf(nodes[next - 1])));
  }
  return rows;
}

/// Selected rows that follow one another below one node: the first and the last.
template <class Node>
using NodeRange = std::pair<Node*, Node*>;

/// Model: see TreeItemModel.
template <class Model>
auto SelectedRanges(const QItemSelectionModel& selection) {
  std::vector<NodeRange<std::remove_pointer_t<decltype(Model::NodeOf({}))>>> ranges;
  for (const QItemSelectionRange& range : selection.selection())
    ranges.emplace_back(Model::NodeOf(range.topLeft()), Model::NodeOf(range.bottomRight()));
  return ranges;
}

/// Selects them again; the current row stays. ranges: as they were, or not in the tree.
template <class Node, class Model, class IsInTree>
void SelectRanges(QItemSelectionModel& selection, const std::vector<NodeRange<Node>>& ranges, const Model& model,
                  IsInTree is_in_tree) {
  QItemSelection rows;
  for (const auto& [first, last] : ranges)
    if (is_in_tree(first) && is_in_tree(last) && first->Parent() == last->Parent() && first->Row() <= last->Row())
      rows.append(QItemSelectionRange(model.IndexOf(first), model.IndexOf(last)));
  if (!rows.isEmpty()) selection.select(rows, QItemSelectionModel::ClearAndSelect);
}

/// Selects the rows of nodes, the first of which becomes the current one. nodes: in any order, at least one.
template <class Node, class Model>
void SelectNodes(QItemSelectionModel& selection, std::vector<Node*> nodes, const Model& model) {
  std::sort(nodes.begin(), nodes.end(), [](const Node* one, const Node* other) { return IsBeforeInTree(one, other); });
  selection.setCurrentIndex(model.IndexOf(nodes.front()), QItemSelectionModel::ClearAndSelect);
  selection.select(RowsOf(nodes, model), QItemSelectionModel::ClearAndSelect);
}

/// Puts the rows of nodes on the clipboard as they show, each with a tab for a level below the highest of them.
template <class Node, class Model>
void CopyRowTexts(const std::vector<Node*>& nodes, const Model& model) {
  std::vector<int> levels;
  for (const Node* node : nodes) levels.push_back(LevelOf(node));
  const int top = levels.empty() ? 0 : *std::min_element(levels.begin(), levels.end());
  QString text;
  for (std::size_t at = 0; at < nodes.size(); ++at) {
    text += QString(levels[at] - top, u'\t') + model.IndexOf(nodes[at]).data().toString();
    if (nodes.size() > 1) text += u'\n';
  }
  QGuiApplication::clipboard()->setText(text);
}

}  // namespace tme
