#include "windows/text/form_TXT.h"

#include <QMdiSubWindow>
#include <QScopedValueRollback>

#include "files/TextEncoding.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Icon.h"
#include "shell/LongWork.h"
#include "shell/Settings.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "windows/text/TextPad.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr const char* kLineNumbersItem = "menu_ViewLineNumbers";
constexpr std::size_t kPartBytes = std::size_t{1} << 18;

/// The next part of a text: up to a line end, else, within a longer line, up to an ASCII character, which is one in
/// every encoding.
std::string_view TakePart(std::string_view& rest) {
  std::size_t size = rest.size();
  if (size > kPartBytes) {
    const std::size_t line_end = rest.rfind('\n', kPartBytes - 1);
    size = line_end == std::string_view::npos ? kPartBytes : line_end + 1;
    while (size < rest.size() && static_cast<unsigned char>(rest[size - 1]) >= 0x80) ++size;
  }
  const std::string_view part = rest.substr(0, size);
  rest.remove_prefix(size);
  return part;
}

}  // namespace

form_TXT::form_TXT(Global& global, int slot) : PadWindow(global, DocumentKind::Txt, slot) {}

Pad& form_TXT::EditingArea() { return *pad; }

std::uint64_t form_TXT::Revision() const { return pad ? pad->Revision() : 0; }

void form_TXT::BuildControls(QWidget& client) {
  setWindowIcon(Icon(u"txt-file"_s));
  pad = new TextPad(&client);
  connect(pad, &QsciScintillaBase::SCEN_CHANGE, this, [this] { Altered(true); });
  // SCEN_CHANGE comes just before the edit.
  connect(pad, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
    if (updated & QsciScintillaBase::SC_UPDATE_CONTENT) {
      ShowUndoState();
      TakeFormatOfStart();
    }
    if (updated & (QsciScintillaBase::SC_UPDATE_CONTENT | QsciScintillaBase::SC_UPDATE_SELECTION)) StateChanged();
  });
  WatchPad(client);
}

void form_TXT::ResizeForm() {
  if (SubWindow() && SubWindow()->isMinimized()) return;
  // The whole client area; the frame's child, not this window, has the decoration around it.
  pad->setGeometry(pad->parentWidget()->rect());
  ApplyWordWrap();
}

void form_TXT::NewTXT() {
  TakeSlotForNew();
  PutText({});
  pad->SetTextFont(global_.settings.font_name, global_.settings.font_size);
  ShowNew();
}

void form_TXT::OpenTXT() {
  const WaitCursor wait_cursor;
  std::optional<std::string> text = TakeSlotText();
  if (!text) return;
  pad->SetTextFont(global_.settings.font_name, global_.settings.font_size);
  PutText(std::move(*text));
  MarkOpened(QString());
  ShowInFrame();
  ResizeForm();
  pad->setFocus();
}

void form_TXT::PutText(std::string text) {
  pad->SetText(std::move(text));
  start_format_ = file_.Format();
}

void form_TXT::TakeFormatOfStart() {
  if (pad->CanUndo() || !IsOpen() || file_.Format().encoding == start_format_.encoding) return;
  file_.SetFormat(start_format_);
  StateChanged();
}

void form_TXT::DropContent() { pad->SetText({}); }

SaveDialogTexts form_TXT::SaveTexts() const {
  return {tr("Save Text File"), tr("Text File|%1").arg(global_.settings.txt_filter), u".TXT"_s};
}

PartProducer form_TXT::Producer() {
  return [this](const PartSink& put) {
    for (std::string_view rest = pad->Text(); !rest.empty();)
      if (!put(TakePart(rest))) return false;
    return true;
  };
}

void form_TXT::PutContent(std::string bytes, Holding /*holding*/) {
  DecodedText decoded = DecodeText(std::move(bytes));
  file_.SetFormat(decoded.format);
  pad->SetTextFont(global_.settings.font_name, global_.settings.font_size);
  PutText(std::move(decoded.text));
  Altered(true);
}

void form_TXT::UpdateCommands() {
  PadWindow::UpdateCommands();
  global_.menus.SetChecked(kLineNumbersItem, global_.settings.line_numbers);
  global_.menus.SetAvailable("menu_SearchGoToLine", true);
  pad->ShowLineNumbers(global_.settings.line_numbers);
}

void form_TXT::ViewLineNumbers() {
  global_.settings.SetFlag(&Settings::line_numbers, !global_.settings.line_numbers, global_.registry);
  UpdateCommands();
}

void form_TXT::AddState(DocumentState& state) const {
  const PadPosition caret = pad->Caret(), start = pad->SelectionStart(), end = pad->SelectionEnd();
  const std::int64_t line = pad->LineOf(caret);
  const std::int64_t column = pad->CharactersBetween(pad->StartOfLine(line), caret, TextPad::Count::Column);
  state.place = {.line = line + 1, .column = column + 1, .lines = pad->LineCount()};
  if (start == end) return;
  state.selected_characters = pad->CharactersBetween(start, end, TextPad::Count::Selection);
  // A line that the selection only comes up to is none of its own.
  state.selected_lines = pad->LineOf(end - 1) - pad->LineOf(start) + 1;
}

DocumentFigures form_TXT::Figures() const {
  if (is_ending_lines_) return {};
  return {.line_ends = pad->UsedLineEnds()};
}

void form_TXT::ChangeLineEnds(LineEnds ends) {
  const WaitCursor wait_cursor;
  const bool was_changed = file_.IsChanged();
  LongWork work(&global_.frame, tr("Changing the line ends of %1").arg(file_.Title()));
  bool has_changed = false;
  {
    const QScopedValueRollback ending(is_ending_lines_, true);
    has_changed =
        pad->SetLineEnds(ends, [&](std::size_t done, std::size_t total) { return work.GoOn(done, total) && IsOpen(); });
  }
  if (!IsOpen()) return;
  if (!has_changed) SetChanged(was_changed);
  ShowUndoState();
  StateChanged();
}

void form_TXT::AddFormatStep(std::function<void()> undo, std::function<void()> redo) {
  // The pad tells of edits of its text alone.
  const auto with_menu = [this](std::function<void()> step) {
    return [this, step = std::move(step)] {
      step();
      QMetaObject::invokeMethod(this, &form_TXT::ShowUndoState, Qt::QueuedConnection);
    };
  };
  pad->AddOutsideStep(with_menu(std::move(undo)), with_menu(std::move(redo)));
  ShowUndoState();
}

void form_TXT::GoToLine(std::int64_t line) {
  const PadPosition start = pad->StartOfLine(line - 1);
  pad->Select(start, start);
}

}  // namespace tme
