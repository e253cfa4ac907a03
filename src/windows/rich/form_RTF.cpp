#include "windows/rich/form_RTF.h"

#include <QAction>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QToolBar>

#include "documents/rtf/RtfOriginal.h"
#include "documents/rtf/RtfReader.h"
#include "files/CodePage.h"
#include "files/TextEncoding.h"
#include "shell/DisplayText.h"
#include "shell/DocumentArea.h"
#include "shell/FileMessages.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Icon.h"
#include "shell/LongWork.h"
#include "shell/PlainText.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "system/CommonDialog.h"
#include "system/Twips.h"
#include "windows/rich/RtfBeginning.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/RtfPartText.h"
#include "windows/text/PadKeys.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

// Twips.
constexpr int kPadTop = 400;
constexpr int kBulletIndent = 200;
constexpr int kOpenedFallbackSize = 10;
constexpr int kRichIndex = 1, kPlainIndex = 2;

}  // namespace

form_RTF::form_RTF(Global& global, int slot) : PadWindow(global, DocumentKind::Rtf, slot) {}

form_RTF::~form_RTF() = default;

Pad& form_RTF::EditingArea() { return *pad; }

std::uint64_t form_RTF::Revision() const { return pad ? pad->Revision() : 0; }

void form_RTF::BuildControls(QWidget& client) {
  setWindowIcon(Icon(u"rtf-file"_s));
  BuildToolbar(client);
  pad = new RtfPad(&client);
  connect(pad, &QTextEdit::textChanged, this, &form_RTF::TextChanged);
  connect(pad, &QTextEdit::textChanged, this, &form_RTF::StateChanged);
  connect(pad, &QTextEdit::selectionChanged, this, &form_RTF::StateChanged);
  connect(pad, &QTextEdit::cursorPositionChanged, this, &form_RTF::StateChanged);
  connect(pad, &RtfPad::PasteRequested, this, &form_RTF::Paste);
  connect(pad, &RtfPad::FillingWentOn, this, &form_RTF::StateChanged);
  connect(pad, &RtfPad::Filled, this, [this](const RtfSimplified& simplified) {
    AddSimplifiedNotice(simplified);
    UpdateFormatState();
    StateChanged();
  });
  connect(pad, &RtfPad::FillingFailed, this, &form_RTF::FillingFailed);
  connect(pad, &QTextEdit::undoAvailable, this, &form_RTF::ShowUndoState);
  connect(pad, &QTextEdit::redoAvailable, this, &form_RTF::ShowUndoState);
  WatchPad(client);
  // Who comes to the window without saying where goes to the first in the order: to the text, not to a button.
  QWidget* before = pad;
  for (QAction* action : Toolbar1->actions()) {
    QWidget* button = Toolbar1->widgetForAction(action);
    if (button->focusPolicy() == Qt::NoFocus) continue;
    QWidget::setTabOrder(before, button);
    before = button;
  }
}

void form_RTF::BuildToolbar(QWidget& client) {
  Toolbar1 = new QToolBar(&client);
  Toolbar1->setObjectName(u"Toolbar1"_s);
  Toolbar1->setAccessibleName(tr("Format"));
  Toolbar1->setIconSize({16, 16});
  const auto add = [this](const QString& tag, const QString& icon, const QString& name, const QString& tip,
                          void (form_RTF::*command)()) {
    QAction* action = Toolbar1->addAction(Icon(icon), name);
    SetTip(*action, tip);
    QWidget* button = Toolbar1->widgetForAction(action);
    button->setObjectName(tag);
    button->setAccessibleName(name);
    button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keys with the text
    const auto click = [this, command] {
      (this->*command)();
      UpdateFormatState();
    };
    connect(action, &QAction::triggered, this, [action, click] {
      if (!action->isCheckable()) click();
    });
    // Assistive programs toggle a button without clicking it, which triggers nothing.
    connect(action, &QAction::toggled, this, [this, click] {
      if (!showing_format_) click();
    });
    return action;
  };
  add(u"cut"_s, u"edit-cut"_s, tr("Cut"), tr("Cut (Ctrl+X)"), &form_RTF::EditCut);
  add(u"copy"_s, u"edit-copy"_s, tr("Copy"), tr("Copy (Ctrl+C)"), &form_RTF::EditCopy);
  add(u"paste"_s, u"edit-paste"_s, tr("Paste"), tr("Paste (Ctrl+V)"), &form_RTF::EditPaste);
  Toolbar1->addSeparator();
  button_bold_ = add(u"bold"_s, u"format-bold"_s, tr("Bold"), tr("Bold (Ctrl+B)"), &form_RTF::FormatBold);
  button_italic_ = add(u"italic"_s, u"format-italic"_s, tr("Italic"), tr("Italic (Ctrl+I)"), &form_RTF::FormatItalic);
  button_underline_ =
      add(u"underline"_s, u"format-underline"_s, tr("Underline"), tr("Underline (Ctrl+U)"), &form_RTF::FormatUnderline);
  add(u"color"_s, u"format-color"_s, tr("Color"), tr("Color of the text"), &form_RTF::FormatColor);
  Toolbar1->addSeparator();
  // No menu has these two, so they need keys of their own.
  const auto on_key = [this](QAction* action, const QKeySequence& key) {
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(action);
  };
  on_key(add(u"FD"_s, u"font-smaller"_s, tr("Smaller"), tr("Smaller text (Ctrl+[)"), &form_RTF::FontSizeDown),
         u"Ctrl+["_s);
  on_key(add(u"FU"_s, u"font-larger"_s, tr("Larger"), tr("Larger text (Ctrl+])"), &form_RTF::FontSizeUp), u"Ctrl+]"_s);
  Toolbar1->addSeparator();
  button_list_ = add(u"list"_s, u"format-list"_s, tr("Bullets"), tr("Bulleted list"), &form_RTF::FormatBulleted);
  for (QAction* action : {button_bold_, button_italic_, button_underline_, button_list_}) action->setCheckable(true);
}

void form_RTF::ResizeForm() {
  if (SubWindow() && SubWindow()->isMinimized()) return;
  // Below the toolbar, the whole client area; the frame's child, not this window, has the decoration around it.
  const QRect client = pad->parentWidget()->rect();
  const int top = std::max(TwipsToPixels(kPadTop, logicalDpiY()), Toolbar1->sizeHint().height());
  Toolbar1->setGeometry(0, 0, client.width(), top);
  pad->setGeometry(client.adjusted(0, top, 0, 0));
  ApplyWordWrap();
}

void form_RTF::UpdateCommands() {
  PadWindow::UpdateCommands();
  UpdateFormatState();
}

void form_RTF::NewRTF() {
  TakeSlotForNew();
  pad->Clear();
  pad->SetBulletIndent(kBulletIndent);
  fallback_font_size_ = 0;
  original_.reset();
  ShowNew();
}

void form_RTF::OpenRTF() {
  const WaitCursor wait_cursor;
  std::optional<std::string> bytes = TakeSlotBytes();
  if (!bytes) return;
  rtf::RtfSource source;
  rtf::RtfDocument read = rtf::ReadRtf(*bytes, BytesToUtf8, &source);
  AddActiveNotice(*bytes);
  AddLossNotice(read.losses);
  const auto original = std::make_shared<rtf::RtfOriginal>(std::move(*bytes), read, std::move(source));
  const std::optional<QString> left_out = read.losses == rtf::Losses() ? std::optional(QString()) : std::nullopt;
  if (!ShowRead(std::move(read), original)) return;
  pad->SetBulletIndent(kBulletIndent);
  original_ = original;
  read_revision_ = Revision();
  fallback_font_size_ = kOpenedFallbackSize;
  MarkOpened(left_out);
  ShowInFrame();
  ResizeForm();
  pad->Select(0, 0);
  // In a long paragraph from right to left the caret is far off, and every other paragraph would be out of sight.
  pad->horizontalScrollBar()->setValue(0);
  pad->setFocus();
}

bool form_RTF::ShowRead(rtf::RtfDocument&& read, const std::shared_ptr<rtf::RtfOriginal>& original) {
  if (TakesLongToShow(read)) {
    pad->Fill(std::move(read), [original](const rtf::RtfDocument& exported) { original->SetUnedited(exported); });
    return true;
  }
  LongWork work(&global_.frame, tr("Opening %1").arg(file_.Title()));
  const std::optional<RtfSimplified> simplified = pad->SetRtf(std::move(read), StepOf(work));
  if (!IsOpen()) return false;  // the program was left meanwhile
  if (!simplified) {
    ReleaseSlot();
    return false;
  }
  AddSimplifiedNotice(*simplified);
  pad->NoteUnedited(*original);
  return true;
}

void form_RTF::FillingFailed(const QString& reason) {
  ShowReadFailure(file_.Path(), {reason.toStdString()});
  SetChanged(false);
  FileClose();
}

void form_RTF::DropContent() {
  pad->Clear();
  original_.reset();
}

void form_RTF::AddLossNotice(const rtf::Losses& losses) {
  if (losses.not_rtf)
    AddNotice(
        tr("This file is not rich text; what it holds is shown as plain text. After an edit it is saved as rich "
           "text."));
  if (losses.ended_early) AddNotice(tr("The file is damaged: its end does not fit its beginning."));
  if (losses.unknown_characters)
    AddNotice(tr("%n character(s) of the file are unknown to its code page and shown as U+FFFD.", nullptr,
                 static_cast<int>(losses.unknown_characters)));
  if (losses.limits)
    AddNotice(tr("%n part(s) of the file are too large or nested too deeply and were left out.", nullptr,
                 static_cast<int>(losses.limits)));
  if (losses.deep_tables)
    AddNotice(tr("Tables are nested more than %1 deep. Once the text is edited, saving moves what is deeper into the "
                 "innermost of these.")
                  .arg(rtf::kMaxTableLevel));
}

void form_RTF::AddSimplifiedNotice(const RtfSimplified& simplified) {
  if (simplified.tables > 0)
    AddNotice(
        Counted(simplified.tables,
                tr("1 table is nested too deeply or too large to be shown as one: each paragraph of its cells is a "
                   "line on grey. Saving keeps the table."),
                tr("%1 tables are nested too deeply or too large to be shown as such: each paragraph of their "
                   "cells is a line on grey. Saving keeps the tables.")));
  if (simplified.paragraphs > 0)
    AddNotice(Counted(simplified.paragraphs,
                      tr("1 paragraph is so long that it is shown in several lines. Saving keeps it as one."),
                      tr("%1 paragraphs are so long that they are shown in several lines. Saving keeps each as one.")));
}

SaveDialogTexts form_RTF::SaveTexts() const {
  // The second pattern is this text itself and no list of wildcards; intended.
  return {tr("Save RTF File"), tr("RTF File|%1|TXT File| & TXTFilter").arg(global_.settings.rtf_filter), u".RTF"_s};
}

bool form_RTF::HoldsWholeFile() const {
  const bool writes_plain = global_.common_dialog.filter_index == kPlainIndex;
  const bool is_as_read = original_ && read_revision_ == Revision();
  return !writes_plain && (is_as_read || DocumentWindow::HoldsWholeFile());
}

DocumentWindow::SaveOutcome form_RTF::WriteTo(QString& path, const SaveRequest& request) {
  const WaitCursor wait_cursor;
  const int& index = global_.common_dialog.filter_index;
  if (index == kPlainIndex && !pad->Complete()) return SaveOutcome::Failed;
  const auto is_for_rich_text = [&index] { return index == kRichIndex || index == kPlainIndex; };
  std::optional<DocumentFile::Target> target;
  if (is_for_rich_text() && !(target = PrepareTarget(path, request))) return SaveOutcome::Failed;
  if (!is_for_rich_text()) {
    AddNotice(
        tr("Nothing was written: the last file dialog was left on a file type that is not for rich text. To save "
           "the document, choose File, Save As."));
    return SaveOutcome::Saved;
  }
  if (!(index == kRichIndex ? WriteRich(*target) : WritePlain(*target))) return SaveOutcome::Failed;
  path = target->path;
  if (index == kRichIndex) {
    MarkUnmodified();
  } else if (path.endsWith(u".rtf"_s, Qt::CaseInsensitive)) {
    AddNotice(
        tr("The file now holds plain text, without formats and pictures, because the last file dialog was left "
           "on its second file type. To save them, choose File, Save As, with the type \"RTF File\"."));
  }
  return SaveOutcome::Saved;
}

PartProducer form_RTF::Producer() {
  return [this](const PartSink& put) {
    // Unmodified, the document is what it was read from.
    if (original_ && read_revision_ == Revision()) return put(original_->Bytes());
    return pad->WriteRtf(put, original_.get());
  };
}

bool form_RTF::WriteRich(const DocumentFile::Target& target) { return Write(target, nullptr, Producer()); }

bool form_RTF::WritePlain(const DocumentFile::Target& target) {
  TextFormat format;
  if (!Write(target, &format, [this](const PartSink& put) { return pad->WriteText(put); })) return false;
  AddNotice(FileMessages::OfEncoding(TextFormat().encoding, format.encoding));
  return true;
}

void form_RTF::AddState(DocumentState& state) const {
  state.encoding.reset();  // of the file, not of the text
  if (pad->IsFilling())
    state.count = tr("%1 % opened").arg(static_cast<int>(pad->PartFilled() * 100));
  else
    state.count = Counted(static_cast<std::uint64_t>(pad->End()), tr("1 character"), tr("%1 characters"));
  if (const QString link = RtfPartText::Shown(pad->LinkAtCaret().toStdString()); !link.isEmpty()) state.path = link;
  state.selected_characters = pad->SelectionEnd() - pad->SelectionStart();
}

std::string form_RTF::Content() { return DocumentFile::BytesOf(nullptr, Producer()); }

void form_RTF::PutContent(std::string bytes, Holding /*holding*/) {
  rtf::RtfDocument read = rtf::ReadRtf(bytes, BytesToUtf8);
  AddActiveNotice(bytes);
  AddLossNotice(read.losses);
  AddSimplifiedNotice(*pad->SetRtf(std::move(read)));
  pad->SetBulletIndent(kBulletIndent);
  original_.reset();
  SetChanged(true);
}

void form_RTF::TextChanged() {
  if (!IsOpen()) return;
  SetChanged(true);
  UpdateFormatState();
}

bool form_RTF::eventFilter(QObject* watched, QEvent* event) {
  const bool swallowed = PadWindow::eventFilter(watched, event);
  if (!pad || !IsOpen()) return swallowed;
  if (watched == pad && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool searched = swallowed && (IsEnterKey(key) || key == Qt::Key_Escape);
    const bool command = searched || ZoomOf(*static_cast<QKeyEvent*>(event));
    if (!command && !IsModifierKey(key) && !keys_down_.contains(key)) keys_down_.append(key);
  }
  if (watched == pad && event->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(event)->isAutoRepeat())
    PadKeyReleased(static_cast<QKeyEvent*>(event)->key());
  if (watched == pad && event->type() == QEvent::FocusOut) keys_down_.clear();
  // The pad has yet to let the selection go that was clicked into.
  if (watched == pad->viewport() && event->type() == QEvent::MouseButtonRelease)
    QMetaObject::invokeMethod(this, &form_RTF::UpdateFormatState, Qt::QueuedConnection);
  return swallowed;
}

void form_RTF::PadKeyReleased(int key) {
  // Not the keys of a command: saving by one would mark the document changed at once.
  if (!keys_down_.removeOne(key)) return;
  // Any other key marks the document changed, an arrow key, too; intended.
  TextChanged();
  if (IsEnterKey(key) && pad->SelectionBullet() == true) pad->ReplaceSelection(u" "_s);
}

void form_RTF::UpdateFormatState() {
  const QScopedValueRollback showing(showing_format_, true);
  const auto show = [this](const char* item, QAction* button, const std::optional<bool>& state) {
    const bool is_set = state == true;
    button->setChecked(is_set);
    if (global_.area.ActiveDocument() == this) global_.menus.SetChecked(item, is_set);
  };
  show("menu_FormatBold", button_bold_, pad->SelectionBold());
  show("menu_FormatItalic", button_italic_, pad->SelectionItalic());
  show("menu_FormatUnderline", button_underline_, pad->SelectionUnderline());
  show("menu_FormatBulleted", button_list_, pad->SelectionBullet());
}

}  // namespace tme
