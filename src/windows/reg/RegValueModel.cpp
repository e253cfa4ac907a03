#include "windows/reg/RegValueModel.h"

#include <QFont>
#include <algorithm>
#include <iterator>
#include <utility>

#include "shell/DisplayText.h"
#include "shell/Icon.h"

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
  endResetModel();
}

int RegValueModel::FollowKey(const RegNode* node) {
  std::vector<std::size_t> records = document_.ValuesOfPath(node);
  texts_.clear();
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

void RegValueModel::Append(std::size_t record) {
  const int row = rowCount();
  beginInsertRows({}, row, row);
  records_.push_back(record);
  endInsertRows();
}

void RegValueModel::Refresh(std::size_t record) {
  texts_.remove(record);
  if (const int row = RowOf(record); row >= 0) emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

int RegValueModel::RowOf(std::size_t record) const {
  const auto found = std::ranges::lower_bound(records_, record);
  return found == records_.end() || *found != record ? -1 : static_cast<int>(found - records_.begin());
}

void RegValueModel::TakeRow(int row) {
  beginRemoveRows({}, row, row);
  records_.erase(records_.begin() + row);
  endRemoveRows();
}

int RegValueModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(records_.size());
}

int RegValueModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant RegValueModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
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
