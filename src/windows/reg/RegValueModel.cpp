#include "windows/reg/RegValueModel.h"

#include <QFont>
#include <algorithm>
#include <iterator>
#include <utility>

#include "documents/reg/RegValueOrder.h"
#include "shell/DisplayText.h"
#include "shell/Icon.h"
#include "shell/WaitCursor.h"

using namespace Qt::StringLiterals;

namespace tme {

RegValueModel::RegValueModel(const RegDocument& document, QObject* parent)
    : QAbstractTableModel(parent),
      document_(document),
      icons_{QIcon(), Icon(u"value-string"_s), Icon(u"value-dword"_s), Icon(u"value-hex"_s)},
      deletion_icon_(Icon(u"value-deletion"_s)) {}

void RegValueModel::ShowKey(const RegNode* node) {
  beginResetModel();
  texts_.clear();
  records_ = node ? document_.ValuesOfPath(node) : std::vector<std::size_t>();
  MakeOrder();
  endResetModel();
}

int RegValueModel::FollowKey(const RegNode* node) {
  std::vector<std::size_t> records = document_.ValuesOfPath(node);
  texts_.clear();
  const bool stand_otherwise = !order_.empty() || !OrderInFile(document_, records).empty();
  if (sorted_column_ >= 0 || stand_otherwise) return FollowSorted(node, records);
  const auto [old_first, new_first] = std::ranges::mismatch(records_, records);
  const auto same_last = std::mismatch(records_.rbegin(), std::make_reverse_iterator(old_first), records.rbegin(),
                                       std::make_reverse_iterator(new_first));
  const auto first = static_cast<int>(old_first - records_.begin());
  const auto gone = static_cast<int>(same_last.first.base() - old_first);
  const auto come = static_cast<int>(same_last.second.base() - new_first);
  if (gone > 0) {
    beginRemoveRows({}, first, first + gone - 1);
    records_.erase(old_first, same_last.first.base());
    endRemoveRows();
  }
  if (come > 0) {
    beginInsertRows({}, first, first + come - 1);
    records_ = std::move(records);
    endInsertRows();
  }
  if (!records_.empty()) emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
  return come > 0 ? first : -1;
}

int RegValueModel::FollowSorted(const RegNode* node, const std::vector<std::size_t>& records) {
  if (records == records_ && sorted_column_ >= 0) {
    sort(sorted_column_, sort_order_);
    return -1;
  }
  const auto came = std::ranges::find_if(
      records, [this](std::size_t record) { return !std::ranges::binary_search(records_, record); });
  ShowKey(node);
  return came == records.end() ? -1 : RowOf(*came);
}

void RegValueModel::MakeOrder() {
  order_.clear();
  row_of_place_.clear();
  order_ = sorted_column_ < 0
               ? OrderInFile(document_, records_)
               : OrderOfValues(document_, records_, static_cast<RegValueColumn>(sorted_column_), CodingOf(document_));
  if (sorted_column_ >= 0 && sort_order_ == Qt::DescendingOrder) std::reverse(order_.begin(), order_.end());
  row_of_place_.resize(order_.size());
  for (std::size_t row = 0; row < order_.size(); ++row) row_of_place_[order_[row]] = static_cast<std::uint32_t>(row);
}

void RegValueModel::sort(int column, Qt::SortOrder order) {
  const bool is_same = column == sorted_column_ && order == sort_order_;
  sorted_column_ = column;
  sort_order_ = order;
  if (is_same && column < 0) return;
  const WaitCursor wait_cursor;
  emit layoutAboutToBeChanged({}, VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  std::vector<std::size_t> places;
  places.reserve(static_cast<std::size_t>(before.size()));
  for (const QModelIndex& old : before) places.push_back(PlaceOf(old.row()));
  MakeOrder();
  QModelIndexList after;
  after.reserve(before.size());
  for (qsizetype at = 0; at < before.size(); ++at)
    after += index(RowOfPlace(places[static_cast<std::size_t>(at)]), before[at].column());
  changePersistentIndexList(before, after);
  emit layoutChanged({}, VerticalSortHint);
}

void RegValueModel::Append(std::size_t record) {
  const int row = rowCount();
  beginInsertRows({}, row, row);
  if (sorted_column_ >= 0 || !order_.empty()) {
    order_.push_back(static_cast<std::uint32_t>(row));
    row_of_place_.push_back(static_cast<std::uint32_t>(row));
  }
  records_.push_back(record);
  endInsertRows();
}

void RegValueModel::Refresh(std::size_t record) {
  texts_.remove(record);
  if (const int row = RowOf(record); row >= 0) emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

int RegValueModel::RowOf(std::size_t record) const {
  const auto found = std::lower_bound(records_.begin(), records_.end(), record);
  if (found == records_.end() || *found != record) return -1;
  return RowOfPlace(static_cast<std::size_t>(found - records_.begin()));
}

void RegValueModel::TakeRow(int row) {
  beginRemoveRows({}, row, row);
  const std::size_t place = PlaceOf(row);
  records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(place));
  if (!order_.empty()) {
    order_.erase(order_.begin() + row);
    row_of_place_.resize(order_.size());
    for (std::size_t at = 0; at < order_.size(); ++at) {
      if (order_[at] > place) --order_[at];
      row_of_place_[order_[at]] = static_cast<std::uint32_t>(at);
    }
  }
  endRemoveRows();
}

void RegValueModel::TakeRecords(std::vector<std::size_t> records) {
  std::sort(records.begin(), records.end());
  beginResetModel();
  std::erase_if(records_,
                [&](std::size_t record) { return std::binary_search(records.begin(), records.end(), record); });
  MakeOrder();
  endResetModel();
}

int RegValueModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(records_.size());
}

int RegValueModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

Qt::ItemFlags RegValueModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled;
  // A REGEDIT file has default values alone.
  const bool has_names = document_.HeldAs() == Holding::Whole && document_.Version() != RegVersion::Regedit;
  return has_names && index.column() == Name ? flags | Qt::ItemIsEditable : flags;
}

QVariant RegValueModel::data(const QModelIndex& index, int role) const {
  // A view may ask between a change and its being told.
  if (!index.isValid() || RecordOf(index) >= document_.Values().size()) return {};
  if (document_.HeldAs() == Holding::Whole) return DecodedData(RecordOf(index), index.column(), role);
  const RegValueRecord& record = document_.Values()[RecordOf(index)];
  if (role == Qt::DecorationRole && index.column() == Name) {
    const QIcon& icon = icons_[static_cast<std::size_t>(record.type)];
    return icon.isNull() ? QVariant() : icon;
  }
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case Name:
      return DisplayText(record.name);
    case Type:
      return DisplayText(TraitsOf(record.type).name);
    case Data:
      return DisplayText(record.data);
    default:
      return {};
  }
}

QVariant RegValueModel::DecodedData(std::size_t record, int column, int role) const {
  RegValueText* text = texts_.object(record);
  if (!text) {
    text = new RegValueText(TextOfValue(document_.Values()[record], CodingOf(document_)));
    texts_.insert(record, text);
  }
  const bool is_deletion = text->picture == RegValueText::Picture::Deletion;
  switch (role) {
    case Qt::DisplayRole:
      return column == Name ? text->name : column == Type ? text->type : text->data;
    case Qt::DecorationRole:
      // Pictures of texts, numbers and bytes stand in this order.
      if (column != Name) return {};
      return is_deletion ? deletion_icon_ : icons_[static_cast<std::size_t>(text->picture) + 1];
    case Qt::FontRole: {
      if (!is_deletion || column != Name) return {};
      QFont font;
      font.setStrikeOut(true);
      return font;
    }
    case Qt::AccessibleTextRole:
      return is_deletion && column == Name ? tr("%1 (deletion)").arg(text->name) : QVariant();
    default:
      return {};
  }
}

QVariant RegValueModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return std::array{tr("Name"), tr("Type"), tr("Data")}.at(static_cast<std::size_t>(section));
}

}  // namespace tme
