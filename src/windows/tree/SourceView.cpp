#include "windows/tree/SourceView.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "documents/SourceLines.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Lines around those in sight in which what they belong to is looked for.
constexpr PadPosition kNearLines = 1000;
/// More bytes than this are shown plain.
constexpr PadPosition kMostStyled = PadPosition{1} << 18;

}  // namespace

SourceView::SourceView(QWidget* parent, const SourceLexer& lexer) : TextPad(parent, Styles::Kept), lexer_(lexer) {
  setObjectName(u"source"_s);
  setAccessibleName(tr("Source"));
  SetUpMarks();
  connect(this, &QsciScintillaBase::SCN_STYLENEEDED, this, &SourceView::StyleInSight);
  connect(this, &QsciScintillaBase::SCEN_CHANGE, this, [this] {
    if (is_following_) return;
    is_typed_ = true;
    emit Typed();
  });
  connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
    if (updated & SC_UPDATE_V_SCROLL && is_plain_in_sight_) StyleInSight();
    if (updated & (SC_UPDATE_SELECTION | SC_UPDATE_CONTENT)) emit PlaceChanged();
    if (updated & SC_UPDATE_SELECTION && hasFocus() && !is_following_) emit CaretMoved();
  });
  ApplyEditable();
}

void SourceView::SetEditable(bool editable) {
  is_editable_ = editable;
  ApplyEditable();
}

void SourceView::ApplyEditable() {
  Send(SCI_SETREADONLY, is_editable_ ? 0 : 1);
  Send(SCI_SETUNDOCOLLECTION, is_editable_ ? 1 : 0);
}

void SourceView::Accept() {
  is_typed_ = false;
  Send(SCI_EMPTYUNDOBUFFER);
}

void SourceView::Mark(const std::vector<SourceLineRange>& lines) {
  if (lines == marked_) return;
  // Marks move with what is typed above them.
  Send(SCI_MARKERDELETEALL, 0);
  marked_ = lines;
  for (const SourceLineRange& range : marked_)
    for (PadPosition line = range.first; line < range.first + range.count; ++line)
      Send(SCI_MARKERADD, static_cast<std::uintptr_t>(line), 0);
}

void SourceView::Reveal(const SourceLineRange& lines) {
  const PadPosition top = Send(SCI_GETFIRSTVISIBLELINE), shown = std::max<PadPosition>(Send(SCI_LINESONSCREEN), 1);
  if (!hasFocus()) Send(SCI_SETEMPTYSELECTION, static_cast<std::uintptr_t>(StartOf(lines.first)));
  const PadPosition last = lines.first + std::min(lines.count, shown) - 1;
  if (lines.first >= top && last < top + shown) return;
  Send(SCI_SETFIRSTVISIBLELINE, static_cast<std::uintptr_t>(std::max<PadPosition>(lines.first - shown / 3, 0)));
}

QString SourceView::FaultAt(PadPosition line) const {
  PadPosition start = 0;
  const SourcePart part = PartAround(line, line, start);
  std::string styles(part.text.size(), '\0');
  for (const SourceFault& fault : lexer_.Read(part, styles)) {
    const PadPosition first = start + static_cast<PadPosition>(fault.at);
    if (LineAt(first) <= line && LineAt(first + static_cast<PadPosition>(fault.size) - 1) >= line) return fault.reason;
  }
  return {};
}

SourcePart SourceView::PartAround(PadPosition first, PadPosition last, PadPosition& start) const {
  SourcePart part;
  const PadPosition least = std::max<PadPosition>(first - kNearLines, 0);
  const PadPosition most = std::min(last + kNearLines, LineCount() - 1);
  while (first > least && lexer_.GoesOn(Line(first - 1))) --first;
  while (last < most && lexer_.GoesOn(Line(last))) ++last;
  start = StartOf(first);
  if (EndOf(last) - start > kMostStyled) return part;
  part.text = BytesBetween(start, EndOf(last));
  part.is_first = first == 0;
  part.starts_within = first > 0 && lexer_.GoesOn(Line(first - 1));
  part.ends_within = last + 1 < LineCount() && lexer_.GoesOn(Line(last));
  return part;
}

void SourceView::StyleInSight() {
  const PadPosition first = Send(SCI_GETFIRSTVISIBLELINE);
  const PadPosition last = std::min(first + Send(SCI_LINESONSCREEN) + 1, LineCount() - 1);
  PadPosition start = 0;
  const SourcePart part = PartAround(std::min(first, last), last, start);
  is_plain_in_sight_ = part.text.empty();
  // Each question has the component lay out all lines in sight again, so it may not ask with each painting.
  if (is_plain_in_sight_) return void(Send(SCI_STARTSTYLING, static_cast<std::uintptr_t>(End())));
  std::string styles(part.text.size(), '\0');
  const std::vector<SourceFault> faults = lexer_.Read(part, styles);
  const PadPosition end = start + static_cast<PadPosition>(part.text.size());
  Send(SCI_STARTSTYLING, static_cast<std::uintptr_t>(start));
  Send(SCI_SETSTYLINGEX, styles.size(), reinterpret_cast<std::intptr_t>(styles.data()));
  ShowFaults(start, end, faults);
  // So that each painting asks again, wherever it is.
  Send(SCI_STARTSTYLING, 0);
}

void SourceView::ShowFaults(PadPosition start, PadPosition end, const std::vector<SourceFault>& faults) {
  // What stays the same is painted no more.
  PadPosition at = start;
  const auto clear = [this, &at](PadPosition to) {
    if (to > at) Send(SCI_INDICATORCLEARRANGE, static_cast<std::uintptr_t>(at), to - at);
  };
  Send(SCI_SETINDICATORCURRENT, INDIC_CONTAINER);
  for (const SourceFault& fault : faults) {
    const PadPosition first = start + static_cast<PadPosition>(fault.at);
    clear(first);
    Send(SCI_INDICATORFILLRANGE, static_cast<std::uintptr_t>(first), static_cast<PadPosition>(fault.size));
    at = first + static_cast<PadPosition>(fault.size);
  }
  clear(end);
}

bool SourceView::RunCommand(std::string_view command) {
  static constexpr std::pair<std::string_view, unsigned> kCommands[] = {
      {"EditCut", SCI_CUT}, {"EditCopy", SCI_COPY}, {"EditPaste", SCI_PASTE}, {"EditDelete", SCI_CLEAR}};
  const auto* const found = std::ranges::find(kCommands, command, &std::pair<std::string_view, unsigned>::first);
  if (found == std::end(kCommands)) return false;
  Send(found->second);
  return true;
}

void SourceView::focusInEvent(QFocusEvent* event) {
  TextPad::focusInEvent(event);
  emit Entered();
}

void SourceView::focusOutEvent(QFocusEvent* event) {
  TextPad::focusOutEvent(event);
  emit Left();
}

bool SourceView::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto& help = *static_cast<QHelpEvent*>(event);
    ShowTip(help.globalPos(), FaultAt(LineAt(PositionAt(help.globalPos()))), this);
    return true;
  }
  if (event->type() != QEvent::ShortcutOverride) return TextPad::event(event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  const bool is_undo = key.matches(QKeySequence::Undo), is_redo = key.matches(QKeySequence::Redo);
  if (!is_undo && !is_redo) {
    // These work on the text here, and not on what is selected in the tree.
    for (const auto standard : {QKeySequence::Cut, QKeySequence::Copy, QKeySequence::Paste, QKeySequence::SelectAll})
      if (key.matches(standard)) event->accept();
    return event->isAccepted() && key.key() != Qt::Key_Delete ? true : TextPad::event(event);
  }
  // What was typed is undone here, all else by the document.
  event->setAccepted(is_typed_ && (is_undo ? CanUndo() : CanRedo()));
  return true;
}

bool SourceView::HandleKey(const QKeyEvent& key) {
  const struct {
    QKeySequence::StandardKey keys;
    unsigned command;
  } commands[] = {{QKeySequence::Cut, SCI_CUT},
                  {QKeySequence::Copy, SCI_COPY},
                  {QKeySequence::Paste, SCI_PASTE},
                  {QKeySequence::SelectAll, SCI_SELECTALL}};
  for (const auto& command : commands)
    if (key.matches(command.keys)) {
      Send(command.command);
      return true;
    }
  return false;
}

void SourceView::keyPressEvent(QKeyEvent* event) {
  if (HandleKey(*event)) return;
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) TakeLineEndOfCaret();
  TextPad::keyPressEvent(event);
}

void SourceView::TakeLineEndOfCaret() {
  const PadPosition line = CaretLine();
  std::string_view end = LineEndOf(Line(line));
  if (end.empty() && line > 0) end = LineEndOf(Line(line - 1));
  if (end.empty()) return;
  const int mode = end == "\r\n" ? SC_EOL_CRLF : end == "\n" ? SC_EOL_LF : SC_EOL_CR;
  Send(SCI_SETEOLMODE, static_cast<std::uintptr_t>(mode));
}

}  // namespace tme
