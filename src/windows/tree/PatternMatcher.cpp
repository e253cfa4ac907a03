#include "windows/tree/PatternMatcher.h"

#include <QString>
#include <functional>

#include "base/Utf16.h"
#include "base/Utf8.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

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

void ForEachMatch(const QRegularExpression& expression, const Subject& subject,
                  const std::function<void(const QRegularExpressionMatch&, const TextMatch&)>& visit) {
  for (auto found = expression.globalMatch(subject.Text()); found.hasNext();) {
    const QRegularExpressionMatch match = found.next();
    if (match.capturedLength() > 0)
      visit(match, {subject.ByteAt(match.capturedStart()), subject.ByteAt(match.capturedEnd())});
  }
}

std::string Expanded(std::string_view with, const QRegularExpressionMatch& match) {
  std::string expanded;
  for (std::size_t at = 0; at < with.size(); ++at) {
    const char next = with[at] == '\\' && at + 1 < with.size() ? with[at + 1] : '\0';
    if (next >= '0' && next <= '9')
      expanded += match.captured(next - '0').toStdString();
    else
      expanded += with[at];
    if (next == '\\' || (next >= '0' && next <= '9')) ++at;
  }
  return expanded;
}

}  // namespace

PatternMatcher::PatternMatcher(const QString& pattern, SearchCase search_case, SearchWords words) {
  const QString before = words == SearchWords::Whole ? u"\\b(?:"_s : QString();
  before_pattern_ = before.size();
  expression_.setPattern(before + pattern + (words == SearchWords::Whole ? u")\\b"_s : QString()));
  QRegularExpression::PatternOptions options = QRegularExpression::UseUnicodePropertiesOption;
  if (search_case == SearchCase::Ignore) options |= QRegularExpression::CaseInsensitiveOption;
  expression_.setPatternOptions(options);
  expression_.optimize();
}

void PatternMatcher::FindAll(std::string_view text, std::vector<TextMatch>& matches) const {
  ForEachMatch(expression_, Subject(text),
               [&](const QRegularExpressionMatch&, const TextMatch& match) { matches.push_back(match); });
}

std::optional<std::string> PatternMatcher::Replaced(std::string_view text, std::string_view with,
                                                    std::optional<std::size_t> only) const {
  std::string replaced;
  std::size_t at = 0;
  bool is_replaced = false;
  ForEachMatch(expression_, Subject(text), [&](const QRegularExpressionMatch& found, const TextMatch& match) {
    if (only && match.start != *only) return;
    replaced.append(text.substr(at, match.start - at)).append(Expanded(with, found));
    at = match.end;
    is_replaced = true;
  });
  if (!is_replaced) return std::nullopt;
  return replaced.append(text.substr(at));
}

}  // namespace tme
