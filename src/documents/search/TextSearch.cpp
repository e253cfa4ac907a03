#include "documents/search/TextSearch.h"

#include <algorithm>
#include <array>

#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "documents/search/TextSearchScan.h"
#include "documents/search/WordCharacter.h"

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
  const Anchor anchor = ChooseAnchor(text.substr(from, to - from));
  const ScanPair& pair = anchor.pair;
  for (std::size_t at = from; (at = ScanFor(pair, text.substr(0, to), at)) < to; ++at) {
    if (at - from < anchor.byte) continue;
    const std::optional<TextMatch> match = MatchAround(text, from, to, anchor.character, at - anchor.byte);
    if (match) return match;
  }
  return std::nullopt;
}

}  // namespace tme
