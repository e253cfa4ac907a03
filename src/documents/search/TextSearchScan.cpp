#include "documents/search/TextSearchScan.h"

#include <algorithm>
#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tme {
namespace {

bool Holds(const ScanBytes& bytes, char byte) {
  const auto last = bytes.values.begin() + static_cast<std::ptrdiff_t>(bytes.count);
  return std::find(bytes.values.begin(), last, static_cast<std::uint8_t>(byte)) != last;
}

#ifdef __SSE2__

constexpr std::size_t kBlock = 16;

/// Count: how many values are compared with, 2 or ScanBytes::kMost.
template <std::size_t Count>
class BlockOf {
 public:
  explicit BlockOf(const ScanBytes& bytes) {
    // What has fewer values is filled up with the first.
    for (std::size_t i = 0; i < Count; ++i) {
      values_[i].bytes = _mm_set1_epi8(static_cast<char>(bytes.values[i < bytes.count ? i : 0]));
    }
  }
  /// 0xFF for each byte of the block that is one of the values.
  __m128i Matches(const char* block) const {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    __m128i matches = _mm_cmpeq_epi8(bytes, values_[0].bytes);
    for (std::size_t i = 1; i < Count; ++i) matches = _mm_or_si128(matches, _mm_cmpeq_epi8(bytes, values_[i].bytes));
    return matches;
  }

 private:
  struct Value {
    __m128i bytes;
  };
  std::array<Value, Count> values_;
};

/// Moves `at` to the next pair, or to where less than a block is left; true for a pair.
template <std::size_t Count>
bool ScanBlocks(const ScanPair& pair, std::string_view text, std::size_t& at) {
  const BlockOf<Count> first(pair.first), second(pair.second);
  for (; text.size() - at >= kBlock + pair.distance; at += kBlock) {
    const char* block = text.data() + at;
    const __m128i matches = _mm_and_si128(first.Matches(block), second.Matches(block + pair.distance));
    const auto bits = static_cast<unsigned>(_mm_movemask_epi8(matches));
    if (bits == 0) continue;
    at += static_cast<std::size_t>(std::countr_zero(bits));
    return true;
  }
  return false;
}

#else

template <std::size_t Count>
bool ScanBlocks(const ScanPair&, std::string_view, std::size_t&) {
  return false;
}

#endif

}  // namespace

void ScanBytes::Add(std::uint8_t value) {
  if (!Holds(*this, static_cast<char>(value))) values.at(count++) = value;
}

std::size_t ScanFor(const ScanPair& pair, std::string_view text, std::size_t from) {
  if (from > text.size()) return text.size();
  const bool few = pair.first.count <= 2 && pair.second.count <= 2;
  std::size_t at = from;
  if (few ? ScanBlocks<2>(pair, text, at) : ScanBlocks<ScanBytes::kMost>(pair, text, at)) return at;
  for (; at + pair.distance < text.size(); ++at)
    if (Holds(pair.first, text[at]) && Holds(pair.second, text[at + pair.distance])) return at;
  return text.size();
}

}  // namespace tme
