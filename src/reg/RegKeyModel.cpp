#include "reg/RegKeyModel.h"

#include "shell/DisplayText.h"

namespace tme {

RegKeyModel::RegKeyModel(RegDocument& document, QObject* parent)
    : TreeItemModel(document, parent),
      file_icon_(QStringLiteral(":/icons/reg-file.svg")),
      hive_icon_(QStringLiteral(":/icons/hive.svg")),
      key_icon_(QStringLiteral(":/icons/key.svg")) {
  key_icon_.addFile(QStringLiteral(":/icons/key-open.svg"), {}, QIcon::Normal, QIcon::On);
}

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
