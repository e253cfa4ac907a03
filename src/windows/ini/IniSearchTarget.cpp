#include "windows/ini/IniSearchTarget.h"

#include <QTreeView>

#include "shell/DisplayText.h"
#include "windows/ini/IniItemModel.h"
#include "windows/ini/IniReplacer.h"
#include "windows/ini/IniSearch.h"

namespace tme {
namespace {

/// Nodes come from the tree, which may change them.
IniNode* NodeAt(const SearchPlace& place) { return const_cast<IniNode*>(static_cast<const IniNode*>(place.node)); }

}  // namespace

std::vector<SearchTarget::Field> IniSearchTarget::Fields() const {
  return {{SearchField::Section, tr("&Sections")},
          {SearchField::Key, tr("&Keys")},
          {SearchField::Value, tr("&Values")},
          {SearchField::Comment, tr("&Comments")}};
}

std::unique_ptr<SearchSource> IniSearchTarget::MakeSource() const { return std::make_unique<IniSearchSource>(tree_); }

std::unique_ptr<Replacer> IniSearchTarget::MakeReplacer() { return std::make_unique<IniReplacer>(tree_); }

std::string IniSearchTarget::TextOf(const SearchPlace& place, SearchField field) const {
  std::string text;
  ForEachFieldOf(tree_, *NodeAt(place), [&](SearchField present, std::string_view its_text) {
    if (present == field) text = its_text;
  });
  return text;
}

SearchTarget::Row IniSearchTarget::RowOf(const SearchPlace& place) const {
  const IniNode& node = *NodeAt(place);
  Row row;
  ForEachFieldOf(tree_, node, [&](SearchField field, std::string_view text) {
    std::string& part = IsName(field) ? row.name : row.data;
    if (part.empty()) part = text;
  });
  if (node.Parent() != nullptr && node.Parent()->Tag() == IniTag::Section) row.path = node.Parent()->Text();
  return row;
}

std::vector<QAbstractItemView*> IniSearchTarget::Views() const { return {&view_}; }

std::vector<SearchTarget::ShownField> IniSearchTarget::ShownAt(const QModelIndex& index,
                                                               const TextMatcher& /*matcher*/) const {
  const IniNode* node = IniItemModel::NodeOf(index);
  std::vector<ShownField> fields;
  if (!node) return fields;
  const std::string_view line = node->Text();
  ForEachFieldOf(tree_, *node, [&](SearchField field, std::string_view text) {
    // The row of a section shows its name alone.
    if (node->Tag() == IniTag::Section && field != SearchField::Section) return;
    const std::string_view before =
        text.empty() ? text : line.substr(0, static_cast<std::size_t>(text.data() - line.data()));
    fields.push_back(
        {field, std::string(text), QString::fromUtf8(before.data(), static_cast<qsizetype>(before.size())).size()});
  });
  return fields;
}

void IniSearchTarget::GoTo(const SearchPlace& place) { go_to_(NodeAt(place)); }

void IniSearchTarget::FocusSelected() { view_.setFocus(); }

}  // namespace tme
