#include "windows/reg/form_REG.h"

#include <QEvent>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QShortcut>
#include <QSplitter>
#include <array>

#include "documents/reg/RegAsShown.h"
#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Icon.h"
#include "shell/PlainText.h"
#include "shell/Settings.h"
#include "shell/Zoom.h"
#include "shell/mdform_TMEditor.h"
#include "system/RegistryAccess.h"
#include "system/Twips.h"
#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegSearchTarget.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/RegWholeCommands.h"
#include "windows/tree/DocumentTreeView.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kStages = 7;
constexpr std::array kColumnNames{"LVC1", "LVC2", "LVC3"};
/// Twips, where the settings have none.
constexpr std::array kColumnWidths{2700, 1100, 0};
constexpr int kLeastDataWidth = 1100;  // twips

}  // namespace

form_REG::form_REG(Global& global, int slot)
    : TreeDocumentWindow(global, DocumentKind::Reg, slot, &Settings::reg_whole) {}

form_REG::~form_REG() = default;

void form_REG::BuildControls(QWidget& client) {
  setWindowIcon(Icon(u"reg-file"_s));
  keys_ = std::make_unique<RegKeyModel>(document_);
  values_ = std::make_unique<RegValueModel>(document_);
  whole_ = std::make_unique<RegWholeCommands>(*this, global_.dialogs, document_);

  QWidget* area = MakeTreeArea(client);
  auto* column = new QVBoxLayout(area);
  column->setContentsMargins(0, 0, 0, 0);
  auto* splitter = new QSplitter(area);
  splitter->setObjectName(u"splitter"_s);
  splitter->setAccessibleName(tr("Divider between keys and values"));
  splitter->setChildrenCollapsible(false);
  BuildKeyTree(splitter);
  BuildValueList(splitter);
  BuildRowEditors();
  BuildDragging();
  splitter->setStretchFactor(0, 2);
  splitter->setStretchFactor(1, 3);
  column->addWidget(splitter, 1);

  auto* status = new QHBoxLayout;
  status->setContentsMargins(4, 0, 4, 2);
  lbl_location = PlainLabel({}, area);
  lbl_location->setObjectName(u"lbl_location"_s);
  lbl_location->setAccessibleDescription(tr("Path of the selected key"));
  lbl_location->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lbl_location->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  lbl_location->setMinimumHeight(lbl_location->fontMetrics().height());
  status->addWidget(lbl_location, 1);
  const auto make_bar = [&](const QString& name, const QString& accessible_name) {
    auto* bar = new QProgressBar(area);
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
  WatchState(*TV);
  WatchState(*LV);
  FollowSteps(*TV);
  new ViewZoom({TV, LV}, this);
  setFocusProxy(TV);
}

void form_REG::BuildKeyTree(QWidget* parent) {
  TV = new DocumentTreeView(parent);
  TV->setAccessibleName(tr("Keys"));
  TV->setModel(keys_.get());
  WatchContent(*keys_);
  for (const auto signal : {&RegKeyModel::ValueAddedToTable, &RegKeyModel::ValueChangedInTable})
    connect(keys_.get(), signal, this, &form_REG::ContentChanged);
  TV->installEventFilter(this);
  TV->viewport()->installEventFilter(this);
  connect(keys_.get(), &RegKeyModel::ValuesResetInTable, this, &form_REG::FollowValues);
  connect(keys_.get(), &QAbstractItemModel::modelAboutToBeReset, this, &form_REG::RememberView);
  connect(keys_.get(), &QAbstractItemModel::modelReset, this, &form_REG::RestoreView);
  const auto node_at = [this](const QModelIndex& above, int row) {
    return RegKeyModel::NodeOf(keys_->index(row, 0, above));
  };
  connect(keys_.get(), &QAbstractItemModel::rowsAboutToBeRemoved, this,
          [this, node_at](const QModelIndex& above, int row) { RememberExpanded(node_at(above, row)); });
  connect(keys_.get(), &QAbstractItemModel::rowsInserted, this,
          [this, node_at](const QModelIndex& above, int row) { RestoreExpanded(node_at(above, row)); });
  connect(keys_.get(), &TreeItemModelBase::SelectionMovedByTree, this, &form_REG::ShowSelection);
  connect(TV->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
    if (keys_->IsChanging() || !current.isValid()) return;
    document_.Select(RegKeyModel::NodeOf(current));
    ShowKey();
  });
  connect(TV, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) { PopUpMenu(*TV, position); });
  connect(TV, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
    if (RegKeyModel::NodeOf(index)->Tag() == RegTag::Comment) EditModify();
  });
  auto* insert = new QShortcut(Qt::Key_Insert, TV);
  insert->setContext(Qt::WidgetShortcut);
  connect(insert, &QShortcut::activated, this, &form_REG::EditNewKey);
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
    auto* enter = new QShortcut(key, TV);
    enter->setContext(Qt::WidgetShortcut);
    connect(enter, &QShortcut::activated, this, &form_REG::EditModify);
  }
}

void form_REG::BuildValueList(QWidget* parent) {
  LV = new RowDragView(parent);
  LV->setObjectName(u"LV"_s);
  LV->setAccessibleName(tr("Values of the selected key"));
  LV->setRootIsDecorated(false);
  LV->setSelectionMode(QAbstractItemView::ExtendedSelection);
  LV->setUniformRowHeights(true);
  LV->setAllColumnsShowFocus(true);
  LV->setEditTriggers(QAbstractItemView::NoEditTriggers);
  LV->setContextMenuPolicy(Qt::CustomContextMenu);
  LV->setModel(values_.get());
  LV->header()->setSectionsMovable(false);
  LV->header()->setStretchLastSection(false);
  LV->header()->setSortIndicatorClearable(true);
  LV->header()->setSortIndicator(-1, Qt::AscendingOrder);
  LV->setSortingEnabled(true);
  LV->installEventFilter(this);
  LV->viewport()->installEventFilter(this);
  ReadColumnWidths();
  connect(LV->header(), &QHeaderView::sectionResized, this,
          [this](int column, int, int pixels) { WriteColumnWidth(column, pixels); });
  connect(LV->selectionModel(), &QItemSelectionModel::currentChanged, this, &form_REG::UpdateCommands);
  connect(LV->selectionModel(), &QItemSelectionModel::selectionChanged, this, &form_REG::UpdateCommands);
  connect(LV, &QTreeView::doubleClicked, this, &form_REG::EditModify);
  connect(LV, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) { PopUpMenu(*LV, position); });
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

std::unique_ptr<SearchTarget> form_REG::MakeSearchTarget() {
  const auto characters = [this] {
    return File().Format().encoding == TextEncoding::CodePage ? RegCharacters::OfCodePage : RegCharacters::Any;
  };
  return std::make_unique<RegSearchTarget>(
      document_, RegSearchTarget::ShownIn{*TV, *LV, *values_},
      RegSearchTarget::Window{[this](RegNode* node, std::uint32_t record) { GoToPlace(node, record); }, characters});
}

void form_REG::GoToPlace(RegNode* node, std::uint32_t record) {
  document_.Select(node);
  TV->setCurrentIndex(keys_->IndexOf(node));
  TV->scrollTo(TV->currentIndex());
  if (record == SearchPlace::kNoRecord) {
    LV->clearSelection();
    ShowPath();
    SetFocusMarker(Focus::TV);
  } else {
    GoToRow(values_->RowOf(record));
    SetFocusMarker(Focus::LV);
  }
}

void form_REG::PopUpMenu(const QAbstractItemView& view, const QPoint& position) {
  global_.frame.PopUpEditMenu(view.viewport()->mapToGlobal(position), u"menu_EditModify"_s);
}

bool form_REG::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusIn:
      if (watched == LV) SelectFirstRow(static_cast<QFocusEvent*>(event)->reason());
      [[fallthrough]];
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
  return TreeDocumentWindow::eventFilter(watched, event);
}

void form_REG::SelectFirstRow(Qt::FocusReason reason) {
  const bool is_by_key =
      reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
  if (!is_by_key || LV->selectionModel()->hasSelection()) return;
  LV->setCurrentIndex(LV->currentIndex().isValid() ? LV->currentIndex() : values_->index(0, 0));
}

void form_REG::SetFocusMarker(Focus focus) {
  FocusMarker = focus;
  UpdateCommands();
  StateChanged();
}

void form_REG::UpdateCommands() {
  TreeDocumentWindow::UpdateCommands();
  if (global_.area.ActiveDocument() != this) return;
  UpdateWholeCommands();
  GlobalMenus& menus = global_.menus;
  const bool is_in_list = FocusMarker == Focus::LV;
  const bool has_any = is_in_list ? LV->selectionModel()->hasSelection() : document_.Selected()->Tag() != RegTag::File;
  menus.SetAvailable("menu_EditCopyKeyPath", document_.Selected()->Tag() != RegTag::File);
  menus.SetAvailable("menu_EditCopyRegAdd", has_any);
  menus.SetAvailable("menu_EditRegCopyText", has_any || !is_in_list);
  ShowSourceCommands();
  if (IsWhole()) return;
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
    // The types of a whole document have longer names.
    if (twips <= 0 && column == RegValueModel::Type && IsWhole())
      width = std::max(width, LV->fontMetrics().horizontalAdvance(u"REG_EXPAND_SZ__"_s));
    if (twips <= 0 && column == RegValueModel::Data) width = std::max(room, pixels(kLeastDataWidth));
    LV->header()->resizeSection(static_cast<int>(column), width);
    room -= width;
  }
  is_placing_columns_ = false;
}

void form_REG::WriteColumnWidth(int column, int pixels) {
  if (is_placing_columns_) return;
  global_.registry.WriteValue(kRegKey, QString::fromLatin1(kColumnNames.at(static_cast<std::size_t>(column))),
                              QString::number(PixelsToTwips(pixels, logicalDpiX())));
}

void form_REG::RememberExpanded(const RegNode* top) {
  std::vector<const RegNode*> open{top};
  while (!open.empty()) {
    const RegNode* node = open.back();
    open.pop_back();
    if (!TV->isExpanded(keys_->IndexOf(node))) continue;
    expanded_.insert(node);
    for (int row = 0; row < node->ChildCount(); ++row)
      if (node->Child(row)->ChildCount() > 0) open.push_back(node->Child(row));
  }
}

void form_REG::RestoreExpanded(const RegNode* top) {
  std::vector<const RegNode*> open{top};
  while (!open.empty()) {
    const RegNode* node = open.back();
    open.pop_back();
    if (expanded_.erase(node) == 0) continue;
    TV->expand(keys_->IndexOf(node));
    for (int row = 0; row < node->ChildCount(); ++row)
      if (node->Child(row)->ChildCount() > 0) open.push_back(node->Child(row));
  }
}

void form_REG::FollowValues() {
  const int row = values_->FollowKey(document_.Selected());
  if (row >= 0) GoToRow(row);
  ShowPath();
  UpdateCommands();
  emit ContentChanged();
}

void form_REG::RestoreView() {
  ReadColumnWidths();
  TV->setExpanded(keys_->IndexOf(document_.Root()), true);
  // Where the root alone is left, the others are gone for good.
  if (document_.NodeCount() == 1) expanded_.clear();
  std::erase_if(expanded_, [this](const RegNode* node) {
    if (!document_.IsInTree(node)) return false;
    TV->setExpanded(keys_->IndexOf(node), true);
    return true;
  });
  ShowSelection();
  TV->scrollTo(TV->currentIndex());
}

void form_REG::ShowSelection() {
  TV->setCurrentIndex(keys_->IndexOf(document_.Selected()));
  ShowKey();
}

void form_REG::ShowKey() {
  const RegNode* node = document_.Selected();
  values_->ShowKey(node);
  ShowPath();
  SetFocusMarker(Focus::TV);
}

void form_REG::ShowPath() { SetLocation(SelectedPath()); }

void form_REG::SetLocation(const QString& text) {
  location_ = text;
  lbl_location->setText(text);
  // A screen reader reads the name of a label in place of its text.
  lbl_location->setAccessibleName(text.isEmpty() ? tr("Path of the selected key") : text);
  SetTip(*lbl_location, text);
}

std::string form_REG::Content() {
  if (IsWhole()) {
    TextFormat whole_format = FormatToWrite();
    return DocumentFile::BytesOf(&whole_format, ProducerIn(RegLayout::Regular));
  }
  TextFormat format = file_.Format();
  return DocumentFile::BytesOf(&format, [this](const PartSink& put) { return WriteRegAsShown(document_, put); });
}

void form_REG::DropContent() {
  LV->header()->setSortIndicator(-1, Qt::AscendingOrder);
  document_.Reset({});
  kept_losses_ = 0;
  large_output_is_allowed_ = false;
}

}  // namespace tme
