#include "windows/reg/form_REG.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QShortcut>
#include <QSplitter>
#include <array>

#include "documents/reg/RegAsShown.h"
#include "documents/reg/RegLosses.h"
#include "files/FileBytes.h"
#include "files/PrivateFile.h"
#include "files/TextFile.h"
#include "shell/DocumentArea.h"
#include "shell/DocumentTreeView.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Icon.h"
#include "shell/PlainText.h"
#include "shell/WaitCursor.h"
#include "shell/Zoom.h"
#include "shell/mdform_TMEditor.h"
#include "system/Dialogs.h"
#include "system/RegistryAccess.h"
#include "system/Twips.h"
#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegNotice.h"
#include "windows/reg/RegValueModel.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kRepaintsMs = 33;  // about 30 a second
constexpr int kStages = 7;
constexpr int kStageOfHive = 4;
constexpr std::array kColumnNames{"LVC1", "LVC2", "LVC3"};
/// Twips, where the settings have none.
constexpr std::array kColumnWidths{2700, 1100, 0};
constexpr int kLeastDataWidth = 1100;  // twips
constexpr const char* kErrorLogName = "REG_ERR.TME";

}  // namespace

form_REG::form_REG(Global& global, int slot) : DocumentWindow(global, DocumentKind::Reg, slot) {}

form_REG::~form_REG() = default;

void form_REG::BuildControls(QWidget& client) {
  setWindowIcon(Icon(u"reg-file"_s));
  keys_ = std::make_unique<RegKeyModel>(document_);
  values_ = std::make_unique<RegValueModel>(document_);

  auto* column = new QVBoxLayout(&client);
  column->setContentsMargins(0, 0, 0, 0);
  auto* splitter = new QSplitter(&client);
  splitter->setObjectName(u"splitter"_s);
  splitter->setAccessibleName(tr("Divider between keys and values"));
  splitter->setChildrenCollapsible(false);
  BuildKeyTree(splitter);
  BuildValueList(splitter);
  splitter->setStretchFactor(0, 2);
  splitter->setStretchFactor(1, 3);
  column->addWidget(splitter, 1);

  auto* status = new QHBoxLayout;
  status->setContentsMargins(4, 0, 4, 2);
  lbl_location = PlainLabel({}, &client);
  lbl_location->setObjectName(u"lbl_location"_s);
  lbl_location->setAccessibleDescription(tr("Path of the selected key"));
  lbl_location->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lbl_location->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  lbl_location->setMinimumHeight(lbl_location->fontMetrics().height());
  status->addWidget(lbl_location, 1);
  const auto make_bar = [&](const QString& name, const QString& accessible_name) {
    auto* bar = new QProgressBar(&client);
    bar->setObjectName(name);
    bar->setAccessibleName(accessible_name);
    bar->setTextVisible(false);
    bar->hide();
    status->addWidget(bar);
    return bar;
  };
  PB = make_bar(u"PB"_s, tr("Lines read"));
  PB2 = make_bar(u"PB2"_s, tr("Stage within the line"));
  PB2->setMaximum(kStages);
  column->addLayout(status);
  new ViewZoom({TV, LV}, this);
  setFocusProxy(TV);
}

void form_REG::BuildKeyTree(QWidget* parent) {
  TV = new DocumentTreeView(parent);
  TV->setAccessibleName(tr("Keys"));
  TV->setModel(keys_.get());
  TV->installEventFilter(this);
  TV->viewport()->installEventFilter(this);
  connect(keys_.get(), &QAbstractItemModel::modelReset, this, &form_REG::RestoreView);
  connect(keys_.get(), &TreeItemModelBase::SelectionMovedByTree, this, &form_REG::ShowSelection);
  connect(TV->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
    if (keys_->IsChanging() || !current.isValid()) return;
    document_.Select(RegKeyModel::NodeOf(current));
    ShowKey();
  });
  connect(TV, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& position) { global_.frame.PopUpEditMenu(TV->viewport()->mapToGlobal(position)); });
  auto* insert = new QShortcut(Qt::Key_Insert, TV);
  insert->setContext(Qt::WidgetShortcut);
  connect(insert, &QShortcut::activated, this, &form_REG::EditNewKey);
}

void form_REG::BuildValueList(QWidget* parent) {
  LV = new QTreeView(parent);
  LV->setObjectName(u"LV"_s);
  LV->setAccessibleName(tr("Values of the selected key"));
  LV->setRootIsDecorated(false);
  LV->setUniformRowHeights(true);
  LV->setAllColumnsShowFocus(true);
  LV->setEditTriggers(QAbstractItemView::NoEditTriggers);
  LV->setContextMenuPolicy(Qt::CustomContextMenu);
  LV->setModel(values_.get());
  LV->header()->setSectionsMovable(false);
  LV->header()->setStretchLastSection(false);
  LV->installEventFilter(this);
  LV->viewport()->installEventFilter(this);
  ReadColumnWidths();
  connect(LV->header(), &QHeaderView::sectionResized, this,
          [this](int column, int, int pixels) { WriteColumnWidth(column, pixels); });
  connect(LV->selectionModel(), &QItemSelectionModel::currentChanged, this, &form_REG::UpdateCommands);
  connect(LV, &QTreeView::doubleClicked, this, &form_REG::EditModify);
  connect(LV, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& position) { global_.frame.PopUpEditMenu(LV->viewport()->mapToGlobal(position)); });
  connect(keys_.get(), &RegKeyModel::ValueChangedInTable, values_.get(), &RegValueModel::Refresh);
  const auto on_key = [this](const QKeySequence& key, void (form_REG::*command)()) {
    auto* shortcut = new QShortcut(key, LV);
    shortcut->setContext(Qt::WidgetShortcut);
    connect(shortcut, &QShortcut::activated, this, command);
  };
  on_key(Qt::Key_Return, &form_REG::EditModify);
  on_key(Qt::Key_Enter, &form_REG::EditModify);
  on_key(Qt::Key_Insert, &form_REG::EditNewString);
}

bool form_REG::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::MouseButtonPress:
    case QEvent::KeyPress:
      SetFocusMarker(watched == LV || watched == LV->viewport() ? Focus::LV : Focus::TV);
      break;
    case QEvent::Resize:
      // Another window may have changed them.
      if (watched == LV->viewport()) ReadColumnWidths();
      break;
    default:
      break;
  }
  return DocumentWindow::eventFilter(watched, event);
}

void form_REG::SetFocusMarker(Focus focus) {
  FocusMarker = focus;
  UpdateCommands();
}

void form_REG::UpdateCommands() {
  if (global_.area.ActiveDocument() != this) return;
  GlobalMenus& menus = global_.menus;
  menus.SetAvailable("menu_EditModify", FocusMarker == Focus::LV && SelectedRow() >= 0);
  menus.SetAvailable("menu_EditNewKey", FocusMarker == Focus::TV);
}

int form_REG::SelectedRow() const { return LV->currentIndex().isValid() ? LV->currentIndex().row() : -1; }

void form_REG::ReadColumnWidths() {
  if (std::exchange(is_placing_columns_, true)) return;
  const auto pixels = [this](int twips) { return TwipsToPixels(twips, logicalDpiX()); };
  int room = LV->viewport()->width();
  for (std::size_t column = 0; column < kColumnNames.size(); ++column) {
    const QString text = global_.registry.ReadValue(kRegKey, QString::fromLatin1(kColumnNames[column]));
    const int twips = ParseInt16(text).value_or(0);
    // Without a setting the last column gets the room that the others leave, so that it is in sight.
    int width = pixels(twips > 0 ? twips : kColumnWidths[column]);
    if (twips <= 0 && column == RegValueModel::Name) width = std::min(width, room * 2 / 5);
    if (twips <= 0 && column == RegValueModel::Data) width = std::max(room, pixels(kLeastDataWidth));
    LV->header()->resizeSection(static_cast<int>(column), width);
    room -= width;
  }
  is_placing_columns_ = false;
}

void form_REG::WriteColumnWidth(int column, int pixels) {
  if (is_placing_columns_) return;
  global_.registry.WriteValue(kRegKey, QString::fromLatin1(kColumnNames.at(static_cast<std::size_t>(column))),
                              kTextType, QString::number(PixelsToTwips(pixels, logicalDpiX())));
}

void form_REG::RestoreView() {
  TV->setExpanded(keys_->IndexOf(document_.Root()), true);
  ShowSelection();
}

void form_REG::ShowSelection() {
  TV->setCurrentIndex(keys_->IndexOf(document_.Selected()));
  ShowKey();
}

void form_REG::ShowKey() {
  const RegNode* node = document_.Selected();
  values_->ShowKey(node);
  SetLocation(QString::fromStdString(node->KeyPath()));
  SetFocusMarker(Focus::TV);
}

void form_REG::SetLocation(const QString& text) {
  location_ = text;
  lbl_location->setText(text);
  // A screen reader reads the name of a label in place of its text.
  lbl_location->setAccessibleName(text.isEmpty() ? tr("Path of the selected key") : text);
  SetTip(*lbl_location, text);
}

void form_REG::NewREG() {
  TakeSlotForNew();
  layout_ = RegLayout::Regular;
  document_.Reset(file_.Title().toStdString());
  TV->show();
  EndProgress();
  RestoreView();
  ShowNew();
}

void form_REG::OpenREG() {
  std::optional<std::string> text = TakeSlotText();
  if (!text) return;
  layout_ = RegLayout::Regular;
  document_.Reset(file_.Title().toStdString());
  ShowInFrame();
  const RegReadResult result = Read(std::move(*text));
  switch (result.end) {
    case RegReadEnd::HeaderRefused:
      return FileClose();
    case RegReadEnd::LargeFileRefused:
      TV->show();
      SetLocation({});
      AddNotice(tr("Nothing of the file was read. A save would put an empty document in its place."));
      break;
    case RegReadEnd::UnknownHive:
      // Intended: the import just stops; the bars, the label and the hidden tree stay as they are.
      ShowImport({RegProgress::Phase::Importing, result.ended_at_line, result.line_count, kStageOfHive});
      break;
    case RegReadEnd::EndOfInput:
      EndProgress();
      TV->show();
      RestoreView();
      TV->setFocus();
      break;
  }
  if (result.end == RegReadEnd::LargeFileRefused) {
    MarkUnmodified();
    file_.SetLeftOut(tr("all that the file held"));
  } else {
    const QString left_out = LeftOutOf(result);
    const bool is_unsaid = left_out.isEmpty() && result.end != RegReadEnd::EndOfInput;
    MarkOpened(is_unsaid ? std::nullopt : std::optional(left_out));
  }
  AddNotice(NoticeOf(result));
  AddNotice(NoticeOf(LossesOf(document_, RegLayout::Expanded), RegNoticeTime::BeforeSave));
  if (result.end == RegReadEnd::EndOfInput && !result.error_log.empty()) ReportErrors(result.error_log);
}

RegReadResult form_REG::Read(std::string text) {
  const WaitCursor wait_cursor;
  SetLocation(tr("Gathering File Information"));
  const auto ask = [this](const QString& question, const QString& title, MsgIcon icon) {
    return global_.dialogs.MsgBox(question, MsgButtons::YesNo, icon, title) == MsgAnswer::Yes;
  };
  RegQuestions questions;
  questions.wrong_header = [&] {
    return ask(tr("This file does not have the correct header definitions required for registry files.  Do you wish to "
                  "attemp to open this file anyway?"),
               tr("Error in File Type"), MsgIcon::Question);
  };
  questions.large_file = [&] {
    return ask(tr("This file is very large, and processing could take a while. Do you wish to continue?"),
               tr("Large Registry File"), MsgIcon::None);
  };
  questions.progress = [this](const RegProgress& progress) { ShowProgress(progress); };
  TV->hide();
  since_progress_.start();
  return RegReader::Read(document_, std::move(text), questions);
}

void form_REG::ShowProgress(const RegProgress& progress) {
  if (since_progress_.elapsed() < kRepaintsMs) return;
  since_progress_.start();
  if (progress.phase == RegProgress::Phase::Counting) {
    SetLocation(tr("Information Count: %1 lines.").arg(progress.lines));
  } else {
    ShowImport(progress);
  }
  // Repaints, but holds back what would act on a half-read document: keys and clicks. What other launches hand over
  // waits for the wait cursor to go.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

void form_REG::ShowImport(const RegProgress& progress) {
  SetLocation(tr("Importing Data:"));
  PB->show();
  PB2->show();
  // A progress bar counts in int; parts of a thousand serve any file.
  PB->setMaximum(1000);
  PB->setValue(static_cast<int>(1000 * progress.lines / std::max<std::uint64_t>(progress.total, 1)));
  PB2->setValue(progress.stage);
}

void form_REG::EndProgress() {
  PB->hide();
  PB2->hide();
  SetLocation({});
}

void form_REG::ReportErrors(const std::string& error_log) {
  const std::string text =
      tr("The following entries could not be processed:\r\n\r\n").toStdString() + error_log + "\r\n";
  const QString path = WriteOwnFile(kErrorLogName, [&](const std::filesystem::path& file) {
    TextFormat format = file_.Format();
    PrivateFileSteps steps;
    return WriteTextFile(
        file, format, [&text](const FilePart& put) { return put(text); }, steps);
  });
  if (path.isEmpty()) return;
  global_.dialogs.MsgBox(tr("Errors were reported during inport.  Please see %1  for details.").arg(path),
                         MsgButtons::Ok, MsgIcon::Information, tr("Errors:"));
}

std::string form_REG::Content() {
  TextFormat format = file_.Format();
  return DocumentFile::BytesOf(&format, [this](const FilePart& put) { return WriteRegAsShown(document_, put); });
}

void form_REG::PutContent(std::string bytes) {
  DecodedText decoded = DecodeText(std::move(bytes));
  file_.SetFormat(decoded.format);
  document_.Reset(file_.Title().toStdString());
  if (!ReadRegAsShown(document_, decoded.text)) {
    const RegQuestions take_all{.wrong_header = [] { return true; }, .large_file = [] { return true; }, .progress = {}};
    AddNotice(NoticeOf(RegReader::Read(document_, std::move(decoded.text), take_all)));
  }
  EndProgress();
  TV->show();
  RestoreView();
  AddNotice(NoticeOf(LossesOf(document_, RegLayout::Expanded), RegNoticeTime::BeforeSave));
  SetChanged(true);
}

void form_REG::DropContent() {
  document_.Reset({});
  kept_losses_ = 0;
  large_output_is_allowed_ = false;
}

}  // namespace tme
