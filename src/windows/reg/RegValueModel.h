#pragma once

#include <QAbstractTableModel>
#include <QCache>
#include <QIcon>
#include <array>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "windows/reg/RegValueText.h"

namespace tme {

/// The values of one key, a row a record: name, type, data. They stand in table order, or by a column where the view
/// sorts. Each row knows the index of its record.
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
  /// A record that now belongs to the key that is shown; it comes last until the list is sorted or filled again.
  void Append(std::size_t record);
  void Refresh(std::size_t record);
  /// Takes the row away; the record stays in the table.
  void TakeRow(int row);
  /// The same for many at once; records: all shown.
  void TakeRecords(std::vector<std::size_t> records);
  /// -1 when it is not shown.
  int RowOf(std::size_t record) const;
  std::size_t RecordOf(const QModelIndex& index) const { return records_[PlaceOf(index.row())]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  /// column: -1 for the order of the file, by the rules that of the table. For display alone; the document stays as it
  /// is.
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

 private:
  /// Of a row in records_.
  std::size_t PlaceOf(int row) const {
    return order_.empty() ? static_cast<std::size_t>(row) : order_[static_cast<std::size_t>(row)];
  }
  int RowOfPlace(std::size_t place) const { return static_cast<int>(order_.empty() ? place : row_of_place_[place]); }
  void MakeOrder();
  /// FollowKey where rows stand in another order than the table's: all of them are new.
  int FollowSorted(const RegNode* node, const std::vector<std::size_t>& records);
  /// In a whole document.
  QVariant DecodedData(std::size_t record, int column, int role) const;

  const RegDocument& document_;
  std::vector<std::size_t> records_;  ///< rise
  /// By row the place in records_, and the other way round; empty in table order.
  std::vector<std::uint32_t> order_;
  std::vector<std::uint32_t> row_of_place_;
  int sorted_column_ = -1;
  Qt::SortOrder sort_order_ = Qt::AscendingOrder;
  const std::array<QIcon, kRegTypes.size()> icons_;  ///< by RegType
  const QIcon deletion_icon_;
  /// What is in sight of a whole document, by record.
  mutable QCache<std::size_t, RegValueText> texts_{1000};
};

}  // namespace tme
