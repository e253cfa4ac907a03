#pragma once

#include <QString>
#include <cstdint>
#include <string>
#include <string_view>

namespace tme {

/// Text as a list or a message can show it: at most so many characters, control characters as their symbols (U+2400 and
/// on).
QString DisplayText(std::string_view text, qsizetype max_characters = 1000);

/// Enough for any message; longer texts would push its buttons off the screen.
inline constexpr qsizetype kMaxCharactersInMessage = 250;

/// The whole text, for editing. A U+FEFF at the start is text like any other, which fromUtf8 would drop.
inline QString TextOf(std::string_view text) {
  const QString decoded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  return text.starts_with("\xEF\xBB\xBF") ? QChar(0xFEFF) + decoded : decoded;
}

/// As TextOf, but each byte that is no UTF-8 is a lone surrogate, U+DC80 to U+DCFF, of which EditedBytes makes that
/// byte again: what the user leaves alone stays.
QString EditableText(std::string_view text);
std::string EditedBytes(const QString& text);

/// "1 line", or "%1 lines" with the count as the locale writes it.
QString Counted(std::uint64_t count, const QString& one, const QString& many);

/// Without blanks at both ends; a tab is not a blank.
QString TrimBlanks(const QString& text);

}  // namespace tme
