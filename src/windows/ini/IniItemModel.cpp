#include "windows/ini/IniItemModel.h"

#include "shell/DisplayText.h"
#include "shell/Icon.h"

using namespace Qt::StringLiterals;

namespace tme {

IniItemModel::IniItemModel(IniTree& tree, QObject* parent)
    : TreeItemModel(tree, parent),
      root_icon_(Icon(u"ini-file"_s)),
      section_icon_(Icon(u"section"_s, u"section-open"_s)),
      entry_icon_(Icon(u"entry"_s)),
      comment_icon_(Icon(u"comment"_s)) {}

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

}  // namespace tme
