#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "documents/rtf/RtfDocument.h"

class QBrush;
class QTextTable;
class QTextTableCell;

namespace tme {

/// Says in control words what a table of a pasted page looks like: widths, borders, colours and where text stands.
class RtfNewTable {
 public:
  using ColorOf = std::function<std::uint32_t(const QBrush&)>;

  /// color_of: index into the colours of the document. Both outlive this.
  RtfNewTable(const QTextTable& table, const ColorOf& color_of);

  /// Of the columns before one, in twips.
  std::int32_t EdgeBefore(int column) const { return edges_[static_cast<std::size_t>(column)]; }
  /// The words of one more cell, made.right_edge among them; those of the row come with its first one.
  void AddCell(const QTextTableCell& cell, const rtf::Cell& made, std::string& definition) const;

 private:
  void FindEdges();
  std::vector<int> NaturalWidths() const;
  void AddBorder(const QTextTableCell& cell, std::size_t side, std::string& definition) const;

  const QTextTable& table_;
  const ColorOf& color_of_;
  std::vector<std::int32_t> edges_;  ///< of each column the left one, and the right one of the last
};

}  // namespace tme
