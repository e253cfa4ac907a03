#include "platform/TextFile.h"

#include <array>
#include <utility>

#include "base/Utf8.h"
#include "platform/CodePage.h"

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

/// bytes: without mark; an odd byte at the end is left alone.
std::string Utf16ToUtf8(std::string_view bytes, TextEncoding encoding) {
  const std::size_t low_byte = encoding == TextEncoding::Utf16Le ? 0 : 1;
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
  const bool little = encoding == TextEncoding::Utf16Le;
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

/// Encodes a text part by part, and knows in the end whether the bytes will be read as that text again.
class PartEncoder {
 public:
  explicit PartEncoder(const TextFormat& format) : format_(format) {}

  /// Null when the encoding has no place for a character.
  std::optional<std::string> Encode(std::string_view part) {
    const bool first = std::exchange(first_, false);
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
    }
    return std::nullopt;
  }

  /// After the last part.
  std::string Rest() const { return format_.stray_byte ? std::string(1, *format_.stray_byte) : std::string(); }
  bool ReadsBack() const { return !beyond_ascii_ || !all_valid_utf8_; }

 private:
  std::optional<std::string> ToCodePage(std::string_view part, bool first) {
    if (utf8::AsciiRun(part) == part.size()) return std::string(part);
    auto bytes = Utf8ToCodePage(part);
    if (!bytes || (first && MarkedEncoding(*bytes))) return std::nullopt;
    beyond_ascii_ = true;
    all_valid_utf8_ = all_valid_utf8_ && utf8::IsValid(*bytes);
    return bytes;
  }

  const TextFormat format_;
  bool first_ = true;
  bool beyond_ascii_ = false;
  bool all_valid_utf8_ = true;
};

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

  const std::string_view rest = std::string_view(bytes).substr(utf8::AsciiRun(bytes));
  if (rest.empty()) {
    decoded.text = std::move(bytes);
  } else if (utf8::IsValid(rest)) {
    decoded.format.encoding = TextEncoding::Utf8;
    decoded.text = std::move(bytes);
  } else {
    decoded.text = CodePageToUtf8(bytes);
  }
  return decoded;
}

std::string EncodeText(std::string text, TextFormat& format) {
  const bool stands_for_itself = format.encoding == TextEncoding::Utf8
                                     ? !text.starts_with(kUtf8Mark)
                                     : format.encoding == TextEncoding::CodePage && utf8::AsciiRun(text) == text.size();
  if (stands_for_itself) return text;
  PartEncoder encoder(format);
  std::optional<std::string> bytes = encoder.Encode(text);
  if (bytes && encoder.ReadsBack()) return std::move(*bytes) + encoder.Rest();
  format = {TextEncoding::Utf8, {}};
  return EncodeText(std::move(text), format);
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
  const auto failure = WriteFileParts(
      path,
      [&](const FilePart& put) {
        const bool complete = produce([&](std::string_view part) {
          const std::optional<std::string> bytes = encoder.Encode(part);
          fits = bytes.has_value();
          return fits && put(*bytes);
        });
        fits = fits && encoder.ReadsBack();
        // A text without parts has its mark, too.
        return complete && fits && put(encoder.Encode({}).value_or(std::string()) + encoder.Rest());
      },
      steps);
  if (fits) return failure;
  format = {TextEncoding::Utf8, {}};
  return WriteTextFile(path, format, produce, steps);
}

}  // namespace tme
