#include "windows/reg/RegSearch.h"

#include <algorithm>

#include "documents/search/PathText.h"
#include "documents/search/TreeOrder.h"
#include "windows/reg/RegValueText.h"

namespace tme {
namespace {

constexpr std::size_t kMostSearched = std::size_t{1} << 20;  // bytes

const RegNode* NodeOfPlace(const SearchPlace& place) { return static_cast<const RegNode*>(place.node); }

bool IsDecoded(const RegDocument& document, const RegCoding& coding) {
  return document.HeldAs() == Holding::Whole && coding.version != RegVersion::Regedit;
}

/// Most values, which need no decoding.
bool IsPlainText(std::string_view assignment) {
  return assignment.size() >= 2 && assignment.front() == '"' && assignment.back() == '"' &&
         assignment.find('\\') == std::string_view::npos;
}

}  // namespace

std::string PathOf(const RegNode& key, std::size_t components) {
  const auto for_each = [&](auto visit) {
    std::size_t left = components;
    for (const RegNode* node = &key; node->Parent() != nullptr && left > 0; node = node->Parent(), --left) visit(*node);
  };
  std::size_t size = 0;
  for_each([&](const RegNode& node) { size += node.Text().size() + 1; });
  if (size == 0) return {};
  std::string path(size - 1, kPathSeparator);
  std::size_t at = size;
  for_each([&](const RegNode& node) {
    at -= node.Text().size() + 1;
    node.Text().copy(path.data() + at, node.Text().size());
  });
  return path;
}

std::string PathSearched(const RegNode& key, const TextMatcher& matcher) {
  const std::size_t parts = matcher.PathParts();
  // An expression may ask for the end.
  return parts == TextMatcher::kAllParts ? PathOf(key) : PathOf(key, std::min(parts, kMostComponents)) + kPathSeparator;
}

std::string SearchedName(const RegDocument& document, const RegValueRecord& record) {
  return std::string(document.HeldAs() == Holding::Whole && record.name.empty() ? NameOfValue(record).toStdString()
                                                                                : record.name);
}

std::optional<SearchField> FieldOfNode(const RegNode& node) {
  if (node.Tag() == RegTag::File) return std::nullopt;
  return node.Tag() == RegTag::Comment ? SearchField::Comment : SearchField::Key;
}

std::string_view SearchedData(const RegDocument& document, const RegValueRecord& record, const RegCoding& coding,
                              std::string& buffer) {
  const std::string_view data = record.data;
  if (!IsDecoded(document, coding)) return data;
  if (data == "-") return {};
  if (IsPlainText(data)) return data.substr(1, data.size() - 2);
  const std::optional<RegData> decoded = DecodeAssignment(data, coding);
  if (!decoded) return data;
  buffer = DisplayOf(*decoded, kMostSearched);
  return buffer;
}

RegSearchSource::RegSearchSource(const RegDocument& document) : document_(document), coding_(CodingOf(document)) {
  Restart(nullptr);
}

void RegSearchSource::Restart(const TextMatcher* matcher) {
  coding_ = CodingOf(document_);
  of_paths_ = matcher != nullptr && matcher->PathParts() > 0 ? matcher : nullptr;
  filter_ = RegDataFilter(IsDecoded(document_, coding_) ? matcher : nullptr);
  default_name_ = SearchedName(document_, {});
  node_ = nullptr;
  records_.clear();
  next_record_ = 0;
}

bool RegSearchSource::Fill(SearchFields fields, SearchBatch& batch) {
  while (!batch.IsFull()) {
    if (next_record_ < records_.size()) {
      AddRecord(records_[next_record_++], fields, batch);
      continue;
    }
    node_ = node_ == nullptr ? document_.Root() : NextInTree(node_);
    if (node_ == nullptr) return false;
    AddNode(fields, batch);
    records_.clear();
    next_record_ = 0;
    const RegValueRecord* first = document_.Values().data();
    document_.ForEachValueOf(node_, [&](const RegValueRecord& record) {
      if (!record.deleted) records_.push_back(static_cast<std::uint32_t>(&record - first));
    });
  }
  return true;
}

void RegSearchSource::AddNode(SearchFields fields, SearchBatch& batch) const {
  const std::optional<SearchField> field = FieldOfNode(*node_);
  if (!field || (fields & FieldBit(*field)) == 0) return;
  batch.Add({node_}, *field, node_->Text());
  if (of_paths_ == nullptr || *field != SearchField::Key) return;
  const std::string path = PathSearched(*node_, *of_paths_);
  const std::size_t separator = path.ends_with(kPathSeparator) ? 1 : 0;
  batch.Add({node_}, SearchField::Path, path, PathOf(*node_).size() + separator - path.size());
}

void RegSearchSource::AddRecord(std::uint32_t record, SearchFields fields, SearchBatch& batch) {
  const RegValueRecord& value = document_.Values()[record];
  const SearchPlace place{node_, record};
  if (fields & FieldBit(SearchField::Name))
    batch.Add(place, SearchField::Name, value.name.empty() ? default_name_ : value.name);
  if ((fields & FieldBit(SearchField::Data)) == 0) return;
  if (!filter_.MayHold(value.data))
    batch.PassOver();
  else
    batch.Add(place, SearchField::Data, SearchedData(document_, value, coding_, decoded_));
}

bool RegSearchSource::IsBefore(const SearchPlace& one, const SearchPlace& other) const {
  if (one.node != other.node) return IsBeforeInTree(NodeOfPlace(one), NodeOfPlace(other));
  // A key stands before its values.
  return one.record + 1 < other.record + 1;
}

}  // namespace tme
