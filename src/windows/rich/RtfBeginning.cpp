#include "windows/rich/RtfBeginning.h"

#include <algorithm>

#include "base/Utf8.h"
#include "windows/rich/RtfShape.h"

namespace tme {
namespace {

using rtf::RtfDocument;

// Runs that a view is filled with in a twentieth of a second, and what other parts cost beside them; as measured.
constexpr std::size_t kRunsNotNoticed = 40'000;
constexpr std::size_t kRunsOfParagraph = 2, kRunsOfCell = 4, kBytesOfRun = 300;

// Some hundred lines.
constexpr std::size_t kParagraphs = 400, kBytes = 30'000, kRuns = 4'000;
/// How much longer a row may make it.
constexpr std::size_t kParagraphsOfRow = 400;
// A long paragraph is cut where it is still long: one that is shown in pieces is so here, too.
constexpr std::size_t kLongestBytes = 2 * kLongBytes, kLongestRuns = 2 * kLongRuns;

/// The row of a table of the text itself that a paragraph stands in; -1 for none.
std::int64_t OutermostRow(const RtfDocument& document, const rtf::Paragraph& paragraph) {
  std::int32_t cell = paragraph.cell;
  std::int64_t row = -1;
  while (cell >= 0) {
    row = document.cells[static_cast<std::size_t>(cell)].row;
    const std::int32_t around = document.tables[document.rows[static_cast<std::size_t>(row)].table].parent_cell;
    cell = around < cell ? around : -1;
  }
  return row;
}

template <typename Entry>
std::vector<Entry> First(const std::vector<Entry>& entries, std::size_t count) {
  return {entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(std::min(count, entries.size()))};
}

class Beginning {
 public:
  explicit Beginning(const RtfDocument& source) : source_(source) {}

  RtfDocument Take() {
    std::size_t paragraph = 0;
    while (paragraph < source_.paragraphs.size() && (!IsEnough() || GoesOnInRow(paragraph))) TakeParagraph(paragraph++);
    TakeTables();
    TakeFormats();
    beginning_.fonts = source_.fonts;
    beginning_.colors = source_.colors;
    beginning_.ansi_code_page = source_.ansi_code_page;
    beginning_.default_font = source_.default_font;
    beginning_.kept_header = source_.kept_header;
    beginning_.document_controls = source_.document_controls;
    beginning_.kept_section = source_.kept_section;
    return std::move(beginning_);
  }

 private:
  bool IsEnough() const {
    return beginning_.paragraphs.size() >= kParagraphs || beginning_.text.size() >= kBytes ||
           beginning_.runs.size() >= kRuns;
  }

  bool GoesOnInRow(std::size_t paragraph) const {
    if (paragraph == 0 || beginning_.paragraphs.size() >= kParagraphs + kParagraphsOfRow) return false;
    const std::int64_t row = OutermostRow(source_, source_.paragraphs[paragraph]);
    return row >= 0 && row == OutermostRow(source_, source_.paragraphs[paragraph - 1]);
  }

  void TakeParagraph(std::size_t number) {
    rtf::Paragraph paragraph = source_.paragraphs[number];
    const std::size_t end = std::min<std::size_t>(source_.EndOfRuns(number), paragraph.first_run + kLongestRuns);
    std::size_t room = kLongestBytes;
    const std::size_t first = paragraph.first_run;
    paragraph.first_run = static_cast<std::uint32_t>(beginning_.runs.size());
    std::size_t text = text_;
    for (std::size_t index = first; index < end && room > 0; ++index) {
      rtf::Run run = source_.runs[index];
      const std::size_t whole = run.bytes;
      if (whole > room) run.bytes = static_cast<std::uint32_t>(utf8::CharacterStart(source_.text, text + room) - text);
      beginning_.text.append(source_.text, text, run.bytes);
      beginning_.runs.push_back(run);
      text += whole;
      room = whole > room ? 0 : room - whole;
      objects_ = std::max<std::size_t>(objects_, run.object);
      NoteFormat(run.format);
    }
    for (std::size_t index = first; index < source_.EndOfRuns(number); ++index) text_ += source_.runs[index].bytes;
    NoteFormat(paragraph.mark_format);
    paragraph_formats_ = std::max<std::size_t>(paragraph_formats_, paragraph.format + std::size_t{1});
    if (paragraph.cell >= 0) cells_ = std::max(cells_, static_cast<std::size_t>(paragraph.cell) + 1);
    beginning_.paragraphs.push_back(paragraph);
  }

  void NoteFormat(std::uint32_t format) { char_formats_ = std::max(char_formats_, format + std::size_t{1}); }

  void TakeTables() {
    beginning_.cells = First(source_.cells, cells_);
    std::size_t rows = 0, tables = 0;
    for (const rtf::Cell& cell : beginning_.cells) rows = std::max(rows, cell.row + std::size_t{1});
    beginning_.rows = First(source_.rows, rows);
    for (const rtf::Row& row : beginning_.rows) tables = std::max(tables, row.table + std::size_t{1});
    beginning_.tables = First(source_.tables, tables);
  }

  void TakeFormats() {
    beginning_.char_formats = First(source_.char_formats, char_formats_);
    beginning_.paragraph_formats = First(source_.paragraph_formats, paragraph_formats_);
    std::size_t fields = 0, extras = 0;
    for (const rtf::CharFormat& format : beginning_.char_formats) {
      fields = std::max<std::size_t>(fields, format.field);
      extras = std::max<std::size_t>(extras, format.extra);
    }
    for (const rtf::ParagraphFormat& format : beginning_.paragraph_formats)
      extras = std::max<std::size_t>({extras, format.extra, format.list_group});
    beginning_.fields = First(source_.fields, fields);
    beginning_.extras = First(source_.extras, extras);
    beginning_.objects = First(source_.objects, objects_);
  }

  const RtfDocument& source_;
  RtfDocument beginning_;
  std::size_t text_ = 0;  ///< where the next paragraph begins in the source
  // How many of the source are named.
  std::size_t char_formats_ = 1, paragraph_formats_ = 1, objects_ = 0, cells_ = 0;
};

}  // namespace

bool TakesLongToShow(const RtfDocument& document) {
  return document.runs.size() + document.paragraphs.size() * kRunsOfParagraph + document.cells.size() * kRunsOfCell +
             document.text.size() / kBytesOfRun >
         kRunsNotNoticed;
}

RtfDocument BeginningOf(const RtfDocument& document) { return Beginning(document).Take(); }

}  // namespace tme
