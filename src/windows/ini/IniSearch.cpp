#include "windows/ini/IniSearch.h"

#include "documents/search/TreeOrder.h"

namespace tme {
namespace {

const IniNode* NodeOfPlace(const SearchPlace& place) { return static_cast<const IniNode*>(place.node); }

}  // namespace

bool IniSearchSource::Fill(SearchFields fields, SearchBatch& batch) {
  for (; next_ != nullptr && !batch.IsFull(); next_ = NextInTree(next_)) {
    ForEachFieldOf(tree_, *next_, [&](SearchField field, std::string_view text) {
      if (fields & FieldBit(field)) batch.Add({next_}, field, text);
    });
  }
  return next_ != nullptr;
}

bool IniSearchSource::IsBefore(const SearchPlace& one, const SearchPlace& other) const {
  return IsBeforeInTree(NodeOfPlace(one), NodeOfPlace(other));
}

}  // namespace tme
