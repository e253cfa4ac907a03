#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/search/TextSearch.h"

namespace tme {

/// A match, and what comes in its place.
struct TextChange {
  TextMatch match;
  std::string with;
};

/// What is sought, looked for in short texts of UTF-8.
class TextMatcher {
 public:
  virtual ~TextMatcher() = default;

  /// Appends the matches in their order. None is empty, and each lies behind the one before. Those that start at
  /// `end` or behind it may be left out; what stands there still counts for the others.
  virtual void FindAll(std::string_view text, std::vector<TextMatch>& matches, std::size_t end = SIZE_MAX) const = 0;
  /// The matches of a text with what each of them becomes, or the one that starts at `only`.
  virtual std::vector<TextChange> ChangesIn(std::string_view text, std::string_view with,
                                            std::optional<std::size_t> only) const = 0;
  /// The text with these changes; null without one.
  std::optional<std::string> Replaced(std::string_view text, std::string_view with,
                                      std::optional<std::size_t> only) const;
  /// Whether many texts with NUL characters between them are searched as one, which is quicker.
  virtual bool TakesManyTexts() const { return false; }
  /// Whether texts were left that took too long.
  virtual bool HasGivenUp() const { return false; }
  /// The text that every match is, but perhaps for letter case; empty where matches may be others.
  virtual std::string_view Wanted() const { return {}; }
  /// How many parts of a path a match takes, or kAllParts where nobody knows; 0 when each lies within one.
  virtual std::size_t PathParts() const { return 0; }
  static constexpr std::size_t kAllParts = SIZE_MAX;
};

/// A text as it stands.
class PlainMatcher final : public TextMatcher {
 public:
  PlainMatcher(std::string_view wanted, SearchCase search_case, SearchWords words);

  void FindAll(std::string_view text, std::vector<TextMatch>& matches, std::size_t end) const override {
    search_.FindAll(text, matches, end);
  }
  std::vector<TextChange> ChangesIn(std::string_view text, std::string_view with,
                                    std::optional<std::size_t> only) const override;
  bool TakesManyTexts() const override { return true; }
  std::string_view Wanted() const override { return wanted_; }
  std::size_t PathParts() const override { return path_parts_; }

 private:
  const std::string wanted_;
  TextSearch search_;
  std::size_t path_parts_ = 0;
};

}  // namespace tme
