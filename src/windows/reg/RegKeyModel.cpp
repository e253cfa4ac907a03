#include "windows/reg/RegKeyModel.h"

#include "shell/DisplayText.h"
#include "shell/Icon.h"

using namespace Qt::StringLiterals;

namespace tme {

RegKeyModel::RegKeyModel(RegDocument& document, QObject* parent)
    : TreeItemModel(document, parent),
      file_icon_(Icon(u"reg-file"_s)),
      hive_icon_(Icon(u"hive"_s)),
      key_icon_(Icon(u"key"_s, {}, u"key-open"_s)) {}

QVariant RegKeyModel::data(const QModelIndex& index, int role) const {
  const RegNode* node = NodeOf(index);
  if (!node) return {};
  const RegTag tag = node->Tag();
  switch (role) {
    case Qt::DisplayRole:
      return DisplayText(node->Text());
    case Qt::DecorationRole:
      return tag == RegTag::File ? file_icon_ : tag == RegTag::Hive ? hive_icon_ : key_icon_;
    case Qt::AccessibleDescriptionRole:
      return tag == RegTag::File ? tr("File") : tag == RegTag::Hive ? tr("Hive") : tr("Key");
    default:
      return {};
  }
}

}  // namespace tme
