#include "documents/rtf/RtfRowDefinition.h"

#include <algorithm>

#include "documents/rtf/RtfReader.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxRowCells = 1024;

}  // namespace

RowDefinition& RowDefinitions::Of(int level) {
  const auto index = static_cast<std::size_t>(std::clamp(level, 1, kMaxTableLevel)) - 1;
  if (index >= definitions_.size()) definitions_.resize(index + 1);
  return definitions_[index];
}

void RowDefinitions::Begin(int level, std::string_view raw) {
  open_level_ = level;
  RowDefinition& row = Of(level);
  row = {};
  row.words = raw;
}

bool RowDefinitions::Add(const ControlWord& word, std::int32_t value, std::string_view raw) {
  RowDefinition& row = Of(open_level_);
  row.words += raw;
  if (word.control == Control::VerticalMerge) row.next.vertical_merge = static_cast<std::uint8_t>(word.value);
  if (word.control == Control::HorizontalMerge) row.next.horizontal_merge = static_cast<std::uint8_t>(word.value);
  if (word.control != Control::CellEdge) return true;
  const bool has_room = row.cells.size() < kMaxRowCells;
  if (has_room) {
    row.next.right_edge = value;
    row.cells.push_back(row.next);
    row.words_to_last_edge = row.words.size();
  }
  row.next = {};
  return has_room;
}

}  // namespace tme::rtf
