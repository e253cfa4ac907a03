#include "text/RtfImport.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "shell/DisplayText.h"

namespace tme {
namespace {

using rtf::RtfDocument;

// A table is laid out on the edges of all its rows; one that would need far more places than it has cells is not.
constexpr std::size_t kMaxPlacesPerCell = 4;
constexpr std::size_t kPlacesAlwaysTaken = 4000;
constexpr int kMaxTableDepth = 30;

/// Where a cell stands in the view's table.
struct Place {
  int row = 0;
  int column = 0;
  int rows = 1;
  int columns = 1;
};

class Importer {
 public:
  /// source: texts, runs, paragraphs, cells, rows, tables; their numbers name parts of the store.
  Importer(const RtfDocument& source, RtfStore& store, QTextDocument& target)
      : source_(source),
        store_(store),
        looks_(store),
        cursor_(&target),
        char_formats_(store.document.char_formats.size()),
        rows_of_table_(source.tables.size()),
        cells_of_row_(source.rows.size()) {
    for (std::size_t row = 0; row < source.rows.size(); ++row)
      rows_of_table_[source.rows[row].table].push_back(static_cast<std::uint32_t>(row));
    for (std::size_t cell = 0; cell < source.cells.size(); ++cell)
      cells_of_row_[source.cells[cell].row].push_back(static_cast<std::uint32_t>(cell));
  }

  void Run() {
    cursor_.beginEditBlock();
    offset_ = 0;
    InsertParagraphs(0, source_.paragraphs.size(), -1, 0);
    cursor_.endEditBlock();
  }

 private:
  enum class At : std::uint8_t { EmptyBlock, EmptyCell, EndOfBlock, AfterTable };
  using Range = std::pair<std::size_t, std::size_t>;

  /// The cell right inside `parent` that holds a paragraph; -1 when it stands in `parent` itself.
  std::int32_t CellInside(std::int32_t parent, const rtf::Paragraph& paragraph) const {
    std::int32_t cell = paragraph.cell;
    for (int depth = 0; cell >= 0 && cell != parent && depth < kMaxTableDepth * 2; ++depth) {
      const std::int32_t above = TableOf(cell).parent_cell;
      if (above == parent) return cell;
      cell = above;
    }
    return -1;
  }
  std::uint32_t TableNumberOf(std::int32_t cell) const {
    return source_.rows[source_.cells[static_cast<std::size_t>(cell)].row].table;
  }
  const rtf::Table& TableOf(std::int32_t cell) const { return source_.tables[TableNumberOf(cell)]; }

  /// The cursor stands in an empty block: the first of a document or a cell.
  void InsertParagraphs(std::size_t first, std::size_t last, std::int32_t parent, int depth) {
    At at = parent < 0 ? At::EmptyBlock : At::EmptyCell;
    for (std::size_t index = first; index < last;) {
      const std::int32_t cell = depth < kMaxTableDepth ? CellInside(parent, source_.paragraphs[index]) : -1;
      if (cell < 0) {
        InsertParagraph(index++, at);
        at = At::EndOfBlock;
        continue;
      }
      const std::uint32_t table = TableNumberOf(cell);
      std::map<std::int32_t, Range> cells;
      std::int32_t inside = cell;
      const std::size_t start = index;
      do {
        const auto [place, is_new] = cells.try_emplace(inside, index, index + 1);
        place->second.second = ++index;
        if (index == last) break;
        inside = CellInside(parent, source_.paragraphs[index]);
      } while (inside >= 0 && TableNumberOf(inside) == table);
      if (at != At::EndOfBlock) MarkFiller();
      if (!InsertTable(table, cells, depth)) InsertRest(start, index, at);
      at = At::AfterTable;
    }
    if (at == At::AfterTable) MarkFiller();
  }

  void InsertRest(std::size_t first, std::size_t last, At at) {
    for (; first < last; ++first, at = At::EndOfBlock) InsertParagraph(first, at);
  }

  void MarkFiller() {
    QTextBlockFormat format = BlockFormat(0, nullptr);
    format.setProperty(kFiller, 1);
    cursor_.setBlockFormat(format);
  }

  void InsertParagraph(std::size_t index, At at) {
    const rtf::Paragraph& paragraph = source_.paragraphs[index];
    const std::size_t last =
        index + 1 < source_.paragraphs.size() ? source_.paragraphs[index + 1].first_run : source_.runs.size();
    std::size_t shown_end = last;
    while (shown_end > paragraph.first_run && IsUnseen(source_.runs[shown_end - 1])) --shown_end;

    QTextList* list = ListOf(paragraph);
    QTextBlockFormat format = BlockFormat(paragraph.format, list);
    if (at == At::EmptyCell) format.setProperty(kMarkLook, static_cast<int>(paragraph.mark_format) + 1);
    if (shown_end < last) {
      std::uint32_t offset = offset_;
      for (std::size_t run = paragraph.first_run; run < shown_end; ++run) offset += source_.runs[run].bytes;
      format.setProperty(kAttached, Attach(shown_end, last, offset));
    }
    if (at == At::EndOfBlock) {
      cursor_.insertBlock(format, CharFormat(paragraph.mark_format));
    } else {
      cursor_.setBlockFormat(format);
      if (at == At::EmptyBlock) cursor_.setBlockCharFormat(CharFormat(paragraph.mark_format));
      if (list) list->add(cursor_.block());
    }
    if (!list) StartList(paragraph);
    InsertRuns(paragraph.first_run, shown_end);
    for (; shown_end < last; ++shown_end) offset_ += source_.runs[shown_end].bytes;
  }

  bool IsUnseen(const rtf::Run& run) const {
    if (run.object) return store_.document.objects[run.object - 1].kind == rtf::ObjectKind::Invisible;
    return store_.document.char_formats[run.format].hidden;
  }

  /// What a view does not show, from run to run; the number of kAttached.
  int Attach(std::size_t first, std::size_t last, std::uint32_t offset) {
    std::vector<RtfStore::Attached> parts;
    for (; first < last; ++first) {
      const rtf::Run& run = source_.runs[first];
      parts.push_back({run.object, run.format, run.object ? std::string() : source_.text.substr(offset, run.bytes)});
      offset += run.bytes;
    }
    store_.attached.push_back(std::move(parts));
    return static_cast<int>(store_.attached.size());
  }

  void InsertRuns(std::size_t first, std::size_t last) {
    int attached = 0;
    while (first < last) {
      const rtf::Run& run = source_.runs[first];
      if (IsUnseen(run)) {
        std::size_t end = first + 1;
        while (end < last && IsUnseen(source_.runs[end])) ++end;
        attached = Attach(first, end, offset_);
        for (; first < end; ++first) offset_ += source_.runs[first].bytes;
        continue;
      }
      if (attached == 0 && !run.object) {
        InsertText(std::string_view(source_.text).substr(offset_, run.bytes), CharFormat(run.format));
      } else {
        QTextCharFormat format = CharFormat(run.format);
        if (attached) format.setProperty(kAttached, attached);
        if (run.object)
          InsertObject(static_cast<int>(run.object), format);
        else
          InsertText(std::string_view(source_.text).substr(offset_, run.bytes), format);
        attached = 0;
      }
      offset_ += run.bytes;
      ++first;
    }
  }

  void InsertText(std::string_view text, const QTextCharFormat& format) {
    for (std::size_t page_end = text.find('\f'); page_end != std::string_view::npos; page_end = text.find('\f')) {
      InsertText(text.substr(0, page_end), format);
      InsertObject(kPageBreak, format);
      text.remove_prefix(page_end + 1);
    }
    if (!text.empty()) cursor_.insertText(TextOf(text), format);
  }

  void InsertObject(int object, QTextCharFormat format) {
    format.setObjectType(kRtfObjectType);
    format.setProperty(kObject, object);
    cursor_.insertText(QString(QChar::ObjectReplacementCharacter), format);
  }

  const QTextCharFormat& CharFormat(std::uint32_t number) {
    if (number >= char_formats_.size()) number = 0;
    std::optional<QTextCharFormat>& format = char_formats_[number];
    if (!format) format = looks_.Show(number);
    return *format;
  }

  const QTextBlockFormat& BlockFormat(std::uint32_t number, const QTextList* list) {
    if (number >= store_.document.paragraph_formats.size()) number = 0;
    const auto [place, is_new] = block_formats_.try_emplace({number, list});
    if (is_new) {
      place->second = looks_.Show(store_.document.paragraph_formats[number], number);
      if (list) place->second.setObjectIndex(list->objectIndex());
    }
    return place->second;
  }

  /// The list that a paragraph goes on with; null when it is in none or begins one.
  QTextList* ListOf(const rtf::Paragraph& paragraph) {
    const rtf::ParagraphFormat& look = store_.document.paragraph_formats[paragraph.format];
    if (look.list == rtf::ListKind::None) {
      // Lists of the file's tables go on behind other text, others end.
      std::erase_if(lists_, [](const auto& entry) { return std::get<0>(entry.first) == 0; });
      return nullptr;
    }
    std::erase_if(lists_, [&look](const auto& entry) {
      return std::get<0>(entry.first) == look.list_id && std::get<1>(entry.first) > look.list_level;
    });
    const auto found = lists_.find({look.list_id, look.list_level, look.list});
    return found == lists_.end() ? nullptr : found->second;
  }

  void StartList(const rtf::Paragraph& paragraph) {
    const rtf::ParagraphFormat& look = store_.document.paragraph_formats[paragraph.format];
    if (look.list == rtf::ListKind::None) return;
    QTextListFormat format;
    format.setStyle(RtfLooks::StyleOf(look.list));
    if (look.list == rtf::ListKind::Bullet && look.list_level % 3 != 0)
      format.setStyle(look.list_level % 3 == 1 ? QTextListFormat::ListCircle : QTextListFormat::ListSquare);
    format.setIndent(0);
    lists_[{look.list_id, look.list_level, look.list}] = cursor_.createList(format);
  }

  /// Leaves the cursor in the block behind the table. False for a table without cells.
  bool InsertTable(std::uint32_t number, const std::map<std::int32_t, Range>& cells, int depth) {
    RtfStore::KeptTable kept;
    std::vector<std::pair<std::uint32_t, Place>> places;
    std::vector<int> edges;
    const int columns = PlaceCells(number, kept, places, edges);
    if (columns == 0) return false;
    kept.columns = columns;
    const bool has_borders = std::any_of(kept.rows.begin(), kept.rows.end(), [](const RtfStore::KeptRow& row) {
      return row.definition.empty() || row.definition.find("brdrs") != std::string::npos;
    });
    const auto rows = static_cast<int>(kept.rows.size());
    store_.tables.push_back(std::move(kept));
    QTextTable* table = cursor_.insertTable(rows, columns, TableFormat(edges, has_borders));
    for (const auto& [cell, place] : places)
      if (place.rows > 1 || place.columns > 1) table->mergeCells(place.row, place.column, place.rows, place.columns);
    for (const auto& [cell, place] : places) {
      const auto range = cells.find(static_cast<std::int32_t>(cell));
      if (range == cells.end()) continue;
      // Paragraphs come in the order of the cells, but a merged-away cell has some, too, that are not shown.
      offset_ = OffsetOf(range->second.first);
      cursor_ = table->cellAt(place.row, place.column).firstCursorPosition();
      InsertParagraphs(range->second.first, range->second.second, static_cast<std::int32_t>(cell), depth + 1);
    }
    std::size_t end = 0;
    for (const auto& [cell, range] : cells) end = std::max(end, range.second);
    offset_ = OffsetOf(end);
    cursor_.setPosition(table->lastPosition() + 1);
    return true;
  }

  /// Where the text of a paragraph begins; paragraphs are asked for in about their order.
  std::uint32_t OffsetOf(std::size_t paragraph) {
    const std::size_t run =
        paragraph < source_.paragraphs.size() ? source_.paragraphs[paragraph].first_run : source_.runs.size();
    for (; known_run_ < run; ++known_run_) known_offset_ += source_.runs[known_run_].bytes;
    for (; known_run_ > run; --known_run_) known_offset_ -= source_.runs[known_run_ - 1].bytes;
    return known_offset_;
  }

  QTextTableFormat TableFormat(const std::vector<int>& edges, bool has_borders) const {
    QTextTableFormat format;
    format.setProperty(kTable, static_cast<int>(store_.tables.size()));
    format.setCellSpacing(0);
    format.setCellPadding(TwipsToUnits(70));
    format.setBorder(1);
    format.setBorderCollapse(true);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setBorderBrush(has_borders ? QColor(0x40, 0x48, 0x50) : QColor(0xd8, 0xdc, 0xe0));
    QList<QTextLength> widths;
    int left = 0;
    for (const int edge : edges) {
      widths.append(QTextLength(QTextLength::FixedLength, std::max(TwipsToUnits(edge - left), 8.0)));
      left = edge;
    }
    if (!widths.isEmpty()) format.setColumnWidthConstraints(widths);
    return format;
  }

  /// Lays a table's cells out; the number of columns, and their right edges where the cells have them.
  int PlaceCells(std::uint32_t table, RtfStore::KeptTable& kept, std::vector<std::pair<std::uint32_t, Place>>& places,
                 std::vector<int>& edges) const {
    std::set<int> all_edges;
    std::size_t cell_count = 0, longest = 0;
    bool ordered = true;
    for (const std::uint32_t row : rows_of_table_[table]) {
      const auto& cells = cells_of_row_[row];
      if (cells.empty()) continue;
      RtfStore::KeptRow& kept_row = kept.rows.emplace_back();
      kept_row.definition = source_.rows[row].definition;
      int left = 0;
      for (const std::uint32_t cell : cells) {
        kept_row.cells.push_back(source_.cells[cell]);
        ordered = ordered && source_.cells[cell].right_edge > left;
        left = source_.cells[cell].right_edge;
        all_edges.insert(left);
      }
      cell_count += cells.size();
      longest = std::max(longest, cells.size());
    }
    const std::size_t room = all_edges.size() * kept.rows.size();
    if (ordered && room <= std::max(cell_count * kMaxPlacesPerCell, kPlacesAlwaysTaken))
      edges.assign(all_edges.begin(), all_edges.end());
    const auto columns = static_cast<int>(edges.empty() ? longest : edges.size());
    int row_number = 0;
    std::vector<int> taken_to(static_cast<std::size_t>(columns), 0);  // by merged cells, per column: the first free row
    for (const std::uint32_t row : rows_of_table_[table]) {
      if (cells_of_row_[row].empty()) continue;
      PlaceRow(cells_of_row_[row], row_number++, edges, columns, static_cast<int>(kept.rows.size()), taken_to, places);
    }
    return columns;
  }

  void PlaceRow(const std::vector<std::uint32_t>& cells, int row, const std::vector<int>& edges, int columns, int rows,
                std::vector<int>& taken_to, std::vector<std::pair<std::uint32_t, Place>>& places) const {
    int column = 0;
    for (std::size_t index = 0; index < cells.size(); ++index) {
      const rtf::Cell& cell = source_.cells[cells[index]];
      if (cell.column_span == 0) continue;  // its place is the one before's
      const std::size_t last = std::min(index + cell.column_span, cells.size()) - 1;
      int end = column + static_cast<int>(last - index) + 1;
      if (!edges.empty()) {
        const int edge = source_.cells[cells[last]].right_edge;
        end = static_cast<int>(std::lower_bound(edges.begin(), edges.end(), edge) - edges.begin()) + 1;
      } else if (last + 1 == cells.size()) {
        end = columns;
      }
      const bool is_free =
          std::all_of(taken_to.begin() + column, taken_to.begin() + end, [row](int free) { return free <= row; });
      if (cell.row_span > 0 && is_free) {
        const int span = std::clamp<int>(cell.row_span, 1, rows - row);
        places.push_back({cells[index], {row, column, span, end - column}});
        std::fill(taken_to.begin() + column, taken_to.begin() + end, row + span);
      }
      column = end;
    }
  }

  const RtfDocument& source_;
  RtfStore& store_;
  RtfLooks looks_;
  QTextCursor cursor_;
  std::uint32_t offset_ = 0;  ///< in the text, of the next run
  std::size_t known_run_ = 0;
  std::uint32_t known_offset_ = 0;
  std::vector<std::optional<QTextCharFormat>> char_formats_;
  std::map<std::pair<std::uint32_t, const QTextList*>, QTextBlockFormat> block_formats_;
  std::map<std::tuple<std::int32_t, std::uint8_t, rtf::ListKind>, QTextList*> lists_;
  std::vector<std::vector<std::uint32_t>> rows_of_table_;
  std::vector<std::vector<std::uint32_t>> cells_of_row_;
};

/// The text and its structure, out of a document that keeps the rest.
RtfDocument TakeText(RtfDocument& from) {
  RtfDocument text;
  text.text.swap(from.text);
  text.runs.swap(from.runs);
  text.paragraphs.swap(from.paragraphs);
  text.cells.swap(from.cells);
  text.rows.swap(from.rows);
  text.tables.swap(from.tables);
  return text;
}

}  // namespace

void ImportRtf(RtfDocument&& source, RtfStore& store, QTextDocument& target) {
  const RtfDocument text = TakeText(source);
  store.document = std::move(source);
  target.setUndoRedoEnabled(false);
  Importer(text, store, target).Run();
}

void ImportRtfPart(RtfDocument&& source, RtfStore& store, QTextDocument& target) {
  RtfDocument text = TakeText(source);
  RtfDocument& kept = store.document;
  RtfLooks looks(store);
  const auto objects = static_cast<std::uint32_t>(kept.objects.size());
  const auto fields = static_cast<std::uint32_t>(kept.fields.size());
  std::move(source.objects.begin(), source.objects.end(), std::back_inserter(kept.objects));
  for (rtf::Field& field : source.fields) {
    if (field.parent) field.parent += fields;
    kept.fields.push_back(std::move(field));
  }

  const auto color_of = [&](std::uint32_t color) {
    return color == 0 || color >= source.colors.size() ? 0 : looks.ColorOf(source.colors[color]);
  };
  std::vector<std::uint32_t> char_numbers, paragraph_numbers;
  for (rtf::CharFormat look : source.char_formats) {
    look.font = look.font < source.fonts.size() ? looks.FontOf(source.fonts[look.font]) : 0;
    look.color = color_of(look.color);
    look.background = color_of(look.background);
    look.field = look.field ? look.field + fields : 0;
    look.extra = 0;
    char_numbers.push_back(looks.Add(look));
  }
  for (rtf::ParagraphFormat look : source.paragraph_formats) {
    look.list_id = 0;
    look.extra = 0;
    paragraph_numbers.push_back(looks.Add(look));
  }
  const auto number_of = [](const std::vector<std::uint32_t>& numbers, std::uint32_t number) {
    return number < numbers.size() ? numbers[number] : 0;
  };
  for (rtf::Run& run : text.runs) {
    run.format = number_of(char_numbers, run.format);
    run.object = run.object ? run.object + objects : 0;
  }
  for (rtf::Paragraph& paragraph : text.paragraphs) {
    paragraph.format = number_of(paragraph_numbers, paragraph.format);
    paragraph.mark_format = number_of(char_numbers, paragraph.mark_format);
  }
  target.setUndoRedoEnabled(false);
  Importer(text, store, target).Run();
}

}  // namespace tme
