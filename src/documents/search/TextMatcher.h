#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/search/TextSearch.h"

namespace tme {

/// What is sought, looked for in short texts of UTF-8.
class TextMatcher {
 public:
  virtual ~TextMatcher() = default;

  /// Appends the matches in their order. None is empty, and each lies behind the one before.
  virtual void FindAll(std::string_view text, std::vector<TextMatch>& matches) const = 0;
  /// The text with another one in the place of its matches, or of the one that starts at `only`; null where nothing is
  /// replaced.
  virtual std::optional<std::string> Replaced(std::string_view text, std::string_view with,
                                              std::optional<std::size_t> only) const = 0;
  /// Whether many texts with NUL characters between them are searched as one, which is quicker.
  virtual bool TakesManyTexts() const { return false; }
};

/// A text as it stands.
class PlainMatcher final : public TextMatcher {
 public:
  PlainMatcher(std::string_view wanted, SearchCase search_case, SearchWords words)
      : search_(wanted, search_case, words) {}

  void FindAll(std::string_view text, std::vector<TextMatch>& matches) const override {
    search_.FindAll(text, matches);
  }
  std::optional<std::string> Replaced(std::string_view text, std::string_view with,
                                      std::optional<std::size_t> only) const override;
  bool TakesManyTexts() const override { return true; }

 private:
  TextSearch search_;
};

}  // namespace tme
