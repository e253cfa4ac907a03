#include "ini/IniItemModel.h"

#include "shell/DisplayText.h"

namespace tme {

IniItemModel::IniItemModel(IniTree& tree, QObject* parent)
    : TreeItemModel(tree, parent),
      root_icon_(QStringLiteral(":/icons/ini-file.svg")),
      section_icon_(QStringLiteral(":/icons/section.svg")),
      entry_icon_(QStringLiteral(":/icons/entry.svg")),
      comment_icon_(QStringLiteral(":/icons/comment.svg")) {
  section_icon_.addFile(QStringLiteral(":/icons/section-open.svg"), {}, QIcon::Selected);
}

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
