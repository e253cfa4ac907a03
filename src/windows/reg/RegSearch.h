#pragma once

#include <optional>
#include <string>
#include <vector>

#include "documents/reg/RegData.h"
#include "documents/reg/RegDocument.h"
#include "documents/search/TreeSearch.h"
#include "windows/reg/RegDataFilter.h"

namespace tme {

/// A registry document for a search: names of keys, names and data of values, comments that are shown.
class RegSearchSource final : public SearchSource {
 public:
  explicit RegSearchSource(const RegDocument& document);

  void Restart(const TextMatcher* matcher) override;
  bool Fill(SearchFields fields, SearchBatch& batch) override;
  bool IsBefore(const SearchPlace& one, const SearchPlace& other) const override;

 private:
  void AddNode(SearchFields fields, SearchBatch& batch) const;
  void AddRecord(std::uint32_t record, SearchFields fields, SearchBatch& batch);

  const RegDocument& document_;
  RegCoding coding_;
  /// Where its matches may go over more than one component; else null.
  const TextMatcher* of_paths_ = nullptr;
  /// Of default values, where the list shows one.
  std::string default_name_;
  const RegNode* node_ = nullptr;
  /// Of the node, from next_record_ on not yet searched.
  std::vector<std::uint32_t> records_;
  std::size_t next_record_ = 0;
  std::string decoded_;
  /// Of a whole document's data.
  RegDataFilter filter_;
};

/// The last components of a key's path. The registry takes no more than these.
inline constexpr std::size_t kMostComponents = 512;
std::string PathOf(const RegNode& key, std::size_t components = kMostComponents);
/// The end of a key's path, with its separator, in which a matcher may find what ends in the key.
std::string PathSearched(const RegNode& key, const TextMatcher& matcher);

/// The name of a value as the list shows it.
std::string SearchedName(const RegDocument& document, const RegValueRecord& record);

/// The field of a node's own text; null for the root.
std::optional<SearchField> FieldOfNode(const RegNode& node);

/// The data of a value as a list shows them, but all of them: up to a megabyte. By the rules as in the file, in a whole
/// document decoded; what is not understood as in the file, and nothing for a deletion. buffer: what the result may
/// point into.
std::string_view SearchedData(const RegDocument& document, const RegValueRecord& record, const RegCoding& coding,
                              std::string& buffer);

}  // namespace tme
