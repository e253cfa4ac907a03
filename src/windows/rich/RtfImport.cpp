#include "windows/rich/RtfImport.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <algorithm>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "windows/rich/RtfFlatTables.h"
#include "windows/rich/RtfFormats.h"
#include "windows/rich/RtfGrid.h"
#include "windows/rich/RtfRunInserter.h"
#include "windows/rich/RtfShape.h"

namespace tme {
namespace {

using rtf::RtfDocument;

/// Between two parts of one table.
constexpr double kSeamUnits = 1;
const QColor kFlatBackground(0xF3, 0xF5, 0xF7);
// Short enough to answer a click on Cancel at once.
constexpr std::size_t kParagraphsBetweenSteps = 256;

/// The lists of a view that paragraphs join while they are inserted in their order.
class ViewLists {
 public:
  /// The list that a paragraph goes on with; null when it is in none or begins one. Ends the lists that it leaves.
  QTextList* Find(const rtf::ParagraphFormat& format);
  /// Begins a list with the paragraph of the cursor, if it is in one.
  void Begin(const rtf::ParagraphFormat& format, QTextCursor& cursor);

 private:
  struct Key {
    std::int32_t id;
    std::uint8_t level;
    rtf::ListKind kind;
    bool operator<(const Key& other) const {
      return std::tie(id, level, kind) < std::tie(other.id, other.level, other.kind);
    }
  };
  std::map<Key, QTextList*> lists_;
};

QTextList* ViewLists::Find(const rtf::ParagraphFormat& format) {
  if (format.list == rtf::ListKind::None) {
    // Lists of the file's tables go on behind other text, others end.
    std::erase_if(lists_, [](const auto& entry) { return entry.first.id == 0; });
    return nullptr;
  }
  std::erase_if(lists_, [&format](const auto& entry) {
    return entry.first.id == format.list_id && entry.first.level > format.list_level;
  });
  const auto found = lists_.find({format.list_id, format.list_level, format.list});
  return found == lists_.end() || found->second->count() >= kItemsOfList ? nullptr : found->second;
}

void ViewLists::Begin(const rtf::ParagraphFormat& format, QTextCursor& cursor) {
  if (format.list == rtf::ListKind::None) return;
  QTextListFormat shown;
  shown.setStyle(RtfFormats::StyleOf(format.list));
  if (format.list == rtf::ListKind::Bullet && format.list_level % 3 != 0)
    shown.setStyle(format.list_level % 3 == 1 ? QTextListFormat::ListCircle : QTextListFormat::ListSquare);
  shown.setIndent(0);
  lists_[{format.list_id, format.list_level, format.list}] = cursor.createList(shown);
}

class Importer {
 public:
  /// source: texts, runs, paragraphs, cells, rows, tables; their numbers name parts of the store.
  Importer(const RtfDocument& source, RtfStore& store, QTextDocument& target, const RtfImportStep& step)
      : source_(source),
        store_(store),
        shape_(source),
        formats_(store),
        flat_(source, shape_, store),
        cursor_(&target),
        runs_(source, store, formats_, cursor_, step) {}

  /// False when it was given up.
  bool Run(RtfSimplified& simplified) {
    cursor_.beginEditBlock();
    InsertParagraphs(0, source_.paragraphs.size(), -1);
    cursor_.endEditBlock();
    simplified = {shape_.FlatTables(), runs_.LongParagraphs()};
    return !runs_.GivenUp();
  }

 private:
  enum class At : std::uint8_t { EmptyBlock, EmptyCell, EndOfBlock, AfterTable };
  /// The paragraphs of each cell: the first one, and the one behind the last.
  using CellRanges = std::map<std::int32_t, std::pair<std::size_t, std::size_t>>;

  /// The cell right inside `parent` that holds a paragraph; -1 when it stands in `parent` itself.
  std::int32_t CellInside(std::int32_t parent, const rtf::Paragraph& paragraph) const {
    std::int32_t cell = paragraph.cell;
    while (cell >= 0 && cell != parent) {
      const std::int32_t around = shape_.CellAround(cell);
      if (around == parent) return cell;
      cell = around;
    }
    return -1;
  }

  /// The cursor stands in an empty block: the first of a document or a cell.
  void InsertParagraphs(std::size_t first, std::size_t last, std::int32_t parent) {
    At at = parent < 0 ? At::EmptyBlock : At::EmptyCell;
    for (std::size_t index = first; index < last && !runs_.GivenUp();) {
      const std::int32_t cell = CellInside(parent, source_.paragraphs[index]);
      if (cell < 0 || shape_.IsFlat(shape_.TableOf(cell))) {
        InsertParagraph(index, at, cell < 0 ? 0 : flat_.NumberOf(source_.paragraphs[index].cell));
        ++index;
        at = At::EndOfBlock;
        continue;
      }
      const std::uint32_t table = shape_.TableOf(cell);
      CellRanges cells;
      std::int32_t inside = cell;
      do {
        const auto [place, is_new] = cells.try_emplace(inside, index, index + 1);
        place->second.second = ++index;
        if (index == last) break;
        inside = CellInside(parent, source_.paragraphs[index]);
      } while (inside >= 0 && shape_.TableOf(inside) == table);
      if (at != At::EndOfBlock) MarkFiller();
      InsertTable(table, cells);
      at = At::AfterTable;
    }
    if (at == At::AfterTable) MarkFiller();
  }

  void MarkFiller() {
    QTextBlockFormat format = BlockFormat(0, nullptr);
    format.setProperty(kFiller, 1);
    cursor_.setBlockFormat(format);
  }

  /// The block between two parts of a table, as good as not there.
  void MarkSeam() {
    MarkFiller();
    QTextBlockFormat format = cursor_.blockFormat();
    format.setLineHeight(kSeamUnits, QTextBlockFormat::FixedHeight);
    cursor_.setBlockFormat(format);
  }

  /// flat: of the cell that it stands in although the view shows no table there.
  void InsertParagraph(std::size_t index, At at, int flat) {
    if (++since_step_ >= kParagraphsBetweenSteps) {
      since_step_ = 0;
      runs_.Step();
    }
    const rtf::Paragraph& paragraph = source_.paragraphs[index];
    const std::size_t last = source_.EndOfRuns(index);
    std::size_t shown_end = last;
    while (shown_end > paragraph.first_run && runs_.IsUnseen(source_.runs[shown_end - 1])) --shown_end;

    const rtf::ParagraphFormat& paragraph_format = store_.document.paragraph_formats[paragraph.format];
    QTextList* list = lists_.Find(paragraph_format);
    QTextBlockFormat format = BlockFormat(paragraph.format, list);
    if (flat > 0) {
      format.setProperty(kFlatCell, flat);
      format.setBackground(kFlatBackground);
    }
    const bool is_long = shape_.IsLong(index);
    if (is_long) runs_.BeginPieces(format, paragraph.mark_format);
    if (at == At::EmptyCell || at == At::AfterTable)
      format.setProperty(kMarkFormat, static_cast<int>(paragraph.mark_format) + 1);
    int attached = 0;
    if (shown_end < last) {
      std::uint32_t offset = runs_.Offset();
      for (std::size_t run = paragraph.first_run; run < shown_end; ++run) offset += source_.runs[run].bytes;
      attached = runs_.Attach(shown_end, last, offset);
      if (!is_long) format.setProperty(kAttached, attached);
    }
    if (at == At::EndOfBlock) {
      cursor_.insertBlock(format, runs_.FormatOf(paragraph.mark_format));
    } else {
      cursor_.setBlockFormat(format);
      if (at == At::EmptyBlock) cursor_.setBlockCharFormat(runs_.FormatOf(paragraph.mark_format));
      if (list) list->add(cursor_.block());
    }
    if (!list) lists_.Begin(paragraph_format, cursor_);
    runs_.InsertRuns(paragraph.first_run, shown_end);
    if (is_long) runs_.EndPieces(attached);
    runs_.SetOffset(OffsetOf(index + 1));
  }

  const QTextBlockFormat& BlockFormat(std::uint32_t number, const QTextList* list) {
    if (number >= store_.document.paragraph_formats.size()) number = 0;
    const auto [place, is_new] = block_formats_.try_emplace({number, list});
    if (is_new) {
      place->second = formats_.ShowParagraphFormat(number);
      if (list) place->second.setObjectIndex(list->objectIndex());
    }
    return place->second;
  }

  /// Leaves the cursor in the block behind the table.
  void InsertTable(std::uint32_t table, const CellRanges& cells) {
    const std::vector<std::size_t> parts = shape_.PartsOf(table);
    const int group = parts.size() > 1 ? ++store_.parted_tables : 0;
    std::size_t first = 0;
    for (std::size_t part = 0; part < parts.size() && !runs_.GivenUp(); ++part) {
      if (part > 0) MarkSeam();
      RtfGrid grid(source_, shape_, table, std::exchange(first, parts[part]), parts[part]);
      grid.kept.group = group;
      grid.kept.part = static_cast<int>(part);
      InsertGrid(std::move(grid), cells);
    }
    std::size_t end = 0;
    for (const auto& [cell, range] : cells) end = std::max(end, range.second);
    runs_.SetOffset(OffsetOf(end));
  }

  void InsertGrid(RtfGrid&& grid, const CellRanges& cells) {
    const auto rows = static_cast<int>(grid.kept.rows.size());
    const int columns = grid.kept.columns;
    QTextTableFormat format = grid.Format();
    grid.kept.has_spans = std::ranges::any_of(
        grid.places, [](const auto& entry) { return entry.second.rows > 1 || entry.second.columns > 1; });
    store_.tables.push_back(std::move(grid.kept));
    format.setProperty(kTable, static_cast<int>(store_.tables.size()));
    QTextTable* table = cursor_.insertTable(rows, columns, format);
    for (const auto& [cell, place] : grid.places)
      if (place.rows > 1 || place.columns > 1) table->mergeCells(place.row, place.column, place.rows, place.columns);
    for (const auto& [cell, place] : grid.places) {
      const auto range = cells.find(static_cast<std::int32_t>(cell));
      if (range == cells.end()) continue;
      // Paragraphs come in the order of the cells, but a merged-away cell has some, too, that are not shown.
      runs_.SetOffset(OffsetOf(range->second.first));
      cursor_ = table->cellAt(place.row, place.column).firstCursorPosition();
      InsertParagraphs(range->second.first, range->second.second, static_cast<std::int32_t>(cell));
    }
    cursor_.setPosition(table->lastPosition() + 1);
  }

  /// Where the text of a paragraph begins; paragraphs are asked for in about their order.
  std::uint32_t OffsetOf(std::size_t paragraph) {
    const std::size_t run =
        paragraph < source_.paragraphs.size() ? source_.paragraphs[paragraph].first_run : source_.runs.size();
    for (; known_run_ < run; ++known_run_) known_offset_ += source_.runs[known_run_].bytes;
    for (; known_run_ > run; --known_run_) known_offset_ -= source_.runs[known_run_ - 1].bytes;
    return known_offset_;
  }

  const RtfDocument& source_;
  RtfStore& store_;
  const RtfShape shape_;
  RtfFormats formats_;
  RtfFlatKeeper flat_;
  QTextCursor cursor_;
  RtfRunInserter runs_;
  std::size_t known_run_ = 0;
  std::uint32_t known_offset_ = 0;
  std::map<std::pair<std::uint32_t, const QTextList*>, QTextBlockFormat> block_formats_;
  ViewLists lists_;
  std::size_t since_step_ = 0;
};

/// Shows a text whose formats and objects are those of the store.
bool ShowRtf(const RtfDocument& text, RtfStore& store, QTextDocument& target, RtfSimplified& simplified,
             const RtfImportStep& step) {
  target.setUndoRedoEnabled(false);
  return Importer(text, store, target, step).Run(simplified);
}

}  // namespace

bool ImportRtf(RtfDocument&& source, RtfStore& store, QTextDocument& target, RtfSimplified& simplified,
               const RtfImportStep& step) {
  const RtfDocument text = TakeRtfText(source);
  store.document = std::move(source);
  return ShowRtf(text, store, target, simplified, step);
}

bool ImportRtfPart(RtfDocument&& source, RtfStore& store, QTextDocument& target, RtfSimplified& simplified,
                   const RtfImportStep& step) {
  return ShowRtf(MergeRtf(std::move(source), store), store, target, simplified, step);
}

}  // namespace tme
