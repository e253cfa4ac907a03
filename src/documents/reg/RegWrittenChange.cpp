// RegWrittenLines: what a step changed of what is written.
#include <algorithm>
#include <utility>

#include "base/Reversed.h"
#include "documents/reg/RegWriter.h"
#include "documents/reg/RegWrittenLines.h"

namespace tme {
namespace {

/// More records, and more places of keys with one name, are sooner found by comparing all that is written.
constexpr std::size_t kMostRecords = 1000;
constexpr std::size_t kMostPlaces = 100;

/// With the path as WalkKeyPaths has it.
std::string HeaderOf(const RegNode& key) {
  std::vector<const RegNode*> path;
  for (const RegNode* node = &key; node->Parent() != nullptr; node = node->Parent()) path.push_back(node);
  std::string header = "[";
  for (const RegNode* node : Reversed(path))
    header.append(node->Tag() == RegTag::Branch ? 1U : 0U, '\\').append(node->Text());
  return header + ']';
}

bool IsInTree(const RegNode& node) {
  return node.Row() < node.Parent()->ChildCount() && node.Parent()->Child(node.Row()) == &node;
}

bool ChangesDataAlone(const RegDocument& document, const RegChanges& changes) {
  return changes.has_begun && changes.nodes.empty() && changes.lists.empty() && changes.deleted.empty() &&
         !changes.runs.HasChanged() && !changes.records.HasAdded(document.Values());
}

/// The first and the last line that is marked.
struct MarkedLines {
  std::uint64_t first = UINT64_MAX;
  std::uint64_t end = 0;
  void Mark(std::uint64_t line) {
    first = std::min(first, line);
    end = std::max(end, line);
  }
};

/// Where a key that came or went stands, or would stand: at or behind the start of one node, at the end of one.
struct ChangedPlace {
  const RegNode* start = nullptr;
  const RegNode* end = nullptr;
};

/// changes: with a single change of the tree at most.
ChangedPlace PlaceOf(const RegChanges& changes) {
  const auto renamed = std::ranges::find_if(
      changes.nodes, [](const RegChanges::NodeChange& change) { return change.text != change.node->Text().data(); });
  if (renamed != changes.nodes.end()) return {renamed->node, renamed->node};
  if (changes.lists.empty()) return {};
  const auto& [node, row, comments, kind] = changes.lists.front();
  if (IsInTree(*node)) return {node, node};
  const RegNode* parent = node->Parent();
  if (static_cast<int>(row) < parent->ChildCount()) return {parent->Child(static_cast<int>(row)), nullptr};
  return {nullptr, parent};
}

}  // namespace

bool RegWrittenLines::StaysSince(const RegDocument& document, std::uint64_t revision) {
  const auto step = document.OnlyStepSince(revision);
  return step && ChangesDataAlone(document, document.ChangesOf(*step));
}

void RegWrittenLines::Put(const RegNode& key, std::uint32_t group, std::string& lines) const {
  lines.append(HeaderOf(key)).append(kRegLineEnd);
  index_.ForEachRecord(group, [&](const RegValueRecord& record) {
    for (const std::string_view piece : tme::LineOf(record)) lines += piece;
  });
  lines += kRegLineEnd;
}

std::vector<WrittenChange> RegWrittenLines::ChangesSince(std::uint64_t revision) const {
  const auto step = document_.OnlyStepSince(revision);
  if (!step) return {};
  const RegChanges& changes = document_.ChangesOf(*step);
  if (!changes.has_begun || changes.records.Count(document_.Values()) > kMostRecords) return {};
  if (ChangesDataAlone(document_, changes)) {
    Groups groups;
    changes.records.ForEachChanged(
        [&](std::size_t record) { groups.insert(index_.GroupOf(*document_.Values()[record].owner)); });
    return ChangedData(groups);
  }
  const auto is_renamed = [](const RegChanges::NodeChange& change) {
    return change.text != change.node->Text().data();
  };
  const auto tree_changes =
      changes.lists.size() + static_cast<std::size_t>(std::ranges::count_if(changes.nodes, is_renamed));
  if (tree_changes > 1 || !changes.deleted.empty()) return {};
  std::unordered_set<std::string_view> texts;
  changes.records.ForEachChanged([&](std::size_t record) { texts.insert(document_.Values()[record].owner->Text()); });
  changes.records.ForEachAdded(document_.Values(),
                               [&](const RegValueRecord& record) { texts.insert(record.owner->Text()); });
  for (const RegChanges::NodeChange& change : changes.nodes) {
    texts.insert({change.text, change.size});
    texts.insert(change.node->Text());
  }
  return ChangeIn(StretchOf(texts, changes));
}

/// A value stands below every key of its name.
std::vector<WrittenChange> RegWrittenLines::ChangedData(const Groups& groups) const {
  std::vector<WrittenChange> found;
  bool is_next = false;
  std::uint64_t count = kHeaderLines;
  ForEachKey([&](const RegNode& node, std::uint64_t line, std::uint32_t group) {
    if (std::exchange(is_next, false)) found.back().next = HeaderOf(node);
    count = line + LinesOf(group);
    if (!groups.contains(group)) return false;
    found.push_back({.before = line, .behind = count, .lines = {}, .next = {}});
    if (found.size() > kMostPlaces) return true;
    Put(node, group, found.back().lines);
    is_next = true;
    return false;
  });
  if (found.size() > kMostPlaces) return {};
  for (WrittenChange& change : found) change.behind = count - change.behind;
  return found;
}

RegWrittenLines::Stretch RegWrittenLines::StretchOf(const std::unordered_set<std::string_view>& texts,
                                                    const RegChanges& changes) const {
  const ChangedPlace place = PlaceOf(changes);
  MarkedLines marked;
  std::uint64_t line = kHeaderLines;
  const RegNode& root = *document_.Root();
  WalkKeys(
      root,
      [&](const RegNode& node) {
        if (&node == place.start) marked.Mark(line);
        const std::uint32_t group = WrittenGroup(node);
        const std::uint64_t behind = line + (group == RegValueIndex::kNoGroup ? 0 : LinesOf(group));
        if (texts.contains(node.Text())) {
          marked.Mark(line);
          marked.Mark(behind);
        }
        line = behind;
        return true;
      },
      [&](const RegNode& node) {
        if (&node == place.end) marked.Mark(line);
      });
  return marked.end == 0 ? Stretch{line, line} : Stretch{marked.first, marked.end};
}

std::vector<WrittenChange> RegWrittenLines::ChangeIn(const Stretch& stretch) const {
  if (stretch.end - stretch.first > kMostWrittenChange) return {};
  WrittenChange change{.before = stretch.first, .behind = 0, .lines = {}, .next = {}};
  std::uint64_t count = stretch.end;
  ForEachKey([&](const RegNode& node, std::uint64_t line, std::uint32_t group) {
    if (line >= stretch.end && change.next.empty()) change.next = HeaderOf(node);
    if (line >= stretch.first && line < stretch.end) Put(node, group, change.lines);
    count = std::max(count, line + LinesOf(group));
    return false;
  });
  change.behind = count - stretch.end;
  return {std::move(change)};
}

}  // namespace tme
