#pragma once

#include <bit>
#include <optional>
#include <string>
#include <string_view>

namespace tme {

/// UTF-8 of UTF-16 bytes without a mark. Lone surrogates become three bytes each; an odd byte at the end is left out.
std::string DecodeUtf16(std::string_view bytes, std::endian order);
/// The mark, then the text. Null when the text is not UTF-8; three bytes of a lone surrogate are taken.
std::optional<std::string> EncodeUtf16(std::string_view text, std::endian order, std::string_view mark);

constexpr bool IsHighSurrogate(char32_t unit) { return (unit & 0xFFFFFC00) == 0xD800; }
constexpr bool IsLowSurrogate(char32_t unit) { return (unit & 0xFFFFFC00) == 0xDC00; }

}  // namespace tme
