#pragma once

#include <QCoreApplication>
#include <functional>

#include "documents/ini/IniTree.h"
#include "windows/tree/SearchTarget.h"

class QTreeView;

namespace tme {

/// An INI window as searches see it.
class IniSearchTarget final : public SearchTarget {
  Q_DECLARE_TR_FUNCTIONS(IniSearchTarget)

 public:
  /// tree, view: of the window; they outlive it. go_to: selects a node and shows it.
  IniSearchTarget(IniTree& tree, QTreeView& view, std::function<void(IniNode*)> go_to)
      : tree_(tree), view_(view), go_to_(std::move(go_to)) {}

  std::vector<Field> Fields() const override;
  std::unique_ptr<SearchSource> MakeSource() const override;
  std::unique_ptr<Replacer> MakeReplacer() override;
  EditableDocument& Edited() override { return tree_; }
  std::string TextOf(const SearchPlace& place, SearchField field) const override;
  Row RowOf(const SearchPlace& place) const override;
  std::vector<QAbstractItemView*> Views() const override;
  std::vector<ShownField> ShownAt(const QModelIndex& index, const TextMatcher& matcher) const override;
  SearchPlace Selected() const override { return {tree_.Selected()}; }
  void GoTo(const SearchPlace& place) override;
  void FocusSelected() override;

 private:
  IniTree& tree_;
  QTreeView& view_;
  std::function<void(IniNode*)> go_to_;
};

}  // namespace tme
