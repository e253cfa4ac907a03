#include "windows/tree/PatternMatcher.h"

#include <QElapsedTimer>
#include <QString>
#include <algorithm>
#include <optional>
#include <vector>

#include "base/Utf16.h"
#include "base/Utf8.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Before each expression. At one place of a text the library gives up after about a millisecond.
constexpr QLatin1StringView kLimits("(*LIMIT_MATCH=100000)(*NOTEMPTY)");
/// What is matched at once, in units. What goes on behind it is looked at for each place by itself, with an effort in
/// units that is bounded: some milliseconds for a text, and some nanoseconds for each of its units.
constexpr qsizetype kWindow = 256;
constexpr qsizetype kWider = 4;
constexpr qsizetype kLeastEffort = qsizetype{1} << 20;
constexpr qsizetype kEffortOfUnit = 4;
/// Places that all come near the limit of the library end the search of a text, too.
constexpr qint64 kMostTime = 40;           // milliseconds
constexpr qsizetype kUnitsOfTime = 16384;  // which may take one more

/// A text as the expression takes it, with the way back to its bytes.
class Subject {
 public:
  explicit Subject(std::string_view bytes) {
    if (utf8::AsciiRun(bytes) == bytes.size()) {
      text_ = QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
      return;
    }
    const std::size_t size = bytes.size();
    text_.reserve(static_cast<qsizetype>(size));
    while (!bytes.empty()) {
      const std::size_t at = size - bytes.size();
      const std::optional<char32_t> character = utf8::TakeCharacter(bytes);
      if (!character) bytes.remove_prefix(1);
      utf16::PutUnits(character.value_or(QChar::ReplacementCharacter), [&](char32_t unit) {
        text_ += QChar(static_cast<char16_t>(unit));
        offsets_.push_back(at);
      });
    }
    offsets_.push_back(size);
  }

  const QString& Text() const { return text_; }
  /// Units to bytes.
  std::size_t ByteAt(qsizetype unit) const {
    const auto index = static_cast<std::size_t>(unit);
    return offsets_.empty() ? index : offsets_[index];
  }

 private:
  QString text_;
  /// By unit; empty for ASCII.
  std::vector<std::size_t> offsets_;
};

/// The matches of a text one after another, none of them empty, at a cost that is linear in it.
class Matches {
 public:
  Matches(const QRegularExpression& expression, const QString& text)
      : expression_(expression),
        text_(text),
        effort_(kLeastEffort + kEffortOfUnit * text.size()),
        most_time_(kMostTime + text.size() / kUnitsOfTime) {
    time_.start();
  }

  /// Null behind the last one, or where the rest is given up.
  std::optional<QRegularExpressionMatch> Next();
  bool HasGivenUp() const { return has_given_up_; }

 private:
  using Expression = QRegularExpression;

  /// Matches in the text up to `end`: only in part where a match could be another one with more of it.
  QRegularExpressionMatch MatchUpTo(qsizetype end, Expression::MatchOptions options) const {
    const bool is_all = end == text_.size();
    return expression_.match(QString::fromRawData(text_.constData(), end), from_,
                             is_all ? Expression::NormalMatch : Expression::PartialPreferFirstMatch, options);
  }
  qsizetype EndBehind(qsizetype units) const {
    const qsizetype end = std::min(text_.size(), from_ + units);
    return end < text_.size() && text_[end].isLowSurrogate() ? end + 1 : end;
  }
  /// One that begins where the search is, at any size.
  std::optional<QRegularExpressionMatch> MatchHere();
  QRegularExpressionMatch Taken(const QRegularExpressionMatch& match) {
    from_ = std::max(match.capturedEnd(), from_ + 1);
    return match;
  }

  const Expression& expression_;
  const QString& text_;
  qsizetype from_ = 0;
  qsizetype effort_;
  const qint64 most_time_;
  QElapsedTimer time_;
  bool has_given_up_ = false;
};

std::optional<QRegularExpressionMatch> Matches::Next() {
  while (from_ < text_.size() && !has_given_up_) {
    const qsizetype end = EndBehind(kWindow);
    const QRegularExpressionMatch match = MatchUpTo(end, Expression::NoMatchOption);
    has_given_up_ = !match.isValid() || (end < text_.size() && time_.elapsed() > most_time_);
    if (has_given_up_) break;
    if (match.hasMatch()) return Taken(match);
    if (!match.hasPartialMatch()) {
      from_ = end;
    } else if (match.capturedStart() > from_) {
      from_ = match.capturedStart();
    } else if (auto here = MatchHere()) {
      return here;
    }
  }
  return std::nullopt;
}

std::optional<QRegularExpressionMatch> Matches::MatchHere() {
  for (qsizetype units = kWindow * kWider; effort_ > 0; units *= kWider) {
    const qsizetype end = EndBehind(units);
    const QRegularExpressionMatch match = MatchUpTo(end, Expression::AnchorAtOffsetMatchOption);
    effort_ -= end - from_;
    if (!match.isValid()) break;
    if (match.hasMatch()) {
      effort_ += std::min(end - from_, kWider * match.capturedLength());
      return Taken(match);
    }
    if (match.hasPartialMatch()) continue;
    from_ = EndBehind(1);
    return std::nullopt;
  }
  has_given_up_ = true;
  return std::nullopt;
}

/// Calls visit(match, its bytes) until that returns false. Returns false when the rest was given up.
template <class Visit>
bool ForEachMatch(const QRegularExpression& expression, const Subject& subject, Visit visit) {
  Matches matches(expression, subject.Text());
  while (const auto match = matches.Next())
    if (!visit(*match, TextMatch{subject.ByteAt(match->capturedStart()), subject.ByteAt(match->capturedEnd())}))
      return true;
  return !matches.HasGivenUp();
}

/// The bytes of a group, which the subject may not have.
std::string_view Captured(std::string_view bytes, const Subject& subject, const QRegularExpressionMatch& match,
                          int group) {
  if (match.capturedStart(group) < 0) return {};
  const std::size_t start = subject.ByteAt(match.capturedStart(group));
  return bytes.substr(start, subject.ByteAt(match.capturedEnd(group)) - start);
}

std::string Expanded(std::string_view with, std::string_view bytes, const Subject& subject,
                     const QRegularExpressionMatch& match) {
  std::string expanded;
  for (std::size_t at = 0; at < with.size(); ++at) {
    const char next = with[at] == '\\' && at + 1 < with.size() ? with[at + 1] : '\0';
    if (next >= '0' && next <= '9')
      expanded += Captured(bytes, subject, match, next - '0');
    else
      expanded += with[at];
    if (next == '\\' || (next >= '0' && next <= '9')) ++at;
  }
  return expanded;
}

}  // namespace

PatternMatcher::PatternMatcher(const QString& pattern, SearchCase search_case, SearchWords words) {
  QRegularExpression::PatternOptions options = QRegularExpression::UseUnicodePropertiesOption;
  if (search_case == SearchCase::Ignore) options |= QRegularExpression::CaseInsensitiveOption;
  // By itself: what is put around it could close what it leaves open.
  expression_ = QRegularExpression(pattern, options);
  if (expression_.isValid()) {
    if (pattern.contains(u"\\\\"_s)) path_parts_ = kAllParts;
    const bool is_word = words == SearchWords::Whole;
    expression_.setPattern(kLimits + (is_word ? u"\\b(?:"_s + pattern + u")\\b"_s : pattern));
  }
  if (!expression_.isValid()) {
    error_ = expression_.errorString();
    error_offset_ = std::min(expression_.patternErrorOffset(), pattern.size());
    return;
  }
  expression_.optimize();
}

void PatternMatcher::FindAll(std::string_view text, std::vector<TextMatch>& matches, std::size_t end) const {
  const bool is_whole =
      ForEachMatch(expression_, Subject(text), [&](const QRegularExpressionMatch&, const TextMatch& match) {
        if (match.start >= end) return false;
        matches.push_back(match);
        return true;
      });
  if (!is_whole) has_given_up_ = true;
}

std::vector<TextChange> PatternMatcher::ChangesIn(std::string_view text, std::string_view with,
                                                  std::optional<std::size_t> only) const {
  const Subject subject(text);
  std::vector<TextChange> changes;
  const bool is_whole =
      ForEachMatch(expression_, subject, [&](const QRegularExpressionMatch& found, const TextMatch& match) {
        if (!only || match.start == *only) changes.push_back({match, Expanded(with, text, subject, found)});
        return !only || match.start < *only;
      });
  if (!is_whole) has_given_up_ = true;
  return changes;
}

}  // namespace tme
