#include "text/RtfExport.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>
#include <unordered_set>

namespace tme {
namespace {

using rtf::RtfDocument;

constexpr int kWidthOfNewTable = 9000;  // twips

class Exporter {
 public:
  explicit Exporter(RtfStore& store) : store_(store), document_(store.document), looks_(store) {}

  void Run(const QTextDocument& view) {
    const QTextFrame* root = view.rootFrame();
    Frame(root->begin(), root->end(), -1);
    if (document_.paragraphs.empty()) document_.paragraphs.emplace_back();
  }

 private:
  /// What a char format stands for.
  struct Known {
    bool known = false;
    std::uint32_t look = 0;
    int object = 0;
    int attached = 0;
  };

  void Frame(QTextFrame::iterator from, const QTextFrame::iterator& to, std::int32_t cell) {
    for (; from != to; ++from) {
      QTextFrame* frame = from.currentFrame();
      if (const auto* table = qobject_cast<QTextTable*>(frame))
        Table(*table, cell);
      else if (frame)
        Frame(frame->begin(), frame->end(), cell);
      else
        Block(from.currentBlock(), cell);
    }
  }

  void Block(const QTextBlock& block, std::int32_t cell) {
    const QTextBlockFormat format = block.blockFormat();
    if (block.length() == 1 && format.hasProperty(kFiller)) return;
    rtf::Paragraph& paragraph = document_.paragraphs.emplace_back();
    paragraph.first_run = static_cast<std::uint32_t>(document_.runs.size());
    paragraph.cell = cell;
    paragraph.format = ParagraphLook(block, format);
    for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) Fragment(it.fragment(), paragraph.first_run);
    const int mark = format.intProperty(kMarkLook);
    paragraph.mark_format =
        mark > 0 ? static_cast<std::uint32_t>(mark) - 1 : KnownOf(block.charFormatIndex(), block.charFormat()).look;
    WriteAttached(format.intProperty(kAttached));
  }

  std::uint32_t ParagraphLook(const QTextBlock& block, const QTextBlockFormat& format) {
    const auto [place, is_new] = paragraph_looks_.try_emplace(block.blockFormatIndex(), 0U);
    if (is_new) place->second = looks_.Read(format, block.textList());
    return place->second;
  }

  Known KnownOf(int index, const QTextCharFormat& format) {
    const auto number = static_cast<std::size_t>(index);
    if (known_.size() <= number) known_.resize(number + 1);
    Known& known = known_[number];
    if (known.known) return known;
    known.known = true;
    known.look = looks_.Read(format);
    known.attached = format.intProperty(kAttached);
    if (format.objectType() == kRtfObjectType) known.object = format.intProperty(kObject);
    return known;
  }

  void Fragment(const QTextFragment& fragment, std::uint32_t first_run) {
    const int index = fragment.charFormatIndex();
    const auto number = static_cast<std::size_t>(index);
    const Known known =
        number < known_.size() && known_[number].known ? known_[number] : KnownOf(index, fragment.charFormat());
    WriteAttached(known.attached);
    const QString text = fragment.text();
    if (known.object == 0) return AddText(text, known.look, first_run);
    for (const QChar character : text) {
      if (character != QChar::ObjectReplacementCharacter)
        AddText(QStringView(&character, 1), known.look, first_run);
      else if (known.object == kPageBreak)
        AddText(u"\f", known.look, first_run);
      else
        document_.runs.push_back({0, known.look, static_cast<std::uint32_t>(known.object)});
    }
  }

  void AddText(QStringView text, std::uint32_t look, std::uint32_t first_run) {
    const QByteArray bytes = text.toUtf8();
    document_.text.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    auto& runs = document_.runs;
    if (runs.size() > first_run && runs.back().object == 0 && runs.back().format == look)
      runs.back().bytes += static_cast<std::uint32_t>(bytes.size());
    else
      runs.push_back({static_cast<std::uint32_t>(bytes.size()), look, 0});
  }

  /// Formats that were split name it more than once.
  void WriteAttached(int number) {
    if (number <= 0 || !written_.insert(number).second) return;
    for (const RtfStore::Attached& part : store_.attached[static_cast<std::size_t>(number) - 1]) {
      document_.text += part.hidden_text;
      document_.runs.push_back({static_cast<std::uint32_t>(part.hidden_text.size()), part.format, part.object});
    }
  }

  void Table(const QTextTable& table, std::int32_t parent) {
    const auto number = static_cast<std::uint32_t>(document_.tables.size());
    document_.tables.push_back({parent});
    const int kept_number = table.format().intProperty(kTable);
    const RtfStore::KeptTable* kept =
        kept_number > 0 ? &store_.tables[static_cast<std::size_t>(kept_number) - 1] : nullptr;
    if (kept && (kept->columns != table.columns() || kept->rows.size() != static_cast<std::size_t>(table.rows())))
      kept = nullptr;
    for (int row = 0; row < table.rows(); ++row) {
      const RtfStore::KeptRow* kept_row = kept ? &kept->rows[static_cast<std::size_t>(row)] : nullptr;
      document_.rows.push_back({number, kept_row ? kept_row->definition : std::string()});
      if (kept_row)
        KeptRow(table, row, *kept_row);
      else
        NewRow(table, row);
    }
  }

  std::int32_t AddCell(std::uint32_t row, rtf::Cell cell) {
    cell.row = row;
    document_.cells.push_back(cell);
    return static_cast<std::int32_t>(document_.cells.size() - 1);
  }

  void EmptyParagraph(std::int32_t cell) {
    document_.paragraphs.push_back({static_cast<std::uint32_t>(document_.runs.size()), 0, 0, cell});
  }

  void CellText(const QTextTableCell& cell, std::int32_t number) {
    const std::size_t before = document_.paragraphs.size();
    Frame(cell.begin(), cell.end(), number);
    if (document_.paragraphs.size() == before || document_.paragraphs.back().cell != number) EmptyParagraph(number);
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
      const std::int32_t number = AddCell(row_number, cell);
      const bool is_merged_away = cell.row_span == 0 || cell.column_span == 0;
      const QTextTableCell shown = is_merged_away ? QTextTableCell() : next();
      if (shown.isValid())
        CellText(shown, number);
      else
        EmptyParagraph(number);
    }
  }

  void NewRow(const QTextTable& table, int row) {
    const auto row_number = static_cast<std::uint32_t>(document_.rows.size() - 1);
    for (int column = 0; column < table.columns();) {
      const QTextTableCell cell = table.cellAt(row, column);
      const int end = column + std::max(cell.columnSpan(), 1);
      const bool starts_here = cell.row() == row;
      rtf::Cell made;
      made.right_edge = kWidthOfNewTable * end / table.columns();
      made.row_span = starts_here ? static_cast<std::uint16_t>(cell.rowSpan()) : std::uint16_t{0};
      const std::int32_t number = AddCell(row_number, made);
      if (starts_here)
        CellText(cell, number);
      else
        EmptyParagraph(number);
      column = end;
    }
  }

  RtfStore& store_;
  RtfDocument& document_;
  RtfLooks looks_;
  std::vector<Known> known_;
  std::unordered_map<int, std::uint32_t> paragraph_looks_;
  std::unordered_set<int> written_;
};

void ClearText(RtfDocument& document) {
  document.text = {};
  document.runs = {};
  document.paragraphs = {};
  document.cells = {};
  document.rows = {};
  document.tables = {};
}

}  // namespace

RtfExport::RtfExport(const QTextDocument& view, RtfStore& store) : store_(store) {
  ClearText(store_.document);
  Exporter(store).Run(view);
}

RtfExport::~RtfExport() { ClearText(store_.document); }

}  // namespace tme
