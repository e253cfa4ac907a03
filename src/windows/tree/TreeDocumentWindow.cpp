#include "windows/tree/TreeDocumentWindow.h"

#include <QScopedValueRollback>

#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Settings.h"
#include "system/Dialogs.h"
#include "windows/tree/SearchTarget.h"
#include "windows/tree/SourcePane.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr Holding OtherThan(Holding holding) { return holding == Holding::Whole ? Holding::ByRules : Holding::Whole; }

}  // namespace

TreeDocumentWindow::TreeDocumentWindow(Global& global, DocumentKind kind, int slot, bool Settings::*always_whole)
    : DocumentWindow(global, kind, slot), always_whole_(always_whole) {}

TreeDocumentWindow::~TreeDocumentWindow() = default;

void TreeDocumentWindow::UpdateCommands() {
  if (global_.area.ActiveDocument() == this) {
    const bool is_whole = GetHolding() == Holding::Whole;
    global_.menus.SetChecked("menu_ViewWholeFile", is_whole);
    global_.menus.SetHidden(u"menu_FileSaveForm"_s, !is_whole);
    ShowSourceItems();
    ShowSteps();
  }
  FollowInSource();
}

std::vector<NoticeAction> TreeDocumentWindow::HoldingButton() {
  const bool is_whole = GetHolding() == Holding::Whole;
  return {{is_whole ? tr("Show by the Rules") : tr("Show the Whole File"), [this] { WholeFile(); }}};
}

void TreeDocumentWindow::SetHolding(Holding holding) {
  file_.Hold(holding);
  StateChanged();
  TreeDocumentWindow::UpdateCommands();
}

void TreeDocumentWindow::HoldAsSettings() {
  SetHolding(global_.settings.*always_whole_ ? Holding::Whole : Holding::ByRules);
}

void TreeDocumentWindow::MarkRead(const std::optional<QString>& left_out) {
  if (file_.IsBeingRead() && !is_putting_ && !file_.Path().isEmpty()) MarkOpened(left_out);
}

void TreeDocumentWindow::PutContent(std::string bytes, Holding holding) {
  SetHolding(holding);
  if (GetHolding() == Holding::ByRules) {
    PutByRules(std::move(bytes));
  } else {
    DecodedText decoded = DecodeText(std::move(bytes));
    file_.SetFormat(decoded.format);
    const QScopedValueRollback putting(is_putting_, true);
    file_.BeginReading();
    ReadText(std::move(decoded.text));
    file_.MarkModified();
  }
  SetChanged(true);
}

TreeDocumentWindow::ReadEnd TreeDocumentWindow::ReadBytes(std::string bytes, Holding holding) {
  SetHolding(holding);
  DecodedText decoded = DecodeText(std::move(bytes));
  file_.SetFormat(decoded.format);
  return ReadText(std::move(decoded.text));
}

TreeDocumentWindow::Switch TreeDocumentWindow::ConfirmSwitch() {
  if (!file_.IsChanged() && !IsModified()) return Switch::Confirmed;
  const bool becomes_whole = GetHolding() == Holding::ByRules;
  QString text = becomes_whole ? tr("The whole file is to be shown, and it has changes that are not saved.")
                               : tr("The file is to be shown by the rules, and it has changes that are not saved.");
  text += u"\r\r"_s + (file_.Path().isEmpty()
                           ? tr("Save writes them to a file first, which is then read again.  Don't Save goes on with "
                                "the document's own text.  File History keeps it as it is now.")
                           : tr("Save writes them first, and the file is then read again.  Don't Save reads the file "
                                "without them.  File History keeps them."));
  switch (global_.dialogs.Choose(text, {tr("&Save"), tr("&Don't Save"), tr("Cancel")}, MsgIcon::Question,
                                 tr("Document Changed"))) {
    case 0:
      return Save({}) == SaveOutcome::Saved ? Switch::Saved : Switch::Refused;
    case 1:
      return Switch::Confirmed;
    default:
      return Switch::Refused;
  }
}

void TreeDocumentWindow::WholeFile() {
  CommitTyping();
  const Switch confirmed = ConfirmSwitch();
  if (confirmed == Switch::Refused) return;
  const bool has_file = !file_.Path().isEmpty();
  if (!KeepUnsaved()) {
    AddNotice(tr("The changes could not be kept in the history, so the document stays as it is."));
    return;
  }
  const Held held = HeldNow();
  std::string bytes;
  if (!has_file) {
    bytes = TextForOtherHolding();
    file_.BeginReading();
  } else if (const std::optional<FileFailure> failure = file_.Read(bytes)) {
    return ShowReadFailure(file_.Path(), *failure);
  }
  // What a save has just said is still so.
  if (confirmed != Switch::Saved) SetNotices({});
  const ReadEnd end = ReadBytes(std::move(bytes), OtherThan(held.holding));
  if (!IsOpen()) return;
  if (end != ReadEnd::Taken)
    PutBack(held);
  else if (!has_file)
    MarkAs(held);
  // The way back stands where the way here stood.
  if (GetHolding() == Holding::Whole && end == ReadEnd::Taken)
    AddNotice(tr("This is the whole file: every byte of it stays."), HoldingButton());
  setFocus();  // it may have been on a button of the notice, which is gone
}

TreeDocumentWindow::Held TreeDocumentWindow::HeldNow() {
  return {GetHolding(), Content(), file_.Format(), IsModified(), file_.IsChanged(), Notices()};
}

void TreeDocumentWindow::PutBack(const Held& held) {
  MarkUnmodified();
  PutContent(held.content, held.holding);
  file_.SetFormat(held.format);
  MarkAs(held);
  SetNotices(held.notices);
}

void TreeDocumentWindow::MarkAs(const Held& held) {
  if (held.is_modified)
    file_.MarkModified();
  else
    MarkUnmodified();
  SetChanged(held.is_changed);
}

}  // namespace tme
