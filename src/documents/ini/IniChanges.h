#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "documents/SourceLines.h"

namespace tme {

class IniNode;
enum class IniTag : std::uint8_t;

/// What a step changed of an IniTree. Nodes that go stay in memory with what is below them, so a section of any size is
/// one row.
struct IniChanges {
  /// What a node is, to be exchanged with what it was.
  struct NodeState {
    IniNode* node;
    IniNode* parent;
    std::string_view text;
    IniTag tag;
    bool children_sorted;
  };
  struct Row {
    IniNode* node;
    /// In the list that has the node.
    std::uint32_t row;
  };
  enum class Came : std::uint8_t { In, Out };
  /// Rows that came into a list or out of it, in ascending order.
  struct RowsChange {
    IniNode* parent;
    std::uint32_t count;
    Came came;
  };
  struct Totals {
    std::size_t nodes = 0;
    std::size_t sections = 0;
    IniNode* selected = nullptr;
  };

  /// row: in the list as the rows noted before left it.
  void NoteRow(IniNode* parent, IniNode* node, std::size_t row, Came came);
  /// Makes room for rows that go one from each list, with their lines, where nothing is noted yet.
  void MakeRoom(std::size_t count);

  std::vector<NodeState> nodes = {};
  std::vector<RowsChange> lists = {};
  /// Those of all lists.
  std::vector<Row> rows = {};
  SourceLines::Changes lines = {};
  Totals before = {};
  Totals after = {};
  /// The arrangement that the rows are of.
  std::uint32_t arrangement = 0;
};

}  // namespace tme
