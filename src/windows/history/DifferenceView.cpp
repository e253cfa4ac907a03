#include "windows/history/DifferenceView.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QKeyEvent>
#include <QLocale>
#include <algorithm>
#include <array>
#include <string>

#include "base/Utf8.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr std::size_t kContextLines = 3;
/// Shown before the place where an overlong line differs.
constexpr std::size_t kBytesBefore = 60;
constexpr std::string_view kEllipsis = "…";

/// Scintilla's marker numbers.
enum RowMark : unsigned char { kOnlyNow, kOnlyVersion, kLeftOut, kNoMark };

/// Lines become rows: the mark, the text, the line end.
class Rows {
 public:
  Rows(const std::vector<DiffLine>& lines, ShownLines shown) : lines_(lines), shown_(shown) {}

  void Make() {
    for (std::size_t begin = 0; begin < lines_.size();) {
      const bool same = lines_[begin].change == DiffChange::Same;
      std::size_t end = begin;
      while (end < lines_.size() && (lines_[end].change == DiffChange::Same) == same) ++end;
      if (same)
        AddStretch(begin, end);
      else
        AddDifference(begin, end);
      begin = end;
    }
  }

  std::string text;
  std::vector<unsigned char> marks;  ///< one RowMark for each row
  bool has_cut_lines = false;

 private:
  void AddStretch(std::size_t begin, std::size_t end) {
    const std::size_t before = begin == 0 ? 0 : kContextLines, after = end == lines_.size() ? 0 : kContextLines;
    // A line of its own is no more than what it would replace.
    if (shown_ == ShownLines::All || end - begin <= before + after + 1) {
      for (std::size_t line = begin; line < end; ++line) AddRow(lines_[line], 0);
      return;
    }
    for (std::size_t line = begin; line < begin + before; ++line) AddRow(lines_[line], 0);
    const QString count = QLocale().toString(static_cast<qulonglong>(end - begin - before - after));
    text += "  " + DifferenceView::tr("… %1 lines that are the same …").arg(count).toStdString() + '\n';
    marks.push_back(kLeftOut);
    for (std::size_t line = end - after; line < end; ++line) AddRow(lines_[line], 0);
  }

  /// A long line is shown from where it differs from what takes its place.
  void AddDifference(std::size_t begin, std::size_t end) {
    std::array<std::vector<std::size_t>, 2> sides;
    for (std::size_t line = begin; line < end; ++line) sides[SideOf(line)].push_back(line);
    std::array<std::size_t, 2> places{};
    for (std::size_t line = begin; line < end; ++line) {
      const std::size_t side = SideOf(line), place = places[side]++;
      const std::vector<std::size_t>& others = sides[1 - side];
      const std::string_view text_here = lines_[line].text;
      const bool is_pair = text_here.size() > DifferenceView::kShownLineBytes && place < others.size();
      AddRow(lines_[line], is_pair ? CommonStart(text_here, lines_[others[place]].text) : 0);
    }
  }

  std::size_t SideOf(std::size_t line) const { return lines_[line].change == DiffChange::Removed ? 0 : 1; }

  static std::size_t CommonStart(std::string_view a, std::string_view b) {
    return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
  }

  void AddRow(const DiffLine& line, std::size_t differs_at) {
    constexpr std::array kMarks{' ', '-', '+'};
    text += kMarks[static_cast<std::size_t>(line.change)];
    text += ' ';
    const bool fits = line.text.size() <= DifferenceView::kShownLineBytes;
    const std::size_t start =
        fits || differs_at <= kBytesBefore ? 0 : utf8::CharacterStart(line.text, differs_at - kBytesBefore);
    const std::size_t end =
        fits ? line.text.size()
             : utf8::CharacterStart(line.text, std::min(start + DifferenceView::kShownLineBytes, line.text.size()));
    if (start > 0) text += kEllipsis;
    text += line.text.substr(start, end - start);
    if (end < line.text.size()) text += kEllipsis;
    has_cut_lines |= !fits;
    text += '\n';
    constexpr std::array kRowMarks{kNoMark, kOnlyNow, kOnlyVersion};
    marks.push_back(kRowMarks[static_cast<std::size_t>(line.change)]);
  }

  const std::vector<DiffLine>& lines_;
  const ShownLines shown_;
};

}  // namespace

DifferenceView::DifferenceView(QWidget* parent) : TextPad(parent) {
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  SetTextFont(fixed.family(), std::max(1, QFontInfo(fixed).pointSize()));
  struct Color {
    RowMark mark;
    QColor color;
    int alpha;
  };
  // Over light and dark backgrounds alike.
  for (const Color& row : {Color{kOnlyNow, QColor(220, 50, 50), 70}, Color{kOnlyVersion, QColor(40, 170, 60), 70},
                           Color{kLeftOut, QColor(128, 128, 128), 60}}) {
    SendScintilla(SCI_MARKERDEFINE, row.mark, SC_MARK_BACKGROUND);
    SendScintilla(SCI_MARKERSETBACK, row.mark, row.color);
    SendScintilla(SCI_MARKERSETALPHA, row.mark, row.alpha);
  }
  SendScintilla(SCI_SETCARETLINEVISIBLEALWAYS, 1L);
  SendScintilla(SCI_SETCARETLINEFRAME, 1L);
  connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
    if (updated & SC_UPDATE_SELECTION) emit CaretMoved();
  });
  Clear();
}

void DifferenceView::Clear() { ShowLines({}, ShownLines::All); }

void DifferenceView::ShowLines(const std::vector<DiffLine>& lines, ShownLines shown) {
  Rows rows(lines, shown);
  rows.Make();
  if (!rows.text.empty()) rows.text.pop_back();
  has_cut_lines_ = rows.has_cut_lines;
  SendScintilla(SCI_SETREADONLY, 0L);
  SetText(std::move(rows.text));
  SendScintilla(SCI_SETREADONLY, 1L);
  MarkDifferences(rows.marks);
  SendScintilla(SCI_SETCARETLINEVISIBLE, differences_.empty() ? 0L : 1L);
  SendScintilla(SCI_SETCARETLINEBACK, palette().color(QPalette::Active, QPalette::Highlight));
  if (!differences_.empty()) GoTo(differences_.front());
}

void DifferenceView::MarkDifferences(const std::vector<unsigned char>& row_marks) {
  differences_.clear();
  // A signal for each would take longer than all the rest.
  const long heard = SendScintilla(SCI_GETMODEVENTMASK);
  SendScintilla(SCI_SETMODEVENTMASK, 0L);
  for (std::size_t index = 0; index < row_marks.size(); ++index) {
    const unsigned char mark = row_marks[index];
    const int row = static_cast<int>(index);
    if (mark == kNoMark) continue;
    SendScintilla(SCI_MARKERADD, static_cast<unsigned long>(row), static_cast<long>(mark));
    if (mark == kLeftOut) continue;
    if (differences_.empty() || differences_.back().end_row != row) differences_.push_back({row, row});
    differences_.back().end_row = row + 1;
  }
  SendScintilla(SCI_SETMODEVENTMASK, heard);
}

int DifferenceView::CaretRow() const {
  return static_cast<int>(
      SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(SendScintilla(SCI_GETCURRENTPOS))));
}

int DifferenceView::CurrentDifference() const {
  const auto behind = std::ranges::upper_bound(differences_, CaretRow(), {}, &Difference::first_row);
  return static_cast<int>(behind - differences_.begin());
}

bool DifferenceView::HasNext() const { return CurrentDifference() < DifferenceCount(); }

bool DifferenceView::HasPrevious() const {
  return !differences_.empty() && CaretRow() > differences_.front().first_row;
}

void DifferenceView::GoToNext() {
  if (HasNext()) GoTo(differences_[static_cast<std::size_t>(CurrentDifference())]);
}

void DifferenceView::GoToPrevious() {
  if (!HasPrevious()) return;
  const auto at = std::ranges::lower_bound(differences_, CaretRow(), {}, &Difference::first_row);
  GoTo(*std::prev(at));
}

void DifferenceView::GoTo(const Difference& difference) {
  const auto row = static_cast<unsigned long>(difference.first_row);
  SendScintilla(SCI_GOTOLINE, row);
  // With some of what stands before it.
  const long on_screen = SendScintilla(SCI_LINESONSCREEN);
  SendScintilla(SCI_SETFIRSTVISIBLELINE,
                static_cast<unsigned long>(std::max(0L, static_cast<long>(row) - on_screen / 4)));
  SendScintilla(SCI_SETXOFFSET, 0L);
  emit CaretMoved();
}

void DifferenceView::showEvent(QShowEvent* event) {
  TextPad::showEvent(event);
  // How many lines stand around the first difference is known only now.
  if (!event->spontaneous() && !differences_.empty()) GoTo(differences_.front());
}

void DifferenceView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
      event->ignore();
      return;
    default:
      TextPad::keyPressEvent(event);
  }
}

}  // namespace tme
