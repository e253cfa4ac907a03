#include "documents/rtf/RtfPicture.h"

#include <algorithm>
#include <limits>
#include <string>

#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kSignatureBytes = 4;
constexpr std::string_view kPngSignature = "\x89PNG";

bool IsShownFormat(std::string_view bytes) {
  return bytes.starts_with(kPngSignature) || bytes.starts_with("\xFF\xD8\xFF");
}

std::int32_t Scaled(std::int64_t goal, std::int64_t percent) {
  const std::int64_t scaled = goal * percent / 100;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(scaled, 0, std::numeric_limits<std::int32_t>::max()));
}

/// Collects the bytes of a picture as long as they are those of a format that is shown.
class PictureBytes {
 public:
  explicit PictureBytes(PictureGroup& picture) : picture_(picture) {}

  void AddHex(std::string_view digits) {
    for (const char c : digits) {
      const int digit = HexDigit(static_cast<unsigned char>(c));
      if (digit < 0) continue;
      if (high_ < 0) {
        high_ = digit;
        continue;
      }
      Add(static_cast<char>(high_ * 16 + digit));
      high_ = -1;
      if (is_other_) return;
    }
  }
  void AddBinary(std::string_view bytes) {
    for (const char c : bytes) {
      Add(c);
      if (is_other_) return;
    }
  }

 private:
  void Add(char byte) {
    std::string& bytes = picture_.bytes;
    bytes.push_back(byte);
    if (bytes.size() == kSignatureBytes) is_other_ = !IsShownFormat(bytes);
    if (bytes.size() > kMaxPictureBytes) picture_.too_large = is_other_ = true;
  }

  PictureGroup& picture_;
  int high_ = -1;
  bool is_other_ = false;
};

struct PictureSize {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t percent_x = 100;
  std::int32_t percent_y = 100;
};

void ReadPictureWord(const Token& token, PictureSize& size, PictureGroup& picture) {
  const std::string_view name = token.text;
  if (name == "picwgoal") size.width = token.value;
  if (name == "pichgoal") size.height = token.value;
  if (name == "picscalex" && token.value > 0) size.percent_x = token.value;
  if (name == "picscaley" && token.value > 0) size.percent_y = token.value;
  if (name == "wmetafile") picture.label = "Picture (Windows metafile)";
  if (name == "emfblip") picture.label = "Picture (enhanced metafile)";
  if (name == "pmmetafile") picture.label = "Picture (OS/2 metafile)";
  if (name == "macpict") picture.label = "Picture (QuickDraw)";
  if (name == "dibitmap" || name == "wbitmap") picture.label = "Picture (Windows bitmap)";
}

struct Pixels {
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// Big-endian, of at most four bytes; 0 behind the end.
std::int32_t NumberAt(std::string_view bytes, std::size_t at, std::size_t count) {
  if (at + count > bytes.size()) return 0;
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < count; ++i) number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
  return static_cast<std::int32_t>(std::min<std::uint32_t>(number, std::numeric_limits<std::uint16_t>::max()));
}

/// From the first segment of a JPEG file that begins a picture.
Pixels PixelsOfJpeg(std::string_view bytes) {
  constexpr std::int32_t kFirstFrame = 0xC0, kLastFrame = 0xCF;
  for (std::size_t at = 2; at + kSignatureBytes <= bytes.size();) {
    const std::int32_t marker = NumberAt(bytes, at, 2) & 0xFF;
    const bool is_table = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
    if (marker >= kFirstFrame && marker <= kLastFrame && !is_table)
      return {NumberAt(bytes, at + 7, 2), NumberAt(bytes, at + 5, 2)};
    at += 2 + static_cast<std::size_t>(NumberAt(bytes, at + 2, 2));
  }
  return {};
}

Pixels PixelsOf(std::string_view bytes) {
  constexpr std::size_t kPngWidth = 16, kPngHeight = 20;
  if (!bytes.starts_with(kPngSignature)) return PixelsOfJpeg(bytes);
  return {NumberAt(bytes, kPngWidth, 4), NumberAt(bytes, kPngHeight, 4)};
}

void AddHex(std::string_view bytes, std::string& rtf) {
  constexpr std::size_t kBytesInLine = 64;
  constexpr std::string_view kDigitOf = "0123456789abcdef";
  rtf.reserve(rtf.size() + 2 * bytes.size() + 2 * (bytes.size() / kBytesInLine + 2));
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % kBytesInLine == 0) rtf += "\r\n";
    const auto byte = static_cast<unsigned char>(bytes[i]);
    rtf += kDigitOf[byte / 16];
    rtf += kDigitOf[byte % 16];
  }
}

}  // namespace

std::string RtfOfPicture(std::string_view bytes, std::int32_t width, std::int32_t height) {
  constexpr std::int32_t kTwipsPerPixel = 15;
  const Pixels pixels = PixelsOf(bytes);
  std::string rtf = bytes.starts_with(kPngSignature) ? "{\\pict\\pngblip" : "{\\pict\\jpegblip";
  const auto add = [&rtf](const char* word, std::int32_t number) {
    if (number > 0) rtf.append(word).append(std::to_string(number));
  };
  add("\\picw", pixels.width);
  add("\\pich", pixels.height);
  add("\\picwgoal", width > 0 ? width : pixels.width * kTwipsPerPixel);
  add("\\pichgoal", height > 0 ? height : pixels.height * kTwipsPerPixel);
  AddHex(bytes, rtf);
  return rtf + "}";
}

PictureGroup ReadPicture(std::string_view group) {
  PictureGroup picture;
  PictureSize size;
  PictureBytes bytes(picture);
  Tokenizer tokens(group);
  Token token;
  for (tokens.Next(token); token.kind != TokenKind::End; tokens.Next(token)) {
    if (token.kind == TokenKind::Word && !picture.is_there) {
      picture.is_there = token.text == "pict";
    } else if (picture.is_there) {
      if (token.kind == TokenKind::GroupEnd) break;
      if (token.kind == TokenKind::GroupStart) tokens.TakeGroup(token.begin, nullptr);
      if (token.kind == TokenKind::Word) ReadPictureWord(token, size, picture);
      if (token.kind == TokenKind::Text) bytes.AddHex(token.text);
      if (token.kind == TokenKind::Binary) bytes.AddBinary(token.text);
    }
  }
  if (picture.too_large || !IsShownFormat(picture.bytes)) picture.bytes = {};
  if (picture.too_large) picture.label = "Picture (too large)";
  picture.width = Scaled(size.width, size.percent_x);
  picture.height = Scaled(size.height, size.percent_y);
  return picture;
}

}  // namespace tme::rtf
