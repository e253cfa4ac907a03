#pragma once

#include "documents/ini/IniTree.h"
#include "documents/search/TreeSearch.h"

namespace tme {

/// An INI document for a search: sections, keys, values and comments.
class IniSearchSource final : public SearchSource {
 public:
  explicit IniSearchSource(const IniTree& tree) : tree_(tree), next_(tree.Root()) {}

  void Restart(const TextMatcher* /*matcher*/) override { next_ = tree_.Root(); }
  bool Fill(SearchFields fields, SearchBatch& batch) override;
  bool IsBefore(const SearchPlace& one, const SearchPlace& other) const override;

 private:
  const IniTree& tree_;
  const IniNode* next_;
};

/// Calls visit(field, text) for what a node has to be searched. The texts are parts of the node's line.
template <typename Visit>
void ForEachFieldOf(const IniTree& tree, const IniNode& node, Visit visit) {
  switch (node.Tag()) {
    case IniTag::OpenedFile:
      return;
    case IniTag::Section:
      visit(SearchField::Section, node.Text());
      return visit(SearchField::Comment, tree.HeaderCommentOf(node));
    case IniTag::Comments:
      return visit(SearchField::Comment, node.Text());
    case IniTag::Value:
      visit(SearchField::Key, tree.KeyOf(node));
      return visit(SearchField::Value, tree.ValueOf(node));
  }
}

}  // namespace tme
