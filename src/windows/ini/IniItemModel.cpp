#include "windows/ini/IniItemModel.h"

#include "shell/DisplayText.h"
#include "shell/Icon.h"

using namespace Qt::StringLiterals;

namespace tme {

IniItemModel::IniItemModel(IniTree& tree, QObject* parent)
    : TreeItemModel(tree, parent),
      kinds_{{{Icon(u"ini-file"_s), tr("File")},
              {Icon(u"section"_s, u"section-open"_s), tr("Section")},
              {Icon(u"entry"_s), tr("Entry")},
              {Icon(u"comment"_s), tr("Comment")}}} {}

Qt::ItemFlags IniItemModel::flags(const QModelIndex& index) const {
  const IniNode* node = NodeOf(index);
  if (!node) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
  if (tree_.Holding() == Holding::Whole && node->Tag() != IniTag::OpenedFile) flags |= Qt::ItemIsEditable;
  if (node->Tag() != IniTag::OpenedFile) flags |= Qt::ItemIsDragEnabled;
  // A view that expands all remembers every node that might have children, and goes through them with each edit.
  return node->Tag() == IniTag::Value || node->Tag() == IniTag::Comments ? flags | Qt::ItemNeverHasChildren : flags;
}

QVariant IniItemModel::data(const QModelIndex& index, int role) const {
  const IniNode* node = NodeOf(index);
  if (!node) return {};
  const Kind& kind = kinds_[static_cast<std::size_t>(node->Tag())];
  switch (role) {
    case Qt::DisplayRole:
      return DisplayText(node->Text());
    case Qt::DecorationRole:
      return kind.icon;
    case Qt::AccessibleDescriptionRole:
      return kind.name;
    default:
      return {};
  }
}

}  // namespace tme
