// A document that joins another one.

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/rtf/RtfTokenizer.h"
#include "windows/rich/RtfFormatStore.h"

namespace tme {
namespace {

/// The style sheet and the lists of a document.
std::string TablesOf(const std::string& header) {
  constexpr std::string_view kTables[] = {"{\\stylesheet", "{\\*\\listtable", "{\\*\\listoverridetable"};
  std::string tables;
  rtf::Tokenizer tokens(header);
  rtf::Token token;
  for (tokens.Next(token); token.kind != rtf::TokenKind::End; tokens.Next(token)) {
    if (token.kind != rtf::TokenKind::GroupStart) continue;
    std::string group;
    tokens.TakeGroup(token.begin, &group);
    if (std::ranges::any_of(kTables, [&](std::string_view table) { return group.starts_with(table); })) tables += group;
  }
  return tables;
}

/// Whether what names styles and lists of one means the same in the other, as in a cut and paste within one document.
bool HasSameTables(const rtf::RtfDocument& one, const rtf::RtfDocument& other) {
  const std::string tables = TablesOf(one.kept_header);
  return !tables.empty() && tables == TablesOf(other.kept_header);
}

/// Kept control words of a document as they stand in the one that it joins: colours and fonts under their numbers
/// there.
class ExtraMap {
 public:
  /// All outlive this.
  ExtraMap(const rtf::RtfDocument& source, RtfFormatStore& formats, rtf::RtfDocument& kept, bool same_tables)
      : source_(source), formats_(formats), kept_(kept), same_tables_(same_tables), numbers_(source.extras.size()) {
    for (std::size_t i = kept.extras.size(); i > 0; --i) known_[kept.extras[i - 1]] = static_cast<std::uint32_t>(i);
  }

  /// Of an extra of the source; 0 for none, and where nothing of it is left.
  std::uint32_t NumberOf(std::uint32_t extra) {
    const std::string* words = rtf::EntryOf(source_.extras, extra);
    if (!words) return 0;
    if (std::uint32_t& number = numbers_[extra - 1]; number == 0) number = Enter(Mapped(*words)) + 1;
    return numbers_[extra - 1] - 1;
  }

 private:
  std::uint32_t Enter(const std::string& words) {
    if (words.empty()) return 0;
    const auto [place, is_new] = known_.try_emplace(words, static_cast<std::uint32_t>(kept_.extras.size() + 1));
    if (is_new) kept_.extras.push_back(words);
    return place->second;
  }

  std::string Mapped(const std::string& words) {
    constexpr std::array<std::string_view, 5> kColors{"cbpat", "cfpat", "brdrcf", "chcfpat", "ulc"};
    constexpr std::array<std::string_view, 6> kOfTables{"s", "cs", "ds", "revauth", "crauth", "revauthdel"};
    std::string mapped;
    rtf::Tokenizer tokens(words);
    rtf::Token token;
    for (tokens.Next(token); token.kind != rtf::TokenKind::End; tokens.Next(token)) {
      if (token.kind != rtf::TokenKind::Word) continue;
      if (!same_tables_ && std::ranges::find(kOfTables, token.text) != kOfTables.end()) continue;
      std::int32_t value = token.value;
      const auto index = static_cast<std::size_t>(std::max(value, 0));
      if (std::ranges::find(kColors, token.text) != kColors.end())
        value = index > 0 && index < source_.colors.size()
                    ? static_cast<std::int32_t>(formats_.AddColor(source_.colors[index]))
                    : 0;
      if (token.text == "af") value = FontNumber(value);
      mapped.append("\\").append(token.text);
      if (token.has_value) mapped += std::to_string(value);
    }
    return mapped;
  }

  std::int32_t FontNumber(std::int32_t number) {
    const auto found = std::ranges::find(source_.fonts, number, &rtf::Font::number);
    return kept_.fonts[found == source_.fonts.end() ? 0 : formats_.Add(*found)].number;
  }

  const rtf::RtfDocument& source_;
  RtfFormatStore& formats_;
  rtf::RtfDocument& kept_;
  const bool same_tables_;
  std::vector<std::uint32_t> numbers_;  ///< NumberOf plus 1, where it is known
  std::map<std::string, std::uint32_t, std::less<>> known_;
};

}  // namespace

rtf::RtfDocument MergeRtf(rtf::RtfDocument&& source, RtfStore& store) {
  rtf::RtfDocument text = TakeRtfText(source);
  rtf::RtfDocument& kept = store.document;
  RtfFormatStore formats(store);
  const auto objects = static_cast<std::uint32_t>(kept.objects.size());
  const auto fields = static_cast<std::uint32_t>(kept.fields.size());
  std::move(source.objects.begin(), source.objects.end(), std::back_inserter(kept.objects));
  for (rtf::Field& field : source.fields) {
    if (field.parent) field.parent += fields;
    kept.fields.push_back(std::move(field));
  }

  const auto color_of = [&](std::uint32_t color) {
    return color == 0 || color >= source.colors.size() ? 0 : formats.AddColor(source.colors[color]);
  };
  const bool same_tables = HasSameTables(source, kept);
  ExtraMap extras(source, formats, kept, same_tables);
  std::vector<std::uint32_t> char_numbers, paragraph_numbers;
  for (rtf::CharFormat format : source.char_formats) {
    format.font = format.font < source.fonts.size() ? formats.Add(source.fonts[format.font]) : 0;
    format.color = color_of(format.color);
    format.background = color_of(format.background);
    format.field = format.field ? format.field + fields : 0;
    format.extra = extras.NumberOf(format.extra);
    char_numbers.push_back(formats.Add(format));
  }
  for (rtf::ParagraphFormat format : source.paragraph_formats) {
    if (!same_tables) format.list_id = 0;
    format.extra = extras.NumberOf(format.extra);
    paragraph_numbers.push_back(formats.Add(format));
  }
  const auto number_of = [](const std::vector<std::uint32_t>& numbers, std::uint32_t number) {
    return number < numbers.size() ? numbers[number] : 0;
  };
  for (rtf::Run& run : text.runs) {
    run.format = number_of(char_numbers, run.format);
    run.object = run.object ? run.object + objects : 0;
  }
  for (rtf::Paragraph& paragraph : text.paragraphs) {
    paragraph.format = number_of(paragraph_numbers, paragraph.format);
    paragraph.mark_format = number_of(char_numbers, paragraph.mark_format);
  }
  return text;
}

}  // namespace tme
