#include "windows/reg/RegSearchTarget.h"

#include <QTreeView>

#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegSearch.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/RegValueText.h"

namespace tme {
namespace {

/// Nodes come from the document, which may change them.
RegNode* NodeAt(const SearchPlace& place) { return const_cast<RegNode*>(static_cast<const RegNode*>(place.node)); }

bool IsRecord(const SearchPlace& place) { return place.record != SearchPlace::kNoRecord; }

}  // namespace

std::vector<SearchTarget::Field> RegSearchTarget::Fields() const {
  return {{SearchField::Key, tr("&Keys")},
          {SearchField::Name, tr("&Names")},
          {SearchField::Data, tr("&Data")},
          {SearchField::Comment, tr("&Comments That Are Shown")}};
}

std::unique_ptr<SearchSource> RegSearchTarget::MakeSource() const {
  return std::make_unique<RegSearchSource>(document_);
}

std::unique_ptr<Replacer> RegSearchTarget::MakeReplacer() {
  return std::make_unique<RegReplacer>(document_, window_.characters());
}

std::string RegSearchTarget::DataOf(std::size_t record) const {
  std::string buffer;
  return std::string(SearchedData(document_, document_.Values()[record], CodingOf(document_), buffer));
}

std::string RegSearchTarget::TextOf(const SearchPlace& place, SearchField field) const {
  if (field == SearchField::Path) return PathOf(*NodeAt(place));
  if (!IsRecord(place)) return std::string(NodeAt(place)->Text());
  return field == SearchField::Name ? SearchedName(document_, document_.Values()[place.record]) : DataOf(place.record);
}

SearchTarget::Row RegSearchTarget::RowOf(const SearchPlace& place) const {
  const RegNode& node = *NodeAt(place);
  if (!IsRecord(place)) return {std::string(node.Text()), node.Parent() ? node.Parent()->KeyPath() : std::string(), {}};
  return {NameOfValue(document_.Values()[place.record]).toStdString(), node.KeyPath(), DataOf(place.record)};
}

std::vector<QAbstractItemView*> RegSearchTarget::Views() const { return {&views_.keys, &views_.list}; }

std::vector<SearchTarget::ShownField> RegSearchTarget::ShownAt(const QModelIndex& index,
                                                               const TextMatcher& matcher) const {
  if (!index.isValid()) return {};
  if (index.model() == views_.keys.model()) {
    const RegNode* node = RegKeyModel::NodeOf(index);
    const std::optional<SearchField> field = FieldOfNode(*node);
    if (!field) return {};
    std::vector<ShownField> fields{{*field, std::string(node->Text())}};
    if (*field == SearchField::Key && matcher.PathParts() > 0) {
      const std::string path = PathSearched(*node, matcher);
      const std::size_t separator = path.ends_with('\\') ? 1 : 0;
      fields.push_back({SearchField::Path, path, 0, path.size() - separator - node->Text().size()});
    }
    return fields;
  }
  const std::size_t record = views_.values.RecordOf(index);
  switch (index.column()) {
    case RegValueModel::Name:
      return {{SearchField::Name, SearchedName(document_, document_.Values()[record])}};
    case RegValueModel::Data:
      return {{SearchField::Data, DataOf(record)}};
    default:
      return {};
  }
}

SearchPlace RegSearchTarget::Selected() const {
  const QModelIndex current = views_.list.currentIndex();
  SearchPlace place{document_.Selected()};
  if (current.isValid() && views_.list.selectionModel()->isSelected(current)) {
    const std::size_t record = views_.values.RecordOf(current);
    // Keys of one path show the values of all of them. The list may show what a document that was closed had.
    if (record < document_.Values().size())
      place = {document_.Values()[record].owner, static_cast<std::uint32_t>(record)};
  }
  return place;
}

void RegSearchTarget::GoTo(const SearchPlace& place) { window_.go_to(NodeAt(place), place.record); }

void RegSearchTarget::FocusSelected() {
  QTreeView& view = IsRecord(Selected()) ? views_.list : views_.keys;
  view.setFocus();
}

}  // namespace tme
