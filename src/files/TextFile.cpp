#include "files/TextFile.h"

#include <array>
#include <utility>

#include "base/Utf8.h"
#include "files/CodePage.h"

namespace tme {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LeMark = "\xFF\xFE";
constexpr std::string_view kUtf16BeMark = "\xFE\xFF";

constexpr char32_t kFirstHighSurrogate = 0xD800;
constexpr char32_t kFirstLowSurrogate = 0xDC00;
constexpr char32_t kFirstSupplementary = 0x10000;

bool IsHighSurrogate(char32_t unit) { return (unit & 0xFFFFFC00) == kFirstHighSurrogate; }
bool IsLowSurrogate(char32_t unit) { return (unit & 0xFFFFFC00) == kFirstLowSurrogate; }

/// The encoding that a byte order mark at the start names; null without one.
std::optional<TextEncoding> MarkedEncoding(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Mark)) return TextEncoding::Utf8Bom;
  if (bytes.starts_with(kUtf16LeMark)) return TextEncoding::Utf16Le;
  if (bytes.starts_with(kUtf16BeMark)) return TextEncoding::Utf16Be;
  return std::nullopt;
}

bool IsLittle(TextEncoding encoding) {
  return encoding == TextEncoding::Utf16Le || encoding == TextEncoding::Utf16LeUnmarked;
}

/// bytes: without mark; an odd byte at the end is left alone.
std::string Utf16ToUtf8(std::string_view bytes, TextEncoding encoding) {
  const std::size_t low_byte = IsLittle(encoding) ? 0 : 1;
  const auto unit_at = [bytes, low_byte](std::size_t at) {
    const auto low = static_cast<unsigned char>(bytes[at + low_byte]);
    const auto high = static_cast<unsigned char>(bytes[at + 1 - low_byte]);
    return static_cast<char32_t>(low) | static_cast<char32_t>(high) << 8;
  };

  std::string text;
  text.reserve(bytes.size() / 2);
  std::array<char, 4096> buffer;
  std::size_t used = 0;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t character = unit_at(at);
    if (IsHighSurrogate(character) && at + 3 < bytes.size()) {
      const char32_t next = unit_at(at + 2);
      if (IsLowSurrogate(next)) {
        character = kFirstSupplementary + ((character - kFirstHighSurrogate) << 10) + (next - kFirstLowSurrogate);
        at += 2;
      }
    }
    if (used + utf8::kMaxCharacterBytes > buffer.size()) {
      text.append(buffer.data(), used);
      used = 0;
    }
    used += utf8::PutCharacter(character, buffer.data() + used);
  }
  return text.append(buffer.data(), used);
}

std::optional<std::string> Utf8ToUtf16(std::string_view text, TextEncoding encoding, bool with_mark) {
  const bool little = IsLittle(encoding);
  const std::string_view mark = !with_mark ? std::string_view() : little ? kUtf16LeMark : kUtf16BeMark;
  std::string bytes(mark.size() + 2 * text.size(), '\0');  // no character takes more than twice its bytes
  std::size_t used = mark.copy(bytes.data(), mark.size());
  const auto put = [&bytes, &used, little](char32_t unit) {
    const auto low = static_cast<char>(unit & 0xFF);
    const auto high = static_cast<char>(unit >> 8);
    bytes[used++] = little ? low : high;
    bytes[used++] = little ? high : low;
  };
  while (!text.empty()) {
    const auto character = utf8::TakeCharacter(text, utf8::Surrogates::Accept);
    if (!character) return std::nullopt;
    if (*character < kFirstSupplementary) {
      put(*character);
    } else {
      put(kFirstHighSurrogate + ((*character - kFirstSupplementary) >> 10));
      put(kFirstLowSurrogate + ((*character - kFirstSupplementary) & 0x3FF));
    }
  }
  bytes.resize(used);
  return bytes;
}

/// Counts what speaks for UTF-8 in bytes without a mark. Parts end where characters do.
class Utf8Evidence {
 public:
  void Add(std::string_view part) {
    while (true) {
      part.remove_prefix(utf8::AsciiRun(part));
      if (part.empty()) return;
      if (utf8::TakeCharacter(part)) {
        ++characters_;
      } else {
        ++invalid_;
        part.remove_prefix(utf8::InvalidBytes(part));
      }
    }
  }
  bool IsAscii() const { return characters_ + invalid_ == 0; }
  bool IsUtf8() const { return !IsAscii() && characters_ >= 2 * invalid_; }

 private:
  std::uint64_t characters_ = 0;
  std::uint64_t invalid_ = 0;
};

/// Counts what speaks for UTF-16 of one byte order in bytes without a mark. Parts may end anywhere.
class Utf16Evidence {
 public:
  explicit Utf16Evidence(TextEncoding encoding) : little_(IsLittle(encoding)) {}

  void Add(std::string_view part) {
    for (const char character : part) {
      const auto byte = static_cast<unsigned char>(character);
      if (has_first_ = !has_first_; has_first_)
        first_ = byte;
      else
        AddUnit(little_ ? byte : first_, little_ ? first_ : byte);
      if (refuted_) return;
    }
  }
  bool IsUtf16() const {
    return !refuted_ && !has_first_ && !after_high_ && units_ >= 4 && 3 * for_ >= units_ && for_ > against_;
  }

 private:
  static bool IsPrintable(unsigned byte) { return byte >= 0x20 && byte <= 0x7E; }
  static bool IsNoTextByte(unsigned byte) { return byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r'; }

  void AddUnit(unsigned high, unsigned low) {
    const char32_t unit = high << 8 | low;
    const bool is_private = unit >= 0xE000 && unit <= 0xF8FF;
    refuted_ = unit == 0 || unit >= 0xFFFE || is_private || IsLowSurrogate(unit) != after_high_;
    after_high_ = IsHighSurrogate(unit);
    ++units_;
    if (IsNoTextByte(high))
      ++for_;
    else if (IsNoTextByte(low) || (IsPrintable(high) && IsPrintable(low)))
      ++against_;
  }

  const bool little_;
  bool has_first_ = false;
  unsigned first_ = 0;
  bool after_high_ = false;
  bool refuted_ = false;
  std::uint64_t units_ = 0, for_ = 0, against_ = 0;
};

constexpr std::array kUnmarked{TextEncoding::Utf16LeUnmarked, TextEncoding::Utf16BeUnmarked};

/// The byte order of UTF-16 without a mark; null for anything else.
std::optional<TextEncoding> UnmarkedUtf16(std::string_view bytes) {
  if (bytes.size() % 2 != 0 || bytes.find('\0') == std::string_view::npos) return std::nullopt;
  for (const TextEncoding encoding : kUnmarked) {
    Utf16Evidence evidence(encoding);
    evidence.Add(bytes);
    if (evidence.IsUtf16()) return encoding;
  }
  return std::nullopt;
}

/// Encodes a text part by part, and knows in the end whether the bytes will be read as that text again.
class PartEncoder {
 public:
  explicit PartEncoder(const TextFormat& format) : format_(format) {}

  /// Null when the encoding has no place for a character.
  std::optional<std::string> Encode(std::string_view part) {
    const bool first = std::exchange(first_, false);
    has_nul_ = has_nul_ || part.find('\0') != std::string_view::npos;
    switch (format_.encoding) {
      case TextEncoding::CodePage:
        return ToCodePage(part, first);
      case TextEncoding::Utf8:
        // A U+FEFF that is text would be taken for the mark by the next reader; after a mark it stays text.
        if (first && part.starts_with(kUtf8Mark)) return std::string(kUtf8Mark).append(part);
        return std::string(part);
      case TextEncoding::Utf8Bom:
        return std::string(first ? kUtf8Mark : std::string_view()).append(part);
      case TextEncoding::Utf16Le:
      case TextEncoding::Utf16Be:
        return Utf8ToUtf16(part, format_.encoding, first);
      case TextEncoding::Utf16LeUnmarked:
      case TextEncoding::Utf16BeUnmarked:
        return Utf8ToUtf16(part, format_.encoding, false);
    }
    return std::nullopt;
  }

  /// After the last part.
  std::string Rest() const { return format_.stray_byte ? std::string(1, *format_.stray_byte) : std::string(); }
  /// all_bytes: hands over what Encode gave, once more; asked for only where NULs make it worth a look.
  bool ReadsBack(const std::function<bool(const FilePart&)>& all_bytes) const {
    const TextEncoding encoding = format_.encoding;
    const bool is_utf16 = encoding == TextEncoding::Utf16LeUnmarked || encoding == TextEncoding::Utf16BeUnmarked;
    const bool may_look_like_utf16 = has_nul_ && (encoding == TextEncoding::CodePage || encoding == TextEncoding::Utf8);
    if (encoding == TextEncoding::CodePage && evidence_.IsUtf8()) return false;
    if (!is_utf16 && !may_look_like_utf16) return true;
    std::array evidence{Utf16Evidence(kUnmarked[0]), Utf16Evidence(kUnmarked[1])};
    bool starts = true, is_marked = false, has_nul = false;
    all_bytes([&](std::string_view part) {
      if (std::exchange(starts, part.empty() && starts)) is_marked = MarkedEncoding(part).has_value();
      has_nul = has_nul || part.find('\0') != std::string_view::npos;
      for (Utf16Evidence& order : evidence) order.Add(part);
      return true;
    });
    const bool first_fits = evidence[0].IsUtf16(), any_fits = first_fits || evidence[1].IsUtf16();
    if (!is_utf16) return !any_fits;
    return !is_marked && has_nul && any_fits && first_fits == IsLittle(encoding);
  }

 private:
  std::optional<std::string> ToCodePage(std::string_view part, bool first) {
    if (utf8::AsciiRun(part) == part.size()) return std::string(part);
    auto bytes = Utf8ToCodePage(part);
    if (!bytes || (first && MarkedEncoding(*bytes))) return std::nullopt;
    evidence_.Add(*bytes);
    return bytes;
  }

  const TextFormat format_;
  bool first_ = true;
  bool has_nul_ = false;
  /// Of bytes of the code page.
  Utf8Evidence evidence_;
};

/// What comes next when the format's encoding does not fit.
TextFormat NextFormat(const TextFormat& format) {
  switch (format.encoding) {
    case TextEncoding::CodePage:
      return {format.fallback, {}, TextEncoding::Utf8};
    case TextEncoding::Utf16LeUnmarked:
      return {TextEncoding::Utf16Le, {}, TextEncoding::Utf8};
    case TextEncoding::Utf16BeUnmarked:
      return {TextEncoding::Utf16Be, {}, TextEncoding::Utf8};
    case TextEncoding::Utf16Le:
    case TextEncoding::Utf16Be:
      return {TextEncoding::Utf8, {}, TextEncoding::Utf8};
    case TextEncoding::Utf8:
    case TextEncoding::Utf8Bom:
      return {TextEncoding::Utf8Bom, {}, TextEncoding::Utf8};
  }
  return {TextEncoding::Utf8Bom, {}, TextEncoding::Utf8};
}

}  // namespace

std::string_view EncodingName(TextEncoding encoding) {
  switch (encoding) {
    case TextEncoding::CodePage:
      return "the 8-bit code page";
    case TextEncoding::Utf8:
      return "UTF-8";
    case TextEncoding::Utf8Bom:
      return "UTF-8 with byte order mark";
    case TextEncoding::Utf16Le:
      return "UTF-16 LE";
    case TextEncoding::Utf16Be:
      return "UTF-16 BE";
    case TextEncoding::Utf16LeUnmarked:
      return "UTF-16 LE without byte order mark";
    case TextEncoding::Utf16BeUnmarked:
      return "UTF-16 BE without byte order mark";
  }
  return {};
}

DecodedText DecodeText(std::string bytes) {
  DecodedText decoded;
  if (const auto marked = MarkedEncoding(bytes)) {
    decoded.format.encoding = *marked;
    if (*marked == TextEncoding::Utf8Bom) {
      bytes.erase(0, kUtf8Mark.size());
      decoded.text = std::move(bytes);
      return decoded;
    }
    if (bytes.size() % 2 != 0) decoded.format.stray_byte = bytes.back();
    decoded.text = Utf16ToUtf8(std::string_view(bytes).substr(kUtf16LeMark.size()), *marked);
    return decoded;
  }

  if (const auto unmarked = UnmarkedUtf16(bytes)) {
    decoded.format.encoding = *unmarked;
    decoded.text = Utf16ToUtf8(bytes, *unmarked);
    return decoded;
  }
  Utf8Evidence evidence;
  evidence.Add(bytes);
  if (evidence.IsUtf8()) decoded.format.encoding = TextEncoding::Utf8;
  decoded.text = evidence.IsAscii() || evidence.IsUtf8() ? std::move(bytes) : CodePageToUtf8(bytes);
  return decoded;
}

std::string EncodeText(std::string text, TextFormat& format) {
  while (true) {
    const bool may_stand = format.encoding == TextEncoding::Utf8
                               ? !text.starts_with(kUtf8Mark)
                               : format.encoding == TextEncoding::CodePage && utf8::AsciiRun(text) == text.size();
    if (may_stand && !UnmarkedUtf16(text)) return text;
    PartEncoder encoder(format);
    std::optional<std::string> bytes = encoder.Encode(text);
    if (bytes && encoder.ReadsBack([&bytes](const FilePart& put) { return put(*bytes); }))
      return std::move(*bytes) + encoder.Rest();
    format = NextFormat(format);
  }
}

std::optional<FileFailure> WriteFileBytes(const std::filesystem::path& path, std::string_view bytes) {
  FileSteps steps;
  return WriteFileParts(
      path, [bytes](const FilePart& put) { return put(bytes); }, steps);
}

std::optional<FileFailure> WriteTextFile(const std::filesystem::path& path, TextFormat& format,
                                         const PartProducer& produce) {
  FileSteps steps;
  return WriteTextFile(path, format, produce, steps);
}

std::optional<FileFailure> WriteTextFile(const std::filesystem::path& path, TextFormat& format,
                                         const PartProducer& produce, FileSteps& steps) {
  bool fits = true;
  PartEncoder encoder(format);
  const auto each_part = [&](PartEncoder& with, const FilePart& put) {
    return produce([&](std::string_view part) {
      const std::optional<std::string> bytes = with.Encode(part);
      fits = bytes.has_value();
      return fits && put(*bytes);
    });
  };
  const auto failure = WriteFileParts(
      path,
      [&](const FilePart& put) {
        const bool complete = each_part(encoder, put);
        PartEncoder again(format);
        fits = fits && encoder.ReadsBack([&](const FilePart& look) { return each_part(again, look); });
        // A text without parts has its mark, too.
        return complete && fits && put(encoder.Encode({}).value_or(std::string()) + encoder.Rest());
      },
      steps);
  if (fits) return failure;
  format = NextFormat(format);
  return WriteTextFile(path, format, produce, steps);
}

}  // namespace tme
