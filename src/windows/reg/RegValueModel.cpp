#include "windows/reg/RegValueModel.h"

#include <algorithm>

#include "shell/DisplayText.h"
#include "shell/Icon.h"

using namespace Qt::StringLiterals;

namespace tme {

RegValueModel::RegValueModel(const RegDocument& document, QObject* parent)
    : QAbstractTableModel(parent),
      document_(document),
      icons_{QIcon(), Icon(u"value-string"_s), Icon(u"value-dword"_s), Icon(u"value-hex"_s)} {}

void RegValueModel::ShowKey(const RegNode* node) {
  beginResetModel();
  records_ = node ? document_.ValuesOfPath(node) : std::vector<std::size_t>();
  endResetModel();
}

void RegValueModel::Append(std::size_t record) {
  const int row = rowCount();
  beginInsertRows({}, row, row);
  records_.push_back(record);
  endInsertRows();
}

void RegValueModel::Refresh(std::size_t record) {
  const auto found = std::find(records_.begin(), records_.end(), record);
  if (found == records_.end()) return;
  const int row = static_cast<int>(found - records_.begin());
  emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
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

QVariant RegValueModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return std::array{tr("Name"), tr("Type"), tr("Data")}.at(static_cast<std::size_t>(section));
}

}  // namespace tme
