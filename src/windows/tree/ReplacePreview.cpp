#include "windows/tree/ReplacePreview.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "shell/DisplayText.h"
#include "shell/PlainText.h"
#include "windows/tree/SearchTarget.h"
#include "windows/tree/TreeDocumentWindow.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr QSize kPreviewSize(820, 460);

}  // namespace

ReplacementModel::ReplacementModel(std::vector<PlannedReplacement>& plans, QObject* parent)
    : QAbstractTableModel(parent), plans_(plans) {}

void ReplacementModel::ChooseAll(bool is_chosen) {
  for (PlannedReplacement& plan : plans_) plan.is_chosen = is_chosen && plan.replacement.refusal.isEmpty();
  if (!plans_.empty()) emit dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::CheckStateRole});
}

std::size_t ReplacementModel::ChosenCount() const {
  return static_cast<std::size_t>(std::ranges::count_if(plans_, &PlannedReplacement::is_chosen));
}

std::size_t ReplacementModel::RefusedCount() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(plans_, [](const auto& plan) { return !plan.replacement.refusal.isEmpty(); }));
}

bool ReplacementModel::HasManyDocuments() const {
  return std::ranges::any_of(plans_, [&](const auto& plan) { return plan.window != plans_.front().window; });
}

bool ReplacementModel::RefuseCollisions() {
  std::unique_ptr<Replacer> replacer;
  const TreeDocumentWindow* window = nullptr;
  bool has_refused = false;
  for (PlannedReplacement& plan : plans_) {
    if (!plan.is_chosen) continue;
    if (plan.window != window) replacer = plan.window->Searchable().MakeReplacer();
    window = plan.window;
    plan.replacement.refusal = replacer->Check(plan.replacement);
    if (plan.replacement.refusal.isEmpty()) continue;
    plan.is_chosen = false;
    has_refused = true;
  }
  if (has_refused) emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
  return has_refused;
}

std::vector<MarkedRange> ReplacementModel::MarksOf(const QModelIndex& index) const {
  if (index.column() != Before && index.column() != After) return {};
  const PlannedReplacement& plan = plans_[static_cast<std::size_t>(index.row())];
  const QString before = TextAt(plan, Before), after = TextAt(plan, After);
  const auto [end, other_end] = std::ranges::mismatch(before, after);
  const qsizetype start = end - before.begin();
  const qsizetype most = std::min(before.size(), after.size()) - start;
  qsizetype same = 0;
  while (same < most && before[before.size() - 1 - same] == after[after.size() - 1 - same]) ++same;
  return {{start, (index.column() == Before ? before : after).size() - start - same}};
}

int ReplacementModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(plans_.size());
}

QString ReplacementModel::TextAt(const PlannedReplacement& plan, int column) const {
  const Replacement& replacement = plan.replacement;
  const SearchTarget& target = plan.window->Searchable();
  switch (column) {
    case Name:
      return DisplayText(target.RowOf(replacement.place).name);
    case Path:
      return DisplayText(target.RowOf(replacement.place).path);
    case Before:
      return DisplayText(target.TextOf(replacement.place, replacement.field));
    case After:
      return DisplayText(replacement.after);
    case Document:
      return DisplayText(plan.window->File().Title().toStdString());
    default:
      return replacement.refusal;
  }
}

QVariant ReplacementModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const PlannedReplacement& plan = plans_[static_cast<std::size_t>(index.row())];
  if (role == Qt::DisplayRole) return TextAt(plan, index.column());
  if (role == Qt::ToolTipRole) return TipText(TextAt(plan, index.column()));
  if (role == Qt::CheckStateRole && index.column() == Name && plan.replacement.refusal.isEmpty())
    return plan.is_chosen ? Qt::Checked : Qt::Unchecked;
  return {};
}

bool ReplacementModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole) return false;
  plans_[static_cast<std::size_t>(index.row())].is_chosen = value.toInt() == Qt::Checked;
  emit dataChanged(index, index, {Qt::CheckStateRole});
  return true;
}

Qt::ItemFlags ReplacementModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  const bool is_possible =
      index.isValid() && plans_[static_cast<std::size_t>(index.row())].replacement.refusal.isEmpty();
  return is_possible && index.column() == Name ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant ReplacementModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return std::array{tr("Name"), tr("Path"), tr("Before"), tr("After"), tr("Not Possible Because"), tr("Document")}.at(
      static_cast<std::size_t>(section));
}

ReplacePreview::ReplacePreview(std::vector<PlannedReplacement>& plans, QWidget* parent)
    : QDialog(parent), rows_(new ReplacementModel(plans, this)), list_(BuildList()), count_(PlainLabel({}, this)) {
  setObjectName(u"replace_preview"_s);
  setWindowTitle(tr("Replace All"));
  auto* column = new QVBoxLayout(this);
  column->addWidget(list_, 1);
  count_->setObjectName(u"replace_count"_s);
  count_->setWordWrap(true);
  column->addWidget(count_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  replace_ = buttons->addButton(tr("&Replace"), QDialogButtonBox::AcceptRole);
  replace_->setObjectName(u"replace_do"_s);
  const auto add_choice = [&](const QString& caption, const char* name, bool is_chosen) {
    QPushButton* button = buttons->addButton(caption, QDialogButtonBox::ActionRole);
    button->setObjectName(QLatin1StringView(name));
    connect(button, &QPushButton::clicked, rows_, [this, is_chosen] { rows_->ChooseAll(is_chosen); });
  };
  add_choice(tr("&All"), "replace_choose_all", true);
  add_choice(tr("&None"), "replace_choose_none", false);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  column->addWidget(buttons);
  connect(rows_, &QAbstractItemModel::dataChanged, this, &ReplacePreview::ShowCount);
  ShowCount();
  resize(kPreviewSize);
  layout()->activate();  // the columns share the list's width
  ShowColumns();
}

QTreeView* ReplacePreview::BuildList() {
  auto* list = new QTreeView(this);
  list->setObjectName(u"replace_list"_s);
  list->setAccessibleName(tr("Replacements"));
  list->setRootIsDecorated(false);
  list->setUniformRowHeights(true);
  list->setAllColumnsShowFocus(true);
  list->setModel(rows_);
  list->setItemDelegate(
      new HitMarks([this](const QModelIndex& index, qsizetype) { return rows_->MarksOf(index); }, list));
  list->header()->setResizeContentsPrecision(0);
  return list;
}

void ReplacePreview::ShowColumns() {
  list_->setColumnHidden(ReplacementModel::Reason, rows_->RefusedCount() == 0);
  list_->setColumnHidden(ReplacementModel::Document, !rows_->HasManyDocuments());
  const QHeaderView& header = *list_->header();
  const int shown = ReplacementModel::ColumnCount - header.hiddenSectionCount();
  for (int part = 0; part < ReplacementModel::ColumnCount; ++part)
    if (!header.isSectionHidden(part)) list_->header()->resizeSection(part, list_->width() / shown);
}

void ReplacePreview::accept() {
  if (!rows_->RefuseCollisions()) return QDialog::accept();
  ShowColumns();
}

void ReplacePreview::ShowCount() {
  const std::size_t chosen = rows_->ChosenCount();
  const std::size_t refused = rows_->RefusedCount();
  QString text = Counted(chosen, tr("1 text is replaced."), tr("%1 texts are replaced."));
  if (refused > 0)
    text += u' ' + Counted(refused, tr("1 text cannot be, and stays."), tr("%1 texts cannot be, and stay."));
  count_->setText(text);
  replace_->setEnabled(chosen > 0);
}

}  // namespace tme
