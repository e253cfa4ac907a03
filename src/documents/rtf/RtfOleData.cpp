#include "documents/rtf/RtfOleData.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxName = 1000;  // bytes
constexpr std::size_t kMaxScheme = 10;  // letters of "https"
constexpr std::uint32_t kLinked = 1, kEmbedded = 2;
constexpr int kAnsiPage = 1252;

class Fields {
 public:
  explicit Fields(std::string_view bytes) : bytes_(bytes) {}

  std::uint32_t Number(std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < std::min(size, bytes_.size()); ++i)
      number |= std::uint32_t{static_cast<unsigned char>(bytes_[i])} << (i * 8);
    Skip(size);
    return number;
  }
  /// A text behind its length, its NUL left out.
  std::string_view Counted() {
    const std::string_view text = Take(Number(sizeof(std::uint32_t)));
    return text.substr(0, text.find('\0'));
  }
  std::string_view Terminated() {
    const std::string_view text = bytes_.substr(0, bytes_.find('\0'));
    Skip(text.size() + 1);
    return text;
  }
  std::string_view Take(std::size_t size) {
    const std::string_view taken = bytes_.substr(0, size);
    Skip(size);
    return taken;
  }

 private:
  void Skip(std::size_t size) { bytes_.remove_prefix(std::min(size, bytes_.size())); }
  std::string_view bytes_;
};

class Names {
 public:
  Names(OleData& data, const DecodeCodePage& decode) : data_(data), decode_(decode) {}

  void Add(std::string_view bytes) {
    if (bytes.empty() || data_.names.size() >= kMaxOleNames) return;
    std::string name = decode_(kAnsiPage, bytes.substr(0, kMaxName));
    if (std::ranges::find(data_.names, name) == data_.names.end()) data_.names.push_back(std::move(name));
  }
  bool IsFull() const { return data_.names.size() >= kMaxOleNames; }

 private:
  OleData& data_;
  const DecodeCodePage& decode_;
};

/// Of a file that was packed into the document.
void ReadPackage(Fields native, Names& names) {
  constexpr std::size_t kShort = 2, kFlags = 4;
  native.Number(kShort);
  names.Add(native.Terminated());
  names.Add(native.Terminated());
  native.Number(kFlags);
  names.Add(native.Counted());
}

/// step: bytes of a character, whose first one counts.
std::string_view AddressAround(std::string_view bytes, std::size_t colon, std::size_t step, std::string& address) {
  const auto is_part = [&](std::size_t at) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    const bool is_wide = step == 1 || bytes[at + 1] == '\0';
    return is_wide && byte > ' ' && byte < 0x7F && byte != '"' && byte != '<' && byte != '>';
  };
  std::size_t begin = colon;
  for (std::size_t i = 0; i < kMaxScheme && begin >= step && IsLetter(bytes[begin - step]); ++i) begin -= step;
  address.clear();
  std::size_t end = begin;
  for (; end + step <= bytes.size() && address.size() < kMaxName && is_part(end); end += step) address += bytes[end];
  return bytes.substr(end);
}

void FindAddresses(std::string_view bytes, std::string_view mark, Names& names) {
  const std::size_t step = mark.size() / 3;
  std::string address;
  for (std::size_t colon = bytes.find(mark); colon != std::string_view::npos && !names.IsFull();) {
    bytes = AddressAround(bytes, colon, step, address);
    if (!address.starts_with(':') && !address.ends_with('/')) names.Add(address);
    colon = bytes.find(mark, std::min(mark.size(), bytes.size()));
  }
}

}  // namespace

OleData ReadOleData(std::string_view bytes, const DecodeCodePage& decode) {
  using namespace std::string_view_literals;
  constexpr std::size_t kLong = 4, kMaxClass = 255;
  OleData data;
  Names names(data, decode);
  Fields fields(bytes);
  fields.Number(kLong);  // a version, which says nothing
  const std::uint32_t format = fields.Number(kLong);
  if (format == kLinked || format == kEmbedded) {
    const std::string_view class_name = fields.Counted();
    if (class_name.size() <= kMaxClass) data.class_name = decode(kAnsiPage, class_name);
    names.Add(fields.Counted());
    names.Add(fields.Counted());
    if (format == kEmbedded && data.class_name == "Package")
      ReadPackage(Fields(fields.Take(fields.Number(kLong))), names);
  }
  FindAddresses(bytes, "://"sv, names);
  FindAddresses(bytes, ":\0/\0/\0"sv, names);
  return data;
}

}  // namespace tme::rtf
