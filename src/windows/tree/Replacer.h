#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>

#include "documents/search/TreeSearch.h"

namespace tme {

/// What replacing makes of one text of a document.
struct Replacement {
  SearchPlace place;
  SearchField field;
  /// The text, as the search has it.
  std::string after;
  /// What the document gets.
  std::string stored;
  /// Why the document cannot have it, for people; empty where it can.
  QString refusal;
};

/// How matches are found and what comes in their place.
struct ReplaceQuery {
  const TextMatcher& matcher;
  std::string_view with;
  /// The start of the one match that is meant; all of the text's without.
  std::optional<std::size_t> only{};
};

/// Plans replacements in a document, and then does them. What is planned or checked counts with what was so before: two
/// that would collide are not both allowed.
class Replacer {
 public:
  virtual ~Replacer() = default;

  /// Null where the text stays as it is.
  virtual std::optional<Replacement> Plan(const SearchPlace& place, SearchField field, const ReplaceQuery& query) = 0;
  /// Why the document cannot have one that was planned by another replacer; empty where it can.
  virtual QString Check(const Replacement& replacement) = 0;
  /// Does one without a refusal. Returns false, with nothing changed, when the document does not take it.
  virtual bool Apply(const Replacement& replacement) = 0;
};

}  // namespace tme
