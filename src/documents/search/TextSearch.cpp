#include "documents/search/TextSearch.h"

#include <algorithm>
#include <array>

#include "base/CaseFold.h"
#include "base/Utf16.h"
#include "base/Utf8.h"
#include "documents/search/TextSearchScan.h"

namespace tme {
namespace {

std::string Encoded(char32_t character) {
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  return {bytes.data(), utf8::PutCharacter(character, bytes.data())};
}

/// How often each byte stands in a sample of the text: what is common in one language is rare in another.
class Frequencies {
 public:
  explicit Frequencies(std::string_view text) {
    const std::size_t step = std::max(text.size() / kPlaces, kBytesAtPlace);
    for (std::size_t at = 0; at < text.size(); at += step)
      for (const char byte : text.substr(at, kBytesAtPlace)) ++counts_[static_cast<unsigned char>(byte)];
  }
  double Of(const ScanBytes& bytes) const {
    double sum = 1;  // so that two bytes that were not seen are still better than one
    for (std::size_t i = 0; i < bytes.count; ++i) sum += counts_[bytes.values[i]];
    return sum;
  }

  static constexpr double kAll = 4096;

 private:
  static constexpr std::size_t kPlaces = 64, kBytesAtPlace = 64;
  std::array<unsigned, 256> counts_{};
};

bool SameSize(const std::vector<std::string>& forms) {
  return std::ranges::all_of(forms, [&](const std::string& form) { return form.size() == forms.front().size(); });
}

bool IsWordCharacter(char32_t character) {
  struct Range {
    char32_t first, last;
  };
  // Punctuation, symbols and spaces; a combining mark belongs to its letter.
  static constexpr std::array kOthers{
      Range{0x80, 0xA9},       Range{0xAB, 0xB1},        Range{0xB4, 0xB4},     Range{0xB6, 0xB8},
      Range{0xBB, 0xBB},       Range{0xBF, 0xBF},        Range{0xD7, 0xD7},     Range{0xF7, 0xF7},
      Range{0x37E, 0x37E},     Range{0x387, 0x387},      Range{0x55A, 0x55F},   Range{0x589, 0x58F},
      Range{0x5BE, 0x5BE},     Range{0x5C0, 0x5C0},      Range{0x5C3, 0x5C3},   Range{0x5F3, 0x5F4},
      Range{0x600, 0x60F},     Range{0x61B, 0x61F},      Range{0x66A, 0x66D},   Range{0x6D4, 0x6D4},
      Range{0x964, 0x965},     Range{0xE3F, 0xE3F},      Range{0x1680, 0x1680}, Range{0x2000, 0x206F},
      Range{0x20A0, 0x20CF},   Range{0x2190, 0x245F},    Range{0x2500, 0x2BFF}, Range{0x2E00, 0x2E7F},
      Range{0x3000, 0x3004},   Range{0x3008, 0x3020},    Range{0x3030, 0x3030}, Range{0x30FB, 0x30FB},
      Range{0xE000, 0xF8FF},   Range{0xFE10, 0xFE1F},    Range{0xFE30, 0xFE32}, Range{0xFE35, 0xFE4C},
      Range{0xFE50, 0xFE6F},   Range{0xFEFF, 0xFEFF},    Range{0xFF00, 0xFF0F}, Range{0xFF1A, 0xFF20},
      Range{0xFF3B, 0xFF3E},   Range{0xFF40, 0xFF40},    Range{0xFF5B, 0xFF65}, Range{0xFFE0, 0xFFFF},
      Range{0x1F000, 0x1FAFF}, Range{0xE0000, 0x10FFFF},
  };
  if (character < 0x80) {
    return (character >= U'0' && character <= U'9') || (FoldCase(character) >= U'a' && FoldCase(character) <= U'z') ||
           character == U'_';
  }
  const auto range = std::ranges::lower_bound(kOthers, character, {}, &Range::last);
  return range == kOthers.end() || character < range->first;
}

bool BeginsWithWord(std::string_view text) { return IsWordCharacter(utf8::TakeCharacter(text).value_or(0)); }

bool EndsInWord(std::string_view text) {
  return BeginsWithWord(text.substr(text.size() - utf8::LastCharacterBytes(text)));
}

/// What may stand at one byte of a character, counted from its start.
ScanBytes BytesAt(const std::vector<std::string>& forms, std::size_t at) {
  ScanBytes bytes;
  for (const std::string& form : forms) bytes.Add(static_cast<unsigned char>(form[at]));
  return bytes;
}

/// One character of UTF-16 as UTF-8; takes it off `text`.
void TakeInto(std::string& out, std::u16string_view& text) {
  char32_t character = text.front();
  text.remove_prefix(1);
  if (utf16::IsHighSurrogate(character) && !text.empty() && utf16::IsLowSurrogate(text.front())) {
    character = utf16::Join(character, text.front());
    text.remove_prefix(1);
  }
  if (character == 0x2028 || character == 0x2029) character = U'\n';
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  out.append(bytes.data(), utf8::PutCharacter(character, bytes.data()));
}

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  while (!text.empty()) {
    if (text.front() < 0x80) {
      out += static_cast<char>(text.front());
      text.remove_prefix(1);
    } else {
      TakeInto(out, text);
    }
  }
  return out;
}

/// How many UTF-16 units this UTF-8 stands for. Line separators were made one unit, too.
std::size_t Utf16Units(std::string_view text) {
  std::size_t units = 0;
  for (const char byte : text)
    units += static_cast<std::size_t>(!utf8::IsContinuation(byte)) +
             static_cast<std::size_t>(static_cast<unsigned char>(byte) >= 0xF0);
  return units;
}

}  // namespace

struct TextSearch::Anchor {
  ScanPair pair;
  /// The character of the search text that the first of the pair belongs to, and its byte in it.
  std::size_t character = 0;
  std::size_t byte = 0;
};

TextSearch::TextSearch(std::string_view wanted, SearchCase search_case, SearchWords words) : words_(words) {
  while (!wanted.empty()) {
    const std::string_view rest = wanted;
    const std::optional<char32_t> character = utf8::TakeCharacter(wanted, utf8::Surrogates::Accept);
    if (!character) wanted.remove_prefix(1);
    Forms forms;
    if (character == U'\n') {
      forms = {"\r\n", "\n", "\r"};
    } else if (character && search_case == SearchCase::Ignore) {
      for (const char32_t form : CaseForms(*character)) forms.push_back(Encoded(form));
    } else {
      forms.emplace_back(rest.substr(0, rest.size() - wanted.size()));
    }
    characters_.push_back(std::move(forms));
  }
}

/// Characters whose forms are equally long keep their bytes at fixed distances; one whose forms are not ends such a
/// stretch with its first byte. The two rarest bytes of a stretch are looked for together.
TextSearch::Anchor TextSearch::ChooseAnchor(std::string_view sample) const {
  struct Place {
    double frequency;
    std::size_t offset, character, byte;
  };
  const Frequencies frequencies(sample);
  const auto bytes_of = [this](const Place& place) { return BytesAt(characters_[place.character], place.byte); };
  Place first{}, second{};  // the best pair of all stretches
  double best = 0;
  std::array<Place, 2> rarest{};  // of this stretch, the rarest first
  std::size_t places = 0, offset = 0;
  const auto finish_stretch = [&] {
    if (places > 0) {
      if (places == 1) rarest[1] = rarest[0];
      const double both = rarest[0].frequency * (places == 1 ? Frequencies::kAll : rarest[1].frequency);
      if (best == 0 || both < best) best = both, first = rarest[0], second = rarest[1];
    }
    places = 0, offset = 0;
  };
  for (std::size_t index = 0; index < characters_.size() && index < kScanReach; ++index) {
    const Forms& forms = characters_[index];
    const bool same_size = SameSize(forms);
    for (std::size_t byte = 0; byte < (same_size ? forms.front().size() : 1); ++byte) {
      const ScanBytes bytes = BytesAt(forms, byte);
      const Place place{frequencies.Of(bytes), offset + byte, index, byte};
      if (places == 0 || place.frequency < rarest[0].frequency) {
        rarest[1] = rarest[0];
        rarest[0] = place;
      } else if (places == 1 || place.frequency < rarest[1].frequency) {
        rarest[1] = place;
      }
      ++places;
    }
    offset += forms.front().size();
    if (!same_size) finish_stretch();
  }
  finish_stretch();
  if (first.offset > second.offset) std::swap(first, second);
  return {{bytes_of(first), bytes_of(second), second.offset - first.offset}, first.character, first.byte};
}

/// The match whose character `index` stands at `at`, if there is one in [from, to), a whole word if that is wanted.
std::optional<TextMatch> TextSearch::MatchAround(std::string_view text, std::size_t from, std::size_t to,
                                                 std::size_t index, std::size_t at) const {
  TextMatch match{at, at};
  for (std::size_t previous = index; previous-- > 0;) {
    const std::string_view before = text.substr(from, match.start - from);
    const Forms& forms = characters_[previous];
    const auto form = std::ranges::find_if(forms, [&](const auto& bytes) { return before.ends_with(bytes); });
    if (form == forms.end()) return std::nullopt;
    match.start -= form->size();
  }
  // Before the rest is compared: a long run of one letter has a match everywhere, and none of them is a word.
  if (words_ == SearchWords::Whole && EndsInWord(text.substr(0, match.start))) return std::nullopt;
  for (std::size_t next = index; next < characters_.size(); ++next) {
    const std::string_view rest = text.substr(match.end, to - match.end);
    const Forms& forms = characters_[next];
    const auto form = std::ranges::find_if(forms, [&](const auto& bytes) { return rest.starts_with(bytes); });
    if (form == forms.end()) return std::nullopt;
    match.end += form->size();
  }
  if (words_ == SearchWords::Whole && BeginsWithWord(text.substr(match.end))) return std::nullopt;
  return match;
}

std::optional<TextMatch> TextSearch::Find(std::string_view text, std::size_t from, std::size_t to) const {
  to = std::min(to, text.size());
  if (characters_.empty() || from >= to) return std::nullopt;
  return FindBy(ChooseAnchor(text.substr(from, to - from)), text, from, to);
}

void TextSearch::FindAll(std::string_view text, std::vector<TextMatch>& matches, std::size_t end) const {
  if (characters_.empty() || text.empty()) return;
  const Anchor anchor = ChooseAnchor(text);
  std::size_t from = 0;
  while (const std::optional<TextMatch> match = FindBy(anchor, text, from, text.size())) {
    if (match->start >= end) return;
    matches.push_back(*match);
    from = match->end;
  }
}

std::optional<TextMatch> TextSearch::FindBy(const Anchor& anchor, std::string_view text, std::size_t from,
                                            std::size_t to) const {
  const ScanPair& pair = anchor.pair;
  for (std::size_t at = from; (at = ScanFor(pair, text.substr(0, to), at)) < to; ++at) {
    if (at - from < anchor.byte) continue;
    const std::optional<TextMatch> match = MatchAround(text, from, to, anchor.character, at - anchor.byte);
    if (match) return match;
  }
  return std::nullopt;
}

std::optional<TextMatch> TextSearch::Find(std::u16string_view text, std::size_t from, std::size_t to) const {
  constexpr std::size_t kNeighbour = 2;  // units of one character, for whole words
  to = std::min(to, text.size());
  if (from >= to) return std::nullopt;
  const std::size_t before = std::min(from, kNeighbour);
  std::string converted = ToUtf8(text.substr(from - before, before));
  const std::size_t start = converted.size();
  converted += ToUtf8(text.substr(from, to - from));
  const std::size_t end = converted.size();
  converted += ToUtf8(text.substr(to, kNeighbour));
  const std::optional<TextMatch> match = Find(std::string_view(converted), start, end);
  if (!match) return std::nullopt;
  const std::string_view bytes = converted;
  const std::size_t match_start = from + Utf16Units(bytes.substr(start, match->start - start));
  return TextMatch{match_start, match_start + Utf16Units(bytes.substr(match->start, match->end - match->start))};
}

}  // namespace tme
