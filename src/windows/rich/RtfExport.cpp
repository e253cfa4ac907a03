#include "windows/rich/RtfExport.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <algorithm>
#include <optional>
#include <unordered_set>

#include "windows/rich/RtfFlatTables.h"
#include "windows/rich/RtfFormats.h"
#include "windows/rich/RtfNewTable.h"

namespace tme {
namespace {

using rtf::RtfDocument;

constexpr int kWidthOfNewTable = 9000;  // twips

class Exporter {
 public:
  explicit Exporter(RtfStore& store)
      : store_(store), document_(store.document), formats_(store), flat_tables_(store.flat, store.document) {}

  void Run(const QTextDocument& view) {
    const QTextFrame* root = view.rootFrame();
    Frame(root->begin(), root->end(), -1);
    if (document_.paragraphs.empty()) document_.paragraphs.emplace_back();
  }

 private:
  /// What a char format stands for.
  struct Known {
    bool known = false;
    std::uint32_t format = 0;
    int object = 0;
    int attached = 0;
  };
  /// The same of a block's format.
  struct KnownBlock {
    bool known = false;
    bool is_filler = false;
    std::uint32_t format = 0;
    int flat_cell = 0;
    int long_paragraph = 0;
    int piece = 0;
    int mark = 0;
    int attached = 0;
  };

  void Frame(QTextFrame::iterator from, const QTextFrame::iterator& to, std::int32_t cell) {
    Part last;
    for (; from != to; ++from) {
      QTextFrame* frame = from.currentFrame();
      if (frame) {
        flat_tables_.Close();
        before_ = {};
      }
      if (const auto* table = qobject_cast<QTextTable*>(frame))
        last = Table(*table, cell, last);
      else if (frame)
        Frame(frame->begin(), frame->end(), cell);
      else if (Block(from.currentBlock(), cell))
        last = {};
      if (frame) before_ = {};
    }
    flat_tables_.Close();
  }

  /// The paragraph that a block shows or, of a long one, goes on with.
  rtf::Paragraph& ParagraphOf(const KnownBlock& block, std::int32_t cell) {
    const bool goes_on = block.long_paragraph > 0 && block.long_paragraph == before_.long_paragraph &&
                         block.piece > before_.piece && before_.flat_cell == block.flat_cell &&
                         document_.paragraphs.back().format == block.format;
    before_ = block;
    if (goes_on) return document_.paragraphs.back();
    if (block.flat_cell > 0)
      cell = flat_tables_.CellOf(block.flat_cell - 1, cell);
    else
      flat_tables_.Close();
    return document_.paragraphs.emplace_back(
        rtf::Paragraph{static_cast<std::uint32_t>(document_.runs.size()), block.format, 0, cell});
  }

  /// False when there is nothing to export.
  bool Block(const QTextBlock& block, std::int32_t cell) {
    const KnownBlock known = KnownOf(block);
    if (known.is_filler && block.length() == 1) return false;
    rtf::Paragraph& paragraph = ParagraphOf(known, cell);
    for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) Fragment(it.fragment(), paragraph.first_run);
    paragraph.mark_format =
        known.mark > 0 ? static_cast<std::uint32_t>(known.mark) - 1 : KnownOf(block.charFormatIndex(), block).format;
    WriteAttached(known.attached);
    return true;
  }

  const KnownBlock& KnownOf(const QTextBlock& block) {
    const auto number = static_cast<std::size_t>(block.blockFormatIndex());
    if (known_blocks_.size() <= number) known_blocks_.resize(number + 1);
    KnownBlock& known = known_blocks_[number];
    if (known.known) return known;
    const QTextBlockFormat format = block.blockFormat();
    known = {.known = true,
             .is_filler = format.hasProperty(kFiller),
             .format = formats_.Read(format, block.textList()),
             .flat_cell = format.intProperty(kFlatCell),
             .long_paragraph = format.intProperty(kLongParagraph),
             .piece = format.intProperty(kPiece),
             .mark = format.intProperty(kMarkFormat),
             .attached = format.intProperty(kAttached)};
    return known;
  }

  /// index: of the format that `of`, a fragment or block, has; asked for it, a block looks through the whole document.
  template <typename Of>
  Known KnownOf(int index, const Of& of) {
    const auto number = static_cast<std::size_t>(index);
    if (known_.size() <= number) known_.resize(number + 1);
    Known& known = known_[number];
    if (known.known) return known;
    const QTextCharFormat format = of.charFormat();
    known.known = true;
    known.format = formats_.Read(format);
    known.attached = format.intProperty(kAttached);
    if (format.objectType() == kRtfObjectType) known.object = format.intProperty(kObject);
    return known;
  }

  void Fragment(const QTextFragment& fragment, std::uint32_t first_run) {
    const Known known = KnownOf(fragment.charFormatIndex(), fragment);
    WriteAttached(known.attached);
    const QString text = fragment.text();
    if (known.object == 0) return AddText(text, known.format, first_run);
    for (const QChar character : text) {
      if (character != QChar::ObjectReplacementCharacter)
        AddText(QStringView(&character, 1), known.format, first_run);
      else if (known.object == kPageBreak)
        AddText(u"\f", known.format, first_run);
      else
        document_.runs.push_back({0, known.format, static_cast<std::uint32_t>(known.object)});
    }
  }

  void AddText(QStringView text, std::uint32_t format, std::uint32_t first_run) {
    const QByteArray bytes = text.toUtf8();
    document_.text.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    auto& runs = document_.runs;
    if (runs.size() > first_run && runs.back().object == 0 && runs.back().format == format)
      runs.back().bytes += static_cast<std::uint32_t>(bytes.size());
    else
      runs.push_back({static_cast<std::uint32_t>(bytes.size()), format, 0});
  }

  /// Formats that were split name it more than once.
  void WriteAttached(int number) {
    if (number <= 0 || !written_.insert(number).second) return;
    for (const RtfStore::Attached& part : store_.attached[static_cast<std::size_t>(number) - 1]) {
      document_.text += part.hidden_text;
      document_.runs.push_back({static_cast<std::uint32_t>(part.hidden_text.size()), part.format, part.object});
    }
  }

  /// A table of the view that is one of several that make up one of the file.
  struct Part {
    std::uint32_t table = 0;
    int group = 0;
    int part = 0;
  };

  /// last: what stands right before it.
  Part Table(const QTextTable& table, std::int32_t parent, const Part& last) {
    const int kept_number = table.format().intProperty(kTable);
    const RtfStore::KeptTable* kept =
        kept_number > 0 ? &store_.tables[static_cast<std::size_t>(kept_number) - 1] : nullptr;
    if (kept && (kept->columns != table.columns() || kept->rows.size() != static_cast<std::size_t>(table.rows())))
      kept = nullptr;
    const bool goes_on = kept && kept->group > 0 && kept->group == last.group && kept->part > last.part;
    const std::uint32_t number = goes_on ? last.table : static_cast<std::uint32_t>(document_.tables.size());
    if (!goes_on) document_.tables.push_back({parent});
    const RtfNewTable::ColorOf color_of = [this](const QBrush& brush) { return formats_.ColorOf(brush); };
    std::optional<RtfNewTable> look;
    if (!kept) look.emplace(table, color_of);
    if (kept && IsSimple(table, *kept)) {
      SimpleRows(table, *kept, number);
      return {number, kept->group, kept->part};
    }
    for (int row = 0; row < table.rows(); ++row) {
      const RtfStore::KeptRow* kept_row = kept ? &kept->rows[static_cast<std::size_t>(row)] : nullptr;
      document_.rows.push_back({number, kept_row ? kept_row->definition : std::string()});
      if (kept_row)
        KeptRow(table, row, *kept_row);
      else
        NewRow(table, row, *look);
    }
    return kept ? Part{number, kept->group, kept->part} : Part{};
  }

  /// Whether each cell is a place of its own, and no table stands in one.
  static bool IsSimple(const QTextTable& table, const RtfStore::KeptTable& kept) {
    const auto columns = static_cast<std::size_t>(kept.columns);
    const auto has_own_place = [](const rtf::Cell& cell) { return cell.row_span == 1 && cell.column_span == 1; };
    return !kept.has_spans && table.childFrames().isEmpty() &&
           std::ranges::all_of(kept.rows, [&](const RtfStore::KeptRow& row) {
             return row.cells.size() == columns && std::ranges::all_of(row.cells, has_own_place);
           });
  }

  /// From block to block: what looks a cell up takes longer than all the rest.
  void SimpleRows(const QTextTable& table, const RtfStore::KeptTable& kept, std::uint32_t number) {
    // Not by a cursor: that would lay all out up to its place.
    const QTextDocument& view = *table.document();
    QTextBlock block = view.findBlock(table.firstPosition());
    const int blocks = view.findBlock(table.lastPosition()).blockNumber() - block.blockNumber() + 1;
    const bool is_one_each = blocks == table.rows() * table.columns();
    for (int row = 0; row < table.rows(); ++row) {
      const RtfStore::KeptRow& kept_row = kept.rows[static_cast<std::size_t>(row)];
      document_.rows.push_back({number, kept_row.definition});
      const auto row_number = static_cast<std::uint32_t>(document_.rows.size() - 1);
      for (int column = 0; column < table.columns(); ++column) {
        const std::int32_t cell = AddCell(document_, row_number, kept_row.cells[static_cast<std::size_t>(column)]);
        const std::size_t before = document_.paragraphs.size();
        const int end = is_one_each ? 0 : table.cellAt(row, column).lastPosition();
        do {
          Block(block, cell);
          block = block.next();
        } while (!is_one_each && block.isValid() && block.position() <= end);
        flat_tables_.Close();
        before_ = {};
        AddMissingParagraph(before, cell);
      }
    }
  }

  /// before: how many paragraphs there were.
  void AddMissingParagraph(std::size_t before, std::int32_t cell) {
    if (document_.paragraphs.size() == before || document_.paragraphs.back().cell != cell)
      AddEmptyParagraph(document_, cell);
  }

  /// cell: invalid where the view shows none.
  void CellText(const QTextTableCell& cell, std::int32_t number) {
    const std::size_t before = document_.paragraphs.size();
    if (cell.isValid()) Frame(cell.begin(), cell.end(), number);
    AddMissingParagraph(before, number);
  }

  void KeptRow(const QTextTable& table, int row, const RtfStore::KeptRow& kept) {
    int column = 0;
    const auto next = [&] {
      for (; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(row, column);
        if (cell.row() == row && cell.column() == column) return table.cellAt(row, column++);
      }
      return QTextTableCell();
    };
    // The row number in `document_.rows` changes when a cell holds a table.
    const auto row_number = static_cast<std::uint32_t>(document_.rows.size() - 1);
    for (const rtf::Cell& cell : kept.cells) {
      const std::int32_t number = AddCell(document_, row_number, cell);
      const bool is_merged_away = cell.row_span == 0 || cell.column_span == 0;
      CellText(is_merged_away ? QTextTableCell() : next(), number);
    }
  }

  void NewRow(const QTextTable& table, int row, const RtfNewTable& look) {
    const auto row_number = static_cast<std::uint32_t>(document_.rows.size() - 1);
    // A table of a file that was cut says nothing of how it looks.
    const bool is_cut = table.format().hasProperty(kTable);
    for (int column = 0; column < table.columns();) {
      const QTextTableCell cell = table.cellAt(row, column);
      const int end = column + std::max(cell.columnSpan(), 1);
      const bool starts_here = cell.row() == row;
      rtf::Cell made;
      made.right_edge = is_cut ? kWidthOfNewTable * end / table.columns() : look.EdgeBefore(end);
      made.row_span = starts_here ? static_cast<std::uint16_t>(cell.rowSpan()) : std::uint16_t{0};
      const std::int32_t number = AddCell(document_, row_number, made);
      CellText(starts_here ? cell : QTextTableCell(), number);
      if (!is_cut) look.AddCell(cell, made, document_.rows[row_number].definition);
      column = end;
    }
  }

  RtfStore& store_;
  RtfDocument& document_;
  RtfFormats formats_;
  RtfFlatExport flat_tables_;
  KnownBlock before_;  ///< of the block right before; unknown behind a table
  std::vector<Known> known_;
  std::vector<KnownBlock> known_blocks_;
  std::unordered_set<int> written_;
};

}  // namespace

RtfExport::RtfExport(const QTextDocument& view, RtfStore& store) : store_(store) {
  TakeRtfText(store_.document);
  Exporter(store).Run(view);
}

RtfExport::~RtfExport() { TakeRtfText(store_.document); }

}  // namespace tme
