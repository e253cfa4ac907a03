#include "windows/ini/form_INI.h"

#include <QEvent>
#include <QMdiSubWindow>
#include <QPrinter>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTextEdit>
#include <QTreeView>

#include "base/Utf8.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniWriter.h"
#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Icon.h"
#include "shell/PlainText.h"
#include "shell/SaveDialog.h"
#include "shell/Settings.h"
#include "shell/WaitCursor.h"
#include "shell/Zoom.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "system/Twips.h"
#include "windows/ini/IniItemModel.h"
#include "windows/ini/IniNotice.h"
#include "windows/ini/IniSearchTarget.h"
#include "windows/ini/IniSource.h"
#include "windows/ini/ScrollBarUnderStrip.h"
#include "windows/tree/DocumentTreeView.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

// Twips. The tree takes the client area less the margin; the buttons stand on it, their tops this far above the bottom.
constexpr int kTreeMargin = 100;
constexpr int kButtonsAboveBottom = 1000;
constexpr int kOpenedWidth = 6800;
constexpr int kButtonGapPixels = 4;
/// The setting that names what the user last chose for a file that was plain ASCII.
const QString kUnicodeValue = QStringLiteral("INIUnicode");

bool IsAscii(std::string_view text) { return utf8::AsciiRun(text) == text.size(); }

bool Is8Bit(const TextFormat& format, std::string_view text) {
  return format.encoding == TextEncoding::CodePage && !IsAscii(text);
}

}  // namespace

form_INI::form_INI(Global& global, int slot)
    : TreeDocumentWindow(global, DocumentKind::Ini, slot, &Settings::ini_whole) {}

form_INI::~form_INI() = default;

int form_INI::PreferredWidth() const { return TwipsToPixels(kOpenedWidth, logicalDpiX()); }

void form_INI::BuildControls(QWidget& client) {
  setWindowIcon(Icon(u"ini-file"_s));
  model_ = std::make_unique<IniItemModel>(tree_);
  QWidget* area = MakeTreeArea(client);
  BuildTreeView(*area);
  BuildDragging();
  BuildButtons(*area);
  area->installEventFilter(this);
}

std::unique_ptr<SourceDocument> form_INI::MakeSourceDocument() {
  return std::make_unique<IniSource>(tree_, [this](IniNode* node) {
    tree_.Select(node);
    ShowSelection();
  });
}

void form_INI::BuildTreeView(QWidget& client) {
  TV = new DocumentTreeView(&client);
  TV->setAccessibleName(tr("Sections and entries"));
  TV->setHorizontalScrollBar(new ScrollBarUnderStrip(TV));
  TV->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  TV->setModel(model_.get());
  WatchState(*TV);
  WatchContent(*model_);
  FollowSteps(*TV);
  TV->setItemDelegate(new RowEditor(tr("Line or section name"), RowTexts(), TV));
  new ViewZoom({TV}, TV);
  setFocusProxy(TV);

  connect(model_.get(), &QAbstractItemModel::modelAboutToBeReset, this,
          [this] { scrolled_ = TV->verticalScrollBar()->value(); });
  connect(model_.get(), &QAbstractItemModel::modelReset, this, &form_INI::RestoreView);
  // A section that an undo brings back is as open as it was.
  connect(model_.get(), &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex& parent, int row) {
    const QModelIndex index = model_->index(row, 0, parent);
    if (IniItemModel::NodeOf(index)->Expanded()) TV->expand(index);
  });
  connect(model_.get(), &TreeItemModelBase::SelectionMovedByTree, this, &form_INI::ShowSelection);
  connect(TV, &QTreeView::expanded, this,
          [this](const QModelIndex& index) { tree_.SetExpanded(IniItemModel::NodeOf(index), true); });
  connect(TV, &QTreeView::collapsed, this,
          [this](const QModelIndex& index) { tree_.SetExpanded(IniItemModel::NodeOf(index), false); });
  connect(TV->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
    if (model_->IsChanging() || !current.isValid()) return;
    tree_.Select(IniItemModel::NodeOf(current));
    TV_NodeClick();
  });
  connect(TV, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
    const IniTag tag = IniItemModel::NodeOf(index)->Tag();
    if (tag == IniTag::Value || tag == IniTag::Comments) cmd_Edit_Click();
  });
  connect(TV, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) {
    global_.frame.PopUpEditMenu(TV->viewport()->mapToGlobal(position), u"menu_EditLine"_s);
  });
  const auto on_key = [this](QWidget* where, const QKeySequence& key, void (form_INI::*command)()) {
    auto* shortcut = new QShortcut(key, where);
    shortcut->setContext(where == TV ? Qt::WidgetShortcut : Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, command);
  };
  on_key(&client, Qt::Key_Insert, &form_INI::AddValue);
  // On a button, Enter is the button's.
  on_key(TV, Qt::Key_Return, &form_INI::cmd_Edit_Click);
  on_key(TV, Qt::Key_Enter, &form_INI::cmd_Edit_Click);
}

std::unique_ptr<SearchTarget> form_INI::MakeSearchTarget() {
  return std::make_unique<IniSearchTarget>(tree_, *TV, [this](IniNode* node) {
    tree_.Select(node);
    ShowSelection();
  });
}

void form_INI::BuildButtons(QWidget& client) {
  const auto make = [&](const QString& name, const QString& caption, const QString& tip, void (form_INI::*command)()) {
    auto* button = new QPushButton(caption, &client);
    button->setObjectName(name);
    button->setAccessibleName(QString(caption).remove(u'&').replace(u'\n', u' '));
    SetTip(*button, tip);
    button->setFocusPolicy(Qt::TabFocus);  // a click leaves the keys with the tree
    connect(button, &QPushButton::clicked, this, command);
    return button;
  };
  cmd_AddSection =
      make(u"cmd_AddSection"_s, tr("Add\nSectio&n"), tr("Add a section to the file"), &form_INI::AddSection);
  cmd_DeleteSection = make(u"cmd_DeleteSection"_s, tr("Delete\nSe&ction"),
                           tr("Delete the selected section with its entries (Del)"), &form_INI::DeleteSection);
  cmd_Edit =
      make(u"cmd_Edit"_s, tr("E&dit"), tr("Edit the selected line or section name (Enter)"), &form_INI::cmd_Edit_Click);
  cmd_AddValue =
      make(u"cmd_AddValue"_s, tr("&Add\nValue"), tr("Add an entry to the section (Ins)"), &form_INI::AddValue);
  cmd_DeleteValue = make(u"cmd_DeleteValue"_s, tr("De&lete\nValue"), tr("Delete the selected entry or comment (Del)"),
                         &form_INI::DeleteValue);
  // Beside the source their captions stay whole.
  int width = 0;
  for (const QPushButton* button : client.findChildren<QPushButton*>(Qt::FindDirectChildrenOnly))
    width += button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width() + 4 * kButtonGapPixels;
  client.setMinimumWidth(width);
}

bool form_INI::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize && watched == TV->parentWidget()) Form_Resize();
  return TreeDocumentWindow::eventFilter(watched, event);
}

void form_INI::Form_Resize() {
  if (SubWindow() && SubWindow()->isMinimized()) return;
  const QSize client = TV->parentWidget()->size();
  const auto pixels = [this](int twips) { return TwipsToPixels(twips, logicalDpiY()); };
  const int tree_height = client.height() - pixels(kTreeMargin);
  // Between the tree's rows and its scroll bar; taller than the given strip where a large font needs it.
  const int bar_height = TV->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, TV);
  const int below = pixels(kTreeMargin) + bar_height + kButtonGapPixels;
  const int button_height = std::max(pixels(kButtonsAboveBottom) - below, cmd_AddSection->sizeHint().height());
  const int top = client.height() - std::max(pixels(kButtonsAboveBottom), below + button_height);
  static_cast<ScrollBarUnderStrip*>(TV->horizontalScrollBar())
      ->SetStrip(tree_height - bar_height - top + kButtonGapPixels);
  TV->setGeometry(0, 0, client.width(), tree_height);

  const std::array buttons{cmd_AddSection, cmd_DeleteSection, cmd_Edit, cmd_AddValue, cmd_DeleteValue};
  const auto count = static_cast<int>(buttons.size());
  const int room = client.width() - kButtonGapPixels;
  for (int index = 0; index < count; ++index) {
    const int left = kButtonGapPixels + room * index / count;
    const int right = room * (index + 1) / count;
    buttons[static_cast<std::size_t>(index)]->setGeometry(left, top, right - left, button_height);
  }
}

void form_INI::TV_NodeClick() {
  const IniTag tag = tree_.Selected()->Tag();
  const bool has_sections = tree_.SectionCount() > 0;
  const bool on_entry = tag == IniTag::Value, on_section = tag == IniTag::Section, on_comment = tag == IniTag::Comments;
  FollowInSource();
  cmd_DeleteSection->setEnabled(on_section);
  const bool has_text = tag != IniTag::OpenedFile;
  cmd_Edit->setEnabled(has_text);
  const IniNode* parent = tree_.Selected()->Parent();
  cmd_AddValue->setEnabled(IsWhole() || on_section || (parent != nullptr && parent != tree_.Root()));
  cmd_DeleteValue->setEnabled(on_entry || on_comment);
  if (global_.area.ActiveDocument() != this) return;
  GlobalMenus& menus = global_.menus;
  menus.SetAvailable("menu_EditAddToAll", has_sections);
  menus.SetAvailable("menu_EditLine", has_text);
  menus.SetAvailable("menu_EditLineRename", has_text);
  // By the rules a comment leaves the other items as they were; intended.
  if (on_comment && !IsWhole()) return;
  menus.SetAvailable("menu_EditAddKeyValue", IsWhole() || on_section || on_entry);
  menus.SetAvailable("menu_EditDeleteValue", on_entry || on_comment);
  menus.SetAvailable("menu_EditRemovefromAll", on_entry);
  menus.SetAvailable("menu_SectionsDelete", on_section);
}

void form_INI::UpdateCommands() {
  TreeDocumentWindow::UpdateCommands();
  TV_NodeClick();
  ShowArrangement();
}

void form_INI::ShowArrangement() {
  if (global_.area.ActiveDocument() != this) return;
  global_.menus.SetHidden(u"menu_ViewSortByName"_s, !IsWhole());
  global_.menus.SetChecked("menu_ViewSortByName", tree_.Arrangement() == IniArrangement::ByName);
}

void form_INI::RestoreView() {
  const IniNode* root = tree_.Root();
  TV->setExpanded(model_->IndexOf(root), root->Expanded());
  for (int row = 0; row < root->ChildCount(); ++row) {
    const IniNode* child = root->Child(row);
    if (child->Expanded()) TV->setExpanded(model_->IndexOf(child), true);
  }
  ShowSelection();
  TV->verticalScrollBar()->setValue(scrolled_);
  TV->scrollTo(TV->currentIndex());
  ShowArrangement();
}

void form_INI::ShowSelection() {
  TV->setCurrentIndex(model_->IndexOf(tree_.Selected()));
  TV->scrollTo(TV->currentIndex());
  TV_NodeClick();
}

void form_INI::NewINI() {
  TakeSlotForNew();
  HoldAsSettings();
  is_8bit_ = false;
  tree_.Reset(file_.Title().toStdString(), GetHolding());
  tree_.SetExpanded(tree_.Root(), true);
  RestoreView();
  ShowNew();
}

void form_INI::OpenINI() {
  std::optional<std::string> text = TakeSlotText();
  if (!text) return;
  HoldAsSettings();
  ReadText(std::move(*text));
  ShowInFrame();
  QMdiSubWindow* sub_window = SubWindow();
  if (!sub_window->isMinimized() && !sub_window->isMaximized())
    sub_window->resize(PreferredWidth(), sub_window->height());
  TV->setFocus();
}

form_INI::ReadEnd form_INI::ReadText(std::string text) {
  is_8bit_ = Is8Bit(file_.Format(), text);
  tree_.Reset(file_.Title().toStdString(), GetHolding());
  if (IsWhole()) {
    const WaitCursor wait_cursor;
    ReadWholeIni(tree_, std::move(text));
    RestoreView();
    MarkRead(QString());
    return ReadEnd::Taken;
  }
  const IniReadResult result = Read(std::move(text));
  MarkRead(LeftOutOf(result));
  AddNotice(NoticeOf(result, tr("The file")), HoldingButton());
  return ReadEnd::Taken;
}

IniReadResult form_INI::Read(std::string text) {
  const WaitCursor wait_cursor;
  const IniQuestions ask{[this](std::string_view) {
    return global_.dialogs.MsgBox(
               tr("You have asked to paste a section into this INI file, but that section already exists.  Would you "
                  "like to overwrite the existing section with the clipboard data?"),
               MsgButtons::YesNo, MsgIcon::Question, tr("Duplicate Section")) == MsgAnswer::Yes;
  }};
  const IniReadResult result = ReadIni(tree_, std::move(text), ask);
  RestoreView();
  return result;
}

SaveDialogTexts form_INI::SaveTexts() const { return {tr("Save File"), tr("INI File|*.INI"), u".INI"_s}; }

TextFormat form_INI::FormatToWrite() const {
  TextFormat format = file_.Format();
  const QString last_choice = global_.registry.ReadValue(SettingsRoot, kUnicodeValue);
  format.fallback = is_8bit_ ? TextEncoding::Utf16Le : SystemUnicode();
  for (const TextEncoding choice : {TextEncoding::Utf16Le, TextEncoding::Utf8, TextEncoding::Utf8Bom})
    if (!is_8bit_ && last_choice == QString::fromUtf8(EncodingName(choice))) format.fallback = choice;
  return format;
}

PartProducer form_INI::Producer() {
  return [this](const PartSink& put) {
    wrote_ascii_ = true;
    return WriteIni(tree_, [&](std::string_view part) {
      wrote_ascii_ = wrote_ascii_ && IsAscii(part);
      return put(part);
    });
  };
}

form_INI::SaveOutcome form_INI::WriteTo(QString& path, const SaveRequest& request) {
  const SaveOutcome outcome = TreeDocumentWindow::WriteTo(path, request);
  if (outcome != SaveOutcome::Saved) return outcome;
  AddNotice(NoticeOf(tree_));
  was_8bit_ = std::exchange(is_8bit_, file_.Format().encoding == TextEncoding::CodePage && !wrote_ascii_);
  return outcome;
}

void form_INI::EncodingChosen(TextEncoding encoding) {
  if (!was_8bit_ && global_.settings.present)
    global_.registry.WriteValue(SettingsRoot, kUnicodeValue, QString::fromUtf8(EncodingName(encoding)));
}

std::function<void()> form_INI::FormatAgain() {
  return [again = TreeDocumentWindow::FormatAgain(), is_8bit = is_8bit_, this] {
    again();
    is_8bit_ = is_8bit;
  };
}

void form_INI::TitleChanged(const QString&) {
  tree_.SetText(tree_.Root(), file_.Title().toStdString());
  MarkUnmodified();
}

void form_INI::PutByRules(std::string bytes) {
  DecodedText decoded = DecodeText(std::move(bytes));
  file_.SetFormat(decoded.format);
  is_8bit_ = Is8Bit(decoded.format, decoded.text);
  tree_.Reset(file_.Title().toStdString());
  ReadEveryIniLine(tree_, decoded.text);
  RestoreView();
}

void form_INI::PrintDoc(QPrinter& printer) {
  tree_.Select(tree_.Root());
  ShowSelection();
  EditCopy();
  const WaitCursor wait_cursor;
  if (!RTFPrintBox) {
    RTFPrintBox = new QTextEdit(this);
    RTFPrintBox->setObjectName(u"RTFPrintBox"_s);
    RTFPrintBox->setUndoRedoEnabled(false);
    RTFPrintBox->hide();
  }
  RTFPrintBox->setPlainText(QString::fromStdString(ClipboardText(tree_, *tree_.Root())));
  RTFPrintBox->print(&printer);
  RTFPrintBox->clear();
}

}  // namespace tme
