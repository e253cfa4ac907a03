#include "documents/reg/RegNames.h"

#include <cstddef>
#include <optional>

#include "base/CaseFold.h"
#include "base/Utf8.h"

namespace tme {
namespace {

constexpr char32_t kInvalidByte = 0x110000;

/// Takes a folded character off the text; an invalid byte counts as one beyond Unicode.
char32_t TakeFolded(std::string_view& text) {
  if (const auto byte = static_cast<unsigned char>(text.front()); byte < 0x80) {
    text.remove_prefix(1);
    return FoldCase(byte);
  }
  if (const std::optional<char32_t> character = utf8::TakeCharacter(text, utf8::Surrogates::Accept))
    return FoldCase(*character);
  const char32_t byte = kInvalidByte + static_cast<unsigned char>(text.front());
  text.remove_prefix(1);
  return byte;
}

}  // namespace

bool SameRegName(std::string_view one, std::string_view other) {
  while (!one.empty() && !other.empty())
    if (TakeFolded(one) != TakeFolded(other)) return false;
  return one.empty() && other.empty();
}

std::uint32_t HashOfRegName(std::string_view name) {
  constexpr std::uint32_t kBasis = 0x811C9DC5;  // of the FNV-1a hash
  constexpr std::uint32_t kPrime = 0x01000193;
  std::uint32_t hash = kBasis;
  while (!name.empty()) hash = (hash ^ static_cast<std::uint32_t>(TakeFolded(name))) * kPrime;
  // The table takes the lower bits, and the product mixes upwards.
  return hash ^ hash >> 15U;
}

}  // namespace tme
