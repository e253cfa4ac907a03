#pragma once

#include <QIcon>

#include "documents/ini/IniTree.h"
#include "windows/tree/TreeItemModel.h"

namespace tme {

/// Shows an IniTree: texts, and an icon by the kind of the node.
class IniItemModel : public TreeItemModel<IniTree, IniNode> {
 public:
  explicit IniItemModel(IniTree& tree, QObject* parent = nullptr);

  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  struct Kind {
    QIcon icon;
    QString name;
  };
  const std::array<Kind, 4> kinds_;  ///< by IniTag
};

}  // namespace tme
