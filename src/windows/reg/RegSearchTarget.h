#pragma once

#include <QCoreApplication>
#include <functional>

#include "documents/reg/RegDocument.h"
#include "windows/reg/RegReplacer.h"
#include "windows/tree/SearchTarget.h"

class QTreeView;

namespace tme {

class RegValueModel;

/// A registry window as searches see it.
class RegSearchTarget final : public SearchTarget {
  Q_DECLARE_TR_FUNCTIONS(RegSearchTarget)

 public:
  /// What the window shows its document in; they outlive it.
  struct ShownIn {
    QTreeView& keys;
    QTreeView& list;
    RegValueModel& values;
  };

  struct Window {
    /// Selects a key, and in it a record unless that is SearchPlace::kNoRecord.
    std::function<void(RegNode*, std::uint32_t)> go_to;
    std::function<RegCharacters()> characters;
  };

  RegSearchTarget(RegDocument& document, const ShownIn& views, Window window)
      : document_(document), views_(views), window_(std::move(window)) {}

  std::vector<Field> Fields() const override;
  std::unique_ptr<SearchSource> MakeSource() const override;
  std::unique_ptr<Replacer> MakeReplacer() override;
  EditableDocument& Edited() override { return document_; }
  std::string TextOf(const SearchPlace& place, SearchField field) const override;
  Row RowOf(const SearchPlace& place) const override;
  std::vector<QAbstractItemView*> Views() const override;
  std::vector<ShownField> ShownAt(const QModelIndex& index, const TextMatcher& matcher) const override;
  SearchPlace Selected() const override;
  void GoTo(const SearchPlace& place) override;
  void FocusSelected() override;

 private:
  std::string DataOf(std::size_t record) const;

  RegDocument& document_;
  ShownIn views_;
  const Window window_;
};

}  // namespace tme
