#include "windows/text/form_SR.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <algorithm>
#include <optional>

#include "shell/Global.h"
#include "shell/PlainText.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "system/RegistryAccess.h"
#include "system/Twips.h"
#include "windows/text/PadKeys.h"
#include "windows/text/PadWindow.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Twips between the dialog and the edges of the corner that it is put into.
constexpr int kCornerTwips = 200;
/// Average characters that the dialog is wide.
constexpr int kWidthCharacters = 84;
/// Characters that a box takes.
constexpr int kLongestText = 32767;
/// A document that is shorter in its pad's unit is searched in no time.
constexpr PadPosition kLongSearch = 1'000'000;
/// A search within the last so many characters starts at the top.
constexpr int kLastCharacters = 3;

const QString kLastSearch = u"Last Search"_s;

/// One character for one, so that texts keep their length.
bool EqualsWhateverTheCase(const QString& left, const QString& right) {
  return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(), [](QChar one, QChar other) {
           return one.toUpper() == other.toUpper();
         });
}

}  // namespace

form_SR* form_SR::Opened(const Global& global) {
  // A closed one stands until the event loop deletes it.
  for (form_SR* dialog : global.frame.findChildren<form_SR*>(Qt::FindDirectChildrenOnly))
    if (!dialog->closed_) return dialog;
  return nullptr;
}

void form_SR::Open(Global& global, PadWindow& window, SearchMode mode) {
  form_SR* dialog = Opened(global);
  if (!dialog) dialog = new form_SR(global);
  dialog->target_kind_ = window.Kind();
  dialog->target_slot_ = window.SlotNumber();
  dialog->SetMode(mode);
  dialog->Initialize();
  if (mode == SearchMode::Again) return dialog->SearchAgain();
  dialog->TakeSelection(window.EditingArea());
  dialog->show();
  dialog->raise();
  dialog->activateWindow();
  dialog->txt_SearchString->setFocus();
}

form_SR::form_SR(Global& global) : QDialog(&global.frame), global_(global) {
  setObjectName(u"form_SR"_s);
  setAttribute(Qt::WA_DeleteOnClose);
  BuildControls();
  LayOut();
}

void form_SR::BuildControls() {
  const auto named = [](auto* widget, const QString& name, const QString& accessible_name) {
    widget->setObjectName(name);
    widget->setAccessibleName(accessible_name);
    return widget;
  };
  const auto label = [&](const QString& name, const QString& text) {
    return named(PlainLabel(text, this), name, QString(text).remove(u'&'));
  };
  const auto box = [&](const QString& name, QLabel* its_label) {
    auto* made = named(new QLineEdit(this), name, its_label->accessibleName().chopped(1));
    made->setMaxLength(kLongestText);
    its_label->setBuddy(made);
    return made;
  };
  frm_Search = named(new QGroupBox(this), u"frm_Search"_s, tr("Search"));
  Label1 = label(u"Label1"_s, tr("&Search For:"));
  txt_SearchString = box(u"txt_SearchString"_s, Label1);
  lbl_R = label(u"lbl_R"_s, tr("Rep&lace with:"));
  txt_R = box(u"txt_R"_s, lbl_R);
  cb_MatchCase = named(new QCheckBox(tr("Match &Case"), this), u"cb_MatchCase"_s, tr("Match Case"));
  cb_WholeWord = named(new QCheckBox(tr("Match &Whole Word"), this), u"cb_WholeWord"_s, tr("Match Whole Word"));
  cmd_FindNext = named(new QPushButton(this), u"cmd_FindNext"_s, {});
  cmd_FindNext->setDefault(true);
  cmd_Cance = named(new QPushButton(tr("Cancel"), this), u"cmd_Cance"_s, tr("Cancel"));
  Line1 = named(new QFrame(this), u"Line1"_s, {});
  Line1->setFrameStyle(static_cast<int>(QFrame::HLine) | static_cast<int>(QFrame::Sunken));
  // The spelling is the one that users know; intended.
  Label3 = label(u"Label3"_s, tr("While Searching, Remeber that:"));
  Label3->setWordWrap(true);
  lbl_Exp = label(u"lbl_Exp"_s, tr("NOTE: ENTER = Find Next;  SHFT+ENTER = Hard Return"));
  lbl_Exp->setWordWrap(true);
  Label2 = label(u"Label2"_s, tr("TAB = Returns focus to here; SHFT+TAB = Tab in Document"));
  Label2->setWordWrap(true);

  connect(cmd_FindNext, &QPushButton::clicked, this, &form_SR::cmd_FindNext_Click);
  connect(cmd_Cance, &QPushButton::clicked, this, &form_SR::cmd_Cance_Click);
}

/// The boxes and what belongs to them in the frame, the buttons beside it, the hints below.
void form_SR::LayOut() {
  auto* boxes = new QGridLayout(frm_Search);
  boxes->addWidget(Label1, 0, 0);
  boxes->addWidget(txt_SearchString, 0, 1);
  boxes->addWidget(lbl_R, 1, 0);
  boxes->addWidget(txt_R, 1, 1);
  auto* checks = new QHBoxLayout;
  checks->addWidget(cb_MatchCase);
  checks->addSpacing(checks->spacing());
  checks->addWidget(cb_WholeWord);
  checks->addStretch(1);
  boxes->addLayout(checks, 2, 1);
  boxes->setColumnStretch(1, 1);

  auto* buttons = new QVBoxLayout;
  buttons->addWidget(cmd_FindNext);
  buttons->addWidget(cmd_Cance);
  buttons->addStretch(1);

  auto* all = new QGridLayout(this);
  all->addWidget(frm_Search, 0, 0);
  all->addLayout(buttons, 0, 1);
  all->addWidget(Line1, 1, 0, 1, 2);
  all->addWidget(Label3, 2, 0, 1, 2);
  all->addWidget(lbl_Exp, 3, 0, 1, 2);
  all->addWidget(Label2, 4, 0, 1, 2);
  all->setColumnStretch(0, 1);
  all->setRowStretch(5, 1);
  QWidget* before = nullptr;
  for (QWidget* control :
       std::initializer_list<QWidget*>{txt_SearchString, txt_R, cb_MatchCase, cb_WholeWord, cmd_FindNext, cmd_Cance}) {
    control->installEventFilter(this);
    if (before) setTabOrder(before, control);
    before = control;
  }
}

QString form_SR::Caption() const { return mode_ == SearchMode::Replace ? tr("Search / Replace") : tr("Search"); }

void form_SR::SetMode(SearchMode mode) {
  mode_ = mode;
  const bool replaces = mode == SearchMode::Replace;
  setWindowTitle(Caption());
  lbl_R->setVisible(replaces);
  txt_R->setVisible(replaces);
  txt_R->clear();
  const QString hint = mode == SearchMode::Again
                           ? tr("While searching, use ENTER to Find Next, use SHFT+ENTER to insert a "
                                "hard return in your document")
                       : replaces ? tr("ENTER = Replace Next;  SHFT+ENTER = Hard Return")
                                  : tr("ENTER = Find Next;  SHFT+ENTER = Hard Return");
  lbl_Exp->setText(hint);
  lbl_Exp->setAccessibleName(hint);
  cmd_FindNext->setText(replaces ? tr("&Replace Next") : tr("&Find Next"));
  cmd_FindNext->setAccessibleName(replaces ? tr("Replace Next") : tr("Find Next"));
  ensurePolished();
  // A large font on a small screen: the hints break their lines.
  const int most = screen()->availableSize().width() - 2 * TwipsToPixels(kCornerTwips, logicalDpiX());
  layout()->activate();
  const int width = std::max(std::min(fontMetrics().averageCharWidth() * kWidthCharacters, most),
                             layout()->totalMinimumSize().width());
  resize(width, layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height());
}

void form_SR::Initialize() {
  const mdform_TMEditor& frame = global_.frame;
  const int gap = TwipsToPixels(kCornerTwips, frame.logicalDpiX());
  const QRect corner = global_.settings.contain_srd ? frame.frameGeometry() : frame.screen()->geometry();
  // Before it is first shown, the dialog's decoration is not known; the frame's is alike.
  const QSize decoration = frame.frameGeometry().size() - frame.size();
  const QSize size = this->size() + decoration;
  const QRect visible = frame.screen()->availableGeometry();
  const int left = corner.left() + corner.width() - size.width() - gap;
  move(std::max(std::min(left, visible.right() + 1 - size.width()), visible.left()),
       std::max(std::min(corner.top() + gap, visible.bottom() + 1 - size.height()), visible.top()));
}

PadWindow* form_SR::Window() const {
  auto* window = qobject_cast<PadWindow*>(global_.documents.At(target_kind_, target_slot_));
  return window && window->IsOpen() ? window : nullptr;
}

bool form_SR::IsBoundTo(const PadWindow& window) const {
  return window.Kind() == target_kind_ && window.SlotNumber() == target_slot_;
}

void form_SR::FocusSearchBox() {
  activateWindow();
  txt_SearchString->setFocus();
  txt_SearchString->selectAll();
}

void form_SR::TakeSelection(Pad& pad) {
  const bool fits = pad.Moved(pad.SelectionStart(), kLongestText) >= pad.SelectionEnd();
  txt_SearchString->setText(fits ? pad.SelectedText() : QString());
  txt_SearchString->selectAll();
}

void form_SR::CtrlF() {
  if (PadWindow* window = Window()) window->SearchFind();
}

void form_SR::CtrlH() {
  if (PadWindow* window = Window()) window->SearchReplace();
}

void form_SR::cmd_FindNext_Click() {
  StoreLastSearch();
  RunSearch();
}

void form_SR::cmd_Cance_Click() { close(); }

void form_SR::StoreLastSearch() {
  const bool rich = target_kind_ == DocumentKind::Rtf;
  if (rich ? global_.settings.rtf_present : global_.settings.txt_present)
    global_.registry.WriteValue(rich ? kRtfKey : kTxtKey, kLastSearch, txt_SearchString->text());
}

void form_SR::SearchAgain() {
  const bool rich = target_kind_ == DocumentKind::Rtf;
  const bool present = rich ? global_.settings.rtf_present : global_.settings.txt_present;
  // A rich-text document repeats the last search of the plain-text ones, too; intended.
  txt_SearchString->setText(present ? global_.registry.ReadValue(kTxtKey, kLastSearch) : QString());
  if (!isVisible()) show();
  RunSearch();
}

void form_SR::RunSearch() {
  const QPointer<form_SR> standing(this);
  while (RunSearchOnce() == Outcome::FromTheTop && standing && !closed_) StoreLastSearch();
}

form_SR::Outcome form_SR::RunSearchOnce() {
  PadWindow* window = Window();
  const QString wanted = txt_SearchString->text();
  if (!window || wanted.isEmpty()) return Outcome::Done;
  Pad& pad = window->EditingArea();
  const auto start_at = [&pad](PadPosition start) { pad.Select(start, start); };
  const PadPosition end = pad.End();
  const bool short_text = pad.Moved(0, kLastCharacters - 1) >= end;
  if (short_text || pad.SelectionStart() > pad.Moved(end, -kLastCharacters)) start_at(0);
  // One more than the selection: a match right behind it is passed over; intended.
  if (IsSelectionKnown(pad)) start_at(pad.Moved(pad.SelectionEnd(), 1));
  {
    std::optional<WaitCursor> wait_cursor;
    if (end > kLongSearch) wait_cursor.emplace();
    pad.Find(wanted, pad.SelectionStart(), end,
             (cb_MatchCase->isChecked() ? kFindMatchCase : 0u) | (cb_WholeWord->isChecked() ? kFindWholeWord : 0u));
  }
  FocusPad(*window);
  const bool selected = pad.SelectionStart() != pad.SelectionEnd();
  if (!selected) return AskForTheTop(*window);
  // Also a selection of the user's that is no match; intended.
  if (mode_ == SearchMode::Replace) {
    const PadPosition start = pad.SelectionStart();
    pad.ReplaceSelection(txt_R->text());
    pad.Select(start, pad.SelectionEnd());
  }
  return Outcome::Done;
}

bool form_SR::IsSelectionKnown(const Pad& pad) const {
  const PadPosition start = pad.SelectionStart(), end = pad.SelectionEnd();
  if (start == end) return false;
  const QString wanted = txt_SearchString->text(), replacement = txt_R->text();
  // A long selection is not copied: a line end may be two characters, and a character at most two of QString's.
  const auto longest = 2 * std::max(wanted.size(), replacement.size());
  if (pad.Moved(start, longest) < end) return false;
  const QString selected = pad.SelectedText();
  return EqualsWhateverTheCase(selected, wanted) || EqualsWhateverTheCase(selected, replacement);
}

form_SR::Outcome form_SR::AskForTheTop(PadWindow& window) {
  const QPointer<form_SR> standing(this);
  const QString question =
      tr("Couldn't find \"%1\"\r\rContinue %2 from the top?").arg(txt_SearchString->text(), Caption());
  const MsgAnswer answer = global_.dialogs.MsgBox(question, MsgButtons::YesNo, MsgIcon::Question, Caption());
  // Another program's hand-over may have closed the dialog meanwhile.
  if (!standing || closed_) return Outcome::Done;
  if (answer == MsgAnswer::Yes) {
    window.EditingArea().Select(0, 0);
    return Outcome::FromTheTop;
  }
  FocusPad(window);
  close();
  return Outcome::Done;
}

void form_SR::FocusPad(PadWindow& window) {
  QMdiSubWindow* sub_window = window.SubWindow();
  if (sub_window->isMinimized()) sub_window->showNormal();
  sub_window->mdiArea()->setActiveSubWindow(sub_window);
  global_.frame.activateWindow();
  window.EditingArea().Widget().setFocus();
}

void form_SR::closeEvent(QCloseEvent* event) {
  // QDialog's own would call reject, which closes.
  closed_ = true;
  event->accept();
}

bool form_SR::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  if (IsEnterKey(key.key()) && (watched == txt_SearchString || watched == txt_R)) {
    cmd_FindNext_Click();
  } else if (key.key() == Qt::Key_Escape) {
    cmd_Cance_Click();
  } else if (key.modifiers() == Qt::ControlModifier && key.key() == Qt::Key_F) {
    CtrlF();
  } else if (key.modifiers() == Qt::ControlModifier && key.key() == Qt::Key_H) {
    CtrlH();
  } else {
    return false;
  }
  return true;
}

}  // namespace tme
