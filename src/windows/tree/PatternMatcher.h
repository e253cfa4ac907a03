#pragma once

#include <QRegularExpression>

#include "documents/search/TextMatcher.h"

namespace tme {

/// A regular expression, by Qt's syntax. A byte that is no UTF-8 is U+FFFD for it. "^" and "$" are the ends of a text.
/// What costs too many steps is given up: a text has then the matches that were found before. Of a long text that is
/// what takes time that grows faster than the text does.
class PatternMatcher final : public TextMatcher {
 public:
  PatternMatcher(const QString& pattern, SearchCase search_case, SearchWords words);

  bool IsValid() const { return error_.isEmpty(); }
  /// Why it is not valid, and behind how many characters of the pattern; empty when it is.
  QString Error() const { return error_; }
  qsizetype ErrorOffset() const { return error_offset_; }

  void FindAll(std::string_view text, std::vector<TextMatch>& matches, std::size_t end = SIZE_MAX) const override;
  /// with: "\1" to "\9" are what the groups matched, "\0" is all of the match, "\\" a backslash.
  std::vector<TextChange> ChangesIn(std::string_view text, std::string_view with,
                                    std::optional<std::size_t> only) const override;
  bool HasGivenUp() const override { return has_given_up_; }
  std::size_t PathParts() const override { return path_parts_; }

 private:
  QRegularExpression expression_;
  QString error_;
  qsizetype error_offset_ = 0;
  /// An expression with a backslash of its own may go over any number of components.
  std::size_t path_parts_ = 0;
  mutable bool has_given_up_ = false;
};

}  // namespace tme
