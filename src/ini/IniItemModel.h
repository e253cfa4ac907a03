#pragma once

#include <QAbstractItemModel>
#include <QIcon>

#include "ini/IniTree.h"

namespace tme {

/// Shows an IniTree to a tree view: one column, the root as the only top-level row. Holds nothing of its own; it is the
/// tree's observer for as long as it lives, so it must go before the tree does.
class IniItemModel : public QAbstractItemModel, private IniTreeObserver {
  Q_OBJECT

 public:
  explicit IniItemModel(IniTree& tree, QObject* parent = nullptr);
  ~IniItemModel() override;

  QModelIndex IndexOf(const IniNode* node) const;
  /// Null for an index that is not valid.
  static IniNode* NodeOf(const QModelIndex& index);
  /// True while the tree changes: what a view selects by itself meanwhile does not count.
  bool IsChanging() const { return changing_; }

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  bool hasChildren(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 signals:
  /// The tree selected another node because the selected one was removed.
  void SelectionMovedByTree();

 private:
  void BeforeInsert(const IniNode& parent, int row) override;
  void AfterInsert() override;
  void BeforeRemove(const IniNode& node) override;
  void AfterRemove() override;
  void TextChanged(const IniNode& node) override;
  void BeforeReset() override;
  void AfterReset() override;
  void SelectionMoved() override;

  IniTree& tree_;
  bool changing_ = false;
  QIcon root_icon_, section_icon_, entry_icon_, comment_icon_;
};

/// Text as a list or a message can show it: at most so many characters, control characters as their symbols (U+2400 and
/// on).
QString DisplayText(std::string_view text, qsizetype max_characters = 1000);

}  // namespace tme
