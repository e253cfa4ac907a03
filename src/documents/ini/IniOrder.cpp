#include "documents/ini/IniOrder.h"

#include <algorithm>

#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "documents/ini/IniTree.h"

namespace tme {

namespace {

constexpr std::size_t kPrefixBytes = 8;
constexpr unsigned kNotAscii = 0x80;
/// A byte that is not valid UTF-8 stands for this plus itself, after all code points.
constexpr char32_t kInvalidByte = 0x110000;

unsigned Byte(std::string_view text, std::size_t at) { return static_cast<unsigned char>(text[at]); }

/// Takes one code point off the front of text, which is not empty, and folds it.
char32_t TakeFolded(std::string_view& text) {
  const char32_t invalid = kInvalidByte + Byte(text, 0);
  if (const std::optional<char32_t> code = utf8::TakeCharacter(text)) return FoldCase(*code);
  text.remove_prefix(1);
  return invalid;
}

constexpr std::uint64_t EachByte(std::uint64_t value) { return 0x0101010101010101u * value; }

/// Four bytes as a big-endian number, which compares as the bytes do. Compilers make one load of it.
std::uint64_t LoadFour(const char* bytes) {
  const auto byte = [bytes](int at) { return std::uint64_t{static_cast<unsigned char>(bytes[at])}; };
  return byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
}

std::uint64_t LoadPrefix(const char* bytes) { return LoadFour(bytes) << 32 | LoadFour(bytes + 4); }

/// Makes eight ASCII bytes lower case at once: bit 7 of a byte is set where "A" <= byte <= "Z".
std::uint64_t FoldAscii(std::uint64_t bytes) {
  const std::uint64_t from_a = bytes + EachByte(0x80 - 'A');
  const std::uint64_t after_z = bytes + EachByte(0x7F - 'Z');
  return bytes | (from_a & ~after_z & EachByte(0x80)) >> 2;
}

std::uint64_t FoldedPrefixBeyondAscii(std::string_view text) {
  std::uint64_t prefix = 0;
  for (unsigned shift = 64; shift > 0 && !text.empty();) {
    shift -= 8;
    const char32_t code = TakeFolded(text);
    if (code >= kNotAscii) return prefix | std::uint64_t{0xFF} << shift;
    prefix |= std::uint64_t{code} << shift;
  }
  return prefix;
}

/// Whether the prefix at depth was made of eight ASCII bytes, so that the text goes on eight bytes later.
bool HasAsciiPrefix(std::string_view text, std::size_t depth) {
  if (text.size() < depth + kPrefixBytes) return false;
  return (LoadPrefix(text.data() + depth) & EachByte(0x80)) == 0;
}

/// Counts the characters at the start that are ASCII in both and equal when folded.
std::size_t EqualAsciiRun(std::string_view left, std::string_view right) {
  const std::size_t size = std::min(left.size(), right.size());
  std::size_t run = 0;
  while (run < size) {
    const unsigned left_byte = Byte(left, run);
    const unsigned right_byte = Byte(right, run);
    if (((left_byte | right_byte) & kNotAscii) != 0) break;
    if (left_byte != right_byte && FoldCase(left_byte) != FoldCase(right_byte)) break;
    ++run;
  }
  return run;
}

}  // namespace

std::uint64_t FoldedPrefix(std::string_view text) {
  std::uint64_t bytes = 0;
  if (text.size() >= kPrefixBytes) {
    bytes = LoadPrefix(text.data());
  } else {
    for (std::size_t i = 0; i < text.size(); ++i) bytes |= std::uint64_t{Byte(text, i)} << (56 - 8 * i);
  }
  return (bytes & EachByte(0x80)) == 0 ? FoldAscii(bytes) : FoldedPrefixBeyondAscii(text);
}

int CompareFolded(std::string_view left, std::string_view right) {
  const std::size_t equal = EqualAsciiRun(left, right);
  left.remove_prefix(equal);
  right.remove_prefix(equal);
  while (!left.empty() && !right.empty()) {
    const char32_t left_code = TakeFolded(left);
    const char32_t right_code = TakeFolded(right);
    if (left_code != right_code) return left_code < right_code ? -1 : 1;
  }
  return static_cast<int>(!left.empty()) - static_cast<int>(!right.empty());
}

bool IniSorter::Sort(std::span<IniNode*> nodes) {
  items_.clear();
  items_.reserve(nodes.size());
  for (IniNode* node : nodes) items_.push_back({FoldedPrefix(node->Text()), node});
  if (std::ranges::is_sorted(items_, IsBefore)) return false;
  SortFrom(items_, 0);
  std::ranges::transform(items_, nodes.begin(), &Item::node);
  return true;
}

bool IniSorter::IsBefore(const Item& left, const Item& right) {
  if (left.prefix != right.prefix) return left.prefix < right.prefix;
  return CompareFolded(left.node->Text(), right.node->Text()) < 0;
}

/// Sorts items that agree before depth, with prefixes of the texts from there.
void IniSorter::SortFrom(std::span<Item> items, std::size_t depth) {
  std::ranges::sort(items, {}, &Item::prefix);
  for (std::size_t first = 0; first < items.size();) {
    std::size_t last = first + 1;
    while (last < items.size() && items[last].prefix == items[first].prefix) ++last;
    if (last - first > 1) ResolveTie(items.subspan(first, last - first), depth);
    first = last;
  }
}

/// Many texts with a long beginning in common are sorted by their next eight bytes, which spares most comparisons.
void IniSorter::ResolveTie(std::span<Item> items, std::size_t depth) {
  constexpr std::size_t kFewItems = 16;
  constexpr std::size_t kMaxDepth = 64;
  const auto goes_on = [depth](const Item& item) { return HasAsciiPrefix(item.node->Text(), depth); };
  if (items.size() > kFewItems && depth < kMaxDepth && std::ranges::all_of(items, goes_on)) {
    const std::size_t next = depth + kPrefixBytes;
    for (Item& item : items) item.prefix = FoldedPrefix(item.node->Text().substr(next));
    SortFrom(items, next);
    return;
  }
  std::ranges::sort(items, [depth](const Item& left, const Item& right) {
    const int order = CompareFolded(left.node->Text().substr(depth), right.node->Text().substr(depth));
    return order != 0 ? order < 0 : left.node->Row() < right.node->Row();
  });
}

}  // namespace tme
