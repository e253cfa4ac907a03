#pragma once

#include <QIcon>
#include <array>

#include "documents/reg/RegDocument.h"
#include "windows/tree/TreeItemModel.h"

namespace tme {

/// Shows the keys of a RegDocument, and passes on what happens to its values.
class RegKeyModel : public TreeItemModel<RegDocument, RegNode, RegDocumentObserver> {
  Q_OBJECT

 public:
  explicit RegKeyModel(RegDocument& document, QObject* parent = nullptr);

  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 signals:
  void ValueAddedToTable(std::size_t record);
  void ValueChangedInTable(std::size_t record);
  void ValuesResetInTable();

 private:
  void ValueAdded(std::size_t record) override { emit ValueAddedToTable(record); }
  void ValueChanged(std::size_t record) override { emit ValueChangedInTable(record); }
  void ValuesReset() override { emit ValuesResetInTable(); }

  /// By RegTag.
  const std::array<QIcon, 5> icons_;
  /// Of a key with none below it.
  const QIcon leaf_icon_;
};

}  // namespace tme
