#include "windows/reg/RegValueModel.h"

#include <QFont>
#include <algorithm>

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
  const auto found = std::find(records_.begin(), records_.end(), record);
  return found == records_.end() ? -1 : static_cast<int>(found - records_.begin());
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
