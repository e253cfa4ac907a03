#pragma once

#include <QRegularExpression>

#include "documents/search/TextMatcher.h"

namespace tme {

/// A regular expression, by Qt's syntax. A byte that is no UTF-8 is U+FFFD for it. "^" and "$" are the ends of a text.
class PatternMatcher final : public TextMatcher {
 public:
  PatternMatcher(const QString& pattern, SearchCase search_case, SearchWords words);

  bool IsValid() const { return expression_.isValid(); }
  /// Why it is not valid, and behind how many characters.
  QString Error() const { return expression_.errorString(); }
  qsizetype ErrorOffset() const { return expression_.patternErrorOffset() - before_pattern_; }

  void FindAll(std::string_view text, std::vector<TextMatch>& matches) const override;
  /// with: "\1" to "\9" are what the groups matched, "\0" is all of the match, "\\" a backslash.
  std::optional<std::string> Replaced(std::string_view text, std::string_view with,
                                      std::optional<std::size_t> only) const override;

 private:
  QRegularExpression expression_;
  /// What was put before the pattern.
  qsizetype before_pattern_ = 0;
};

}  // namespace tme
