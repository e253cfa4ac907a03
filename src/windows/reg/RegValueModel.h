#pragma once

#include <QAbstractTableModel>
#include <QCache>
#include <QIcon>
#include <array>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "windows/reg/RegValueText.h"

namespace tme {

/// The values of one key, a row a record in table order: name, type, data. Each row knows the index of its record.
class RegValueModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { Name, Type, Data, ColumnCount };

  explicit RegValueModel(const RegDocument& document, QObject* parent = nullptr);

  /// Fills the list anew; null empties it.
  void ShowKey(const RegNode* node);
  /// Fills it anew for the same key. Rows that stay are not told to have gone. Returns the first row that came; -1
  /// without any.
  int FollowKey(const RegNode* node);
  /// A record that now belongs to the key that is shown.
  void Append(std::size_t record);
  void Refresh(std::size_t record);
  /// Takes the row away; the record stays in the table.
  void TakeRow(int row);
  /// -1 when it is not shown.
  int RowOf(std::size_t record) const;
  std::size_t RecordOf(const QModelIndex& index) const { return records_[static_cast<std::size_t>(index.row())]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  /// In a whole document.
  QVariant DecodedData(std::size_t record, int column, int role) const;

  const RegDocument& document_;
  /// They rise.
  std::vector<std::size_t> records_;
  const std::array<QIcon, kRegTypes.size()> icons_;  ///< by RegType
  const QIcon deletion_icon_;
  /// What is in sight of a whole document, by record.
  mutable QCache<std::size_t, RegValueText> texts_{1000};
};

}  // namespace tme
