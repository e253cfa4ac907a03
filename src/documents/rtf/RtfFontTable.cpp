#include "documents/rtf/RtfFontTable.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "documents/rtf/RtfReader.h"

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxNameBytes = 256;

}  // namespace

void FontTable::Keep(std::string_view raw) {
  if (!is_in_entry_) return;
  const bool has_name = entry_.name.find_first_not_of(' ') != std::string::npos;
  (has_name ? entry_.behind : entry_.words) += raw;
}

void FontTable::ReadWord(const ControlWord& word, std::int32_t value, std::string_view raw, TextEncoding& encoding) {
  if (word.control != Control::FontNumber) Keep(raw);
  switch (word.control) {
    case Control::FontNumber:
      EndEntry();
      entry_ = {};
      entry_.number = value;
      entry_page_ = -1;
      is_in_entry_ = true;
      return;
    case Control::FontFamily:
      entry_.family = word.name.substr(1);
      return;
    case Control::FontCharset:
      entry_.charset = value;
      entry_page_ = CodePageOfCharset(value);
      break;
    case Control::FontCodePage:
      if (value > kPrivateSymbolPage) entry_page_ = value;
      break;
    default:
      return;
  }
  // The name itself is never in symbols.
  if (entry_page_ > kPrivateSymbolPage) encoding.page = &pages_.Get(entry_page_);
}

void FontTable::ReadText(std::string_view text) {
  while (is_in_entry_ && !text.empty()) {
    const std::size_t end = std::min(text.find(';'), text.size());
    if (entry_.name.size() < kMaxNameBytes) entry_.name += text.substr(0, end);
    if (end == text.size()) return;
    EndEntry();
    text.remove_prefix(end + 1);
  }
}

void FontTable::EndEntry() {
  if (!is_in_entry_) return;
  is_in_entry_ = false;
  entry_.name.erase(0, std::min(entry_.name.find_first_not_of(' '), entry_.name.size()));
  entry_.name.erase(entry_.name.find_last_not_of(' ') + 1);
  // A name alone makes symbols only where nothing else is said; a charset of symbols does so whatever page follows.
  if (entry_.name == "Symbol" && entry_page_ == -1 && entry_.charset == 0) entry_.charset = kSymbolCharset;
  // Text without a font stands already; a default font that comes after it must not turn its letters into symbols.
  const int usual_page = CodePageOfFont(entry_.charset, entry_.name);
  const bool is_symbols = usual_page == kSymbolPage || usual_page == kPrivateSymbolPage;
  const bool is_late_symbols =
      is_default_fixed_ && default_ == kNoFont && entry_.number == default_number_ && is_symbols;
  if (is_late_symbols || document_.fonts.size() >= kMaxFonts || entry_.number < 0 || entry_.number > kMaxFontNumber) {
    ++document_.losses.limits;
    return;
  }
  if (is_symbols) entry_page_ = usual_page;
  const auto number = static_cast<std::size_t>(entry_.number);
  if (number >= index_of_number_.size()) index_of_number_.resize(number + 1, kNoFont);
  index_of_number_[number] = static_cast<std::uint32_t>(document_.fonts.size());
  page_of_font_.push_back(entry_page_);
  entry_.code_page = entry_page_;
  document_.fonts.push_back(std::move(entry_));
}

void FontTable::Take(const RtfDocument& read) {
  ansi_page_ = read.ansi_code_page;
  for (const Font& font : read.fonts) {
    const auto number = static_cast<std::size_t>(std::clamp(font.number, 0, kMaxFontNumber));
    if (number >= index_of_number_.size()) index_of_number_.resize(number + 1, kNoFont);
    index_of_number_[number] = static_cast<std::uint32_t>(page_of_font_.size());
    page_of_font_.push_back(font.code_page);
  }
  default_number_ = read.default_font;
  ResolveDefault();
}

std::uint32_t FontTable::IndexOf(std::int32_t number) const {
  const auto place = static_cast<std::size_t>(number);
  return number >= 0 && place < index_of_number_.size() ? index_of_number_[place] : kNoFont;
}

std::uint32_t FontTable::FontOf(std::int32_t number) const {
  if (const std::uint32_t index = IndexOf(number); index != kNoFont) return index;
  const bool is_number = number >= 0 && number <= kMaxFontNumber;
  return kMissingFont + static_cast<std::uint32_t>(is_number ? number : kMaxFontNumber);
}

CodePage& FontTable::PageOf(std::uint32_t index) {
  if (IsMissingFont(index)) index = default_;
  const int page = index < page_of_font_.size() ? page_of_font_[index] : -1;
  return pages_.Get(page < 0 ? ansi_page_ : page);
}

SymbolFont FontTable::SymbolsOf(std::int32_t number) const {
  const std::uint32_t index = IndexOf(number);
  return index < document_.fonts.size() ? SymbolFontOf(document_.fonts[index].name) : SymbolFont::Unknown;
}

bool FontTable::ResolveDefault() {
  const std::uint32_t index = IndexOf(default_number_);
  if (is_default_fixed_ || index == kNoFont) return false;
  default_ = index;
  return true;
}

void FontTable::NumberFonts() {
  std::vector<bool> is_used(document_.fonts.size());
  std::set<std::size_t> missing;
  for (const CharFormat& format : document_.char_formats) {
    if (format.font < is_used.size()) is_used[format.font] = true;
    if (IsMissingFont(format.font)) missing.insert(format.font - kMissingFont);
  }
  const auto is_known = [this](std::size_t number) {
    return number < index_of_number_.size() && index_of_number_[number] != kNoFont;
  };
  std::size_t unused = 0;
  const auto take_unused = [&] {
    while (std::cmp_equal(unused, default_number_) || missing.contains(unused) || is_known(unused)) ++unused;
    return static_cast<std::uint32_t>(unused++);
  };
  for (std::uint32_t index = 0; index < document_.fonts.size(); ++index) {
    std::int32_t& number = document_.fonts[index].number;
    if (is_used[index] && IndexOf(number) != index) number = static_cast<std::int32_t>(take_unused());
  }
  // One that came behind the text is not the text's.
  std::map<std::uint32_t, std::uint32_t> changed;
  for (CharFormat& format : document_.char_formats) {
    if (!IsMissingFont(format.font) || !is_known(format.font - kMissingFont)) continue;
    const auto [place, is_new] = changed.try_emplace(format.font);
    if (is_new) place->second = kMissingFont + take_unused();
    format.font = place->second;
  }

  document_.default_font = default_ < document_.fonts.size() ? document_.fonts[default_].number : default_number_;
  document_.is_default_font_said = is_default_said_ || document_.default_font != default_number_;
}

}  // namespace tme::rtf
