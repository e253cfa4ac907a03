#include "windows/reg/RegKeyModel.h"

#include <QFont>

#include "shell/DisplayText.h"
#include "shell/Icon.h"

using namespace Qt::StringLiterals;

namespace tme {

RegKeyModel::RegKeyModel(RegDocument& document, QObject* parent)
    : TreeItemModel(document, parent),
      icons_{Icon(u"reg-file"_s), Icon(u"hive"_s), Icon(u"key"_s, {}, u"key-open"_s), Icon(u"key-deletion"_s),
             Icon(u"comment"_s)},
      leaf_icon_(Icon(u"key"_s)) {}

Qt::ItemFlags RegKeyModel::flags(const QModelIndex& index) const {
  const RegNode* node = NodeOf(index);
  if (!node) return Qt::NoItemFlags;
  Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
  if (node->Tag() != RegTag::File) flags |= Qt::ItemIsDragEnabled;
  if (node->Tag() == RegTag::Comment) flags |= Qt::ItemNeverHasChildren;
  if (tree_.HeldAs() == Holding::Whole && node->Tag() != RegTag::File) flags |= Qt::ItemIsEditable;
  return flags;
}

QVariant RegKeyModel::data(const QModelIndex& index, int role) const {
  const RegNode* node = NodeOf(index);
  if (!node) return {};
  const auto tag = static_cast<std::size_t>(node->Tag());
  switch (role) {
    case Qt::DisplayRole:
      return DisplayText(node->Text());
    case Qt::DecorationRole:
      // A view takes what it once expanded for open, with or without keys below it.
      return node->Tag() == RegTag::Branch && node->ChildCount() == 0 ? leaf_icon_ : icons_[tag];
    case Qt::FontRole: {
      if (node->Tag() != RegTag::Deletion) return {};
      QFont font;
      font.setStrikeOut(true);
      return font;
    }
    case Qt::AccessibleTextRole:
      if (node->Tag() != RegTag::Deletion) return {};
      return tr("%1 (deletion)").arg(DisplayText(node->Text()));
    case Qt::AccessibleDescriptionRole:
      return std::array{tr("File"), tr("Hive"), tr("Key"), tr("Deletion of a key"), tr("Comment")}[tag];
    default:
      return {};
  }
}

}  // namespace tme
