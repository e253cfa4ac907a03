#include "windows/tree/PatternMatcher.h"

#include <QString>
#include <algorithm>
#include <vector>

#include "base/Utf16.h"
#include "base/Utf8.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// About a millisecond each, after which the library gives up.
constexpr QLatin1StringView kStepLimit("(*LIMIT_MATCH=100000)");

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

/// Calls visit(match, its bytes) until that returns false. Returns false when the rest was given up.
template <class Visit>
bool ForEachMatch(const QRegularExpression& expression, const Subject& subject, Visit visit) {
  QRegularExpressionMatchIterator found = expression.globalMatch(subject.Text());
  while (found.hasNext()) {
    const QRegularExpressionMatch match = found.next();
    if (match.capturedLength() > 0 &&
        !visit(match, TextMatch{subject.ByteAt(match.capturedStart()), subject.ByteAt(match.capturedEnd())}))
      return true;
  }
  return found.isValid();
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
    const bool is_word = words == SearchWords::Whole;
    expression_.setPattern(kStepLimit + (is_word ? u"\\b(?:"_s + pattern + u")\\b"_s : pattern));
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
