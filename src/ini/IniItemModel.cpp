#include "ini/IniItemModel.h"

namespace tme {
QString DisplayText(std::string_view text, qsizetype max_characters) {
  // Up to four bytes make a character: no more than these can be shown.
  const auto size = std::min(static_cast<qsizetype>(text.size()), 4 * max_characters);
  QString shown = QString::fromUtf8(text.data(), size);
  if (shown.size() > max_characters || size < static_cast<qsizetype>(text.size())) {
    shown.truncate(max_characters);
    shown += QChar(0x2026);
  }
  for (QChar& character : shown)
    if (character < u' ' && character != u'\t') character = QChar(0x2400 + character.unicode());
  return shown;
}

IniItemModel::IniItemModel(IniTree& tree, QObject* parent)
    : QAbstractItemModel(parent),
      tree_(tree),
      root_icon_(QStringLiteral(":/icons/ini-file.svg")),
      section_icon_(QStringLiteral(":/icons/section.svg")),
      entry_icon_(QStringLiteral(":/icons/entry.svg")),
      comment_icon_(QStringLiteral(":/icons/comment.svg")) {
  section_icon_.addFile(QStringLiteral(":/icons/section-open.svg"), {}, QIcon::Selected);
  tree_.SetObserver(this);
}

IniItemModel::~IniItemModel() { tree_.SetObserver(nullptr); }

QModelIndex IniItemModel::IndexOf(const IniNode* node) const {
  return node ? createIndex(node->Row(), 0, node) : QModelIndex();
}

IniNode* IniItemModel::NodeOf(const QModelIndex& index) { return static_cast<IniNode*>(index.internalPointer()); }

QModelIndex IniItemModel::index(int row, int column, const QModelIndex& parent) const {
  if (column != 0 || row < 0) return {};
  const IniNode* above = NodeOf(parent);
  if (!above) return row == 0 ? IndexOf(tree_.Root()) : QModelIndex();
  return row < above->ChildCount() ? createIndex(row, 0, above->Child(row)) : QModelIndex();
}

QModelIndex IniItemModel::parent(const QModelIndex& child) const {
  const IniNode* node = NodeOf(child);
  return node ? IndexOf(node->Parent()) : QModelIndex();
}

int IniItemModel::rowCount(const QModelIndex& parent) const {
  const IniNode* node = NodeOf(parent);
  return node ? node->ChildCount() : 1;
}

int IniItemModel::columnCount(const QModelIndex&) const { return 1; }

bool IniItemModel::hasChildren(const QModelIndex& parent) const { return rowCount(parent) > 0; }

QVariant IniItemModel::data(const QModelIndex& index, int role) const {
  const IniNode* node = NodeOf(index);
  if (!node) return {};
  switch (role) {
    case Qt::DisplayRole:
      return DisplayText(node->Text());
    case Qt::DecorationRole:
      switch (node->Tag()) {
        case IniTag::OpenedFile:
          return root_icon_;
        case IniTag::Section:
          return section_icon_;
        case IniTag::Value:
          return entry_icon_;
        case IniTag::Comments:
          return comment_icon_;
      }
      return {};
    case Qt::AccessibleDescriptionRole:
      switch (node->Tag()) {
        case IniTag::OpenedFile:
          return tr("File");
        case IniTag::Section:
          return tr("Section");
        case IniTag::Value:
          return tr("Entry");
        case IniTag::Comments:
          return tr("Comment");
      }
      return {};
    default:
      return {};
  }
}

void IniItemModel::BeforeInsert(const IniNode& parent, int row) {
  changing_ = true;
  beginInsertRows(IndexOf(&parent), row, row);
}

void IniItemModel::AfterInsert() {
  endInsertRows();
  changing_ = false;
}

void IniItemModel::BeforeRemove(const IniNode& node) {
  changing_ = true;
  beginRemoveRows(IndexOf(node.Parent()), node.Row(), node.Row());
}

void IniItemModel::AfterRemove() {
  endRemoveRows();
  changing_ = false;
}

void IniItemModel::TextChanged(const IniNode& node) {
  const QModelIndex index = IndexOf(&node);
  emit dataChanged(index, index);
}

void IniItemModel::BeforeReset() {
  changing_ = true;
  beginResetModel();
}

void IniItemModel::AfterReset() {
  endResetModel();
  changing_ = false;
}

void IniItemModel::SelectionMoved() { emit SelectionMovedByTree(); }

}  // namespace tme
