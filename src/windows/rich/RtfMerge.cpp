// A document that joins another one.

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "documents/rtf/RtfTableJoin.h"
#include "files/CodePage.h"
#include "windows/rich/RtfFormatStore.h"

namespace tme {
namespace {

/// Kept control words of a document as they stand in the one that it joins.
class ExtraMap {
 public:
  /// All outlive this.
  ExtraMap(const rtf::RtfDocument& source, rtf::RtfTableJoin& join, rtf::RtfDocument& kept)
      : source_(source), join_(join), kept_(kept), numbers_(source.extras.size()) {
    for (std::size_t i = kept.extras.size(); i > 0; --i) known_[kept.extras[i - 1]] = static_cast<std::uint32_t>(i);
  }

  /// Of an extra of the source; 0 for none, and where nothing of it is left.
  std::uint32_t NumberOf(std::uint32_t extra) {
    const std::string* words = rtf::EntryOf(source_.extras, extra);
    if (!words) return 0;
    if (std::uint32_t& number = numbers_[extra - 1]; number == 0) number = Enter(join_.Mapped(*words)) + 1;
    return numbers_[extra - 1] - 1;
  }

 private:
  std::uint32_t Enter(const std::string& words) {
    if (words.empty()) return 0;
    const auto [place, is_new] = known_.try_emplace(words, static_cast<std::uint32_t>(kept_.extras.size() + 1));
    if (is_new) kept_.extras.push_back(words);
    return place->second;
  }

  const rtf::RtfDocument& source_;
  rtf::RtfTableJoin& join_;
  rtf::RtfDocument& kept_;
  std::vector<std::uint32_t> numbers_;  ///< NumberOf plus 1, where it is known
  std::map<std::string, std::uint32_t, std::less<>> known_;
};

/// Numbers of fonts and colours in what is kept.
rtf::RtfTableJoin::Numbers NumbersOf(const rtf::RtfDocument& source, RtfFormatStore& formats) {
  rtf::RtfTableJoin::Numbers numbers;
  numbers.font = [&source, &formats](std::int32_t number) {
    const auto found = std::ranges::find(source.fonts, number, &rtf::Font::number);
    return formats.Document().fonts[found == source.fonts.end() ? 0 : formats.Add(*found)].number;
  };
  numbers.color = [&source, &formats](std::int32_t number) {
    const auto index = static_cast<std::size_t>(std::max(number, 0));
    const bool is_known = index > 0 && index < source.colors.size();
    return is_known ? static_cast<std::int32_t>(formats.AddColor(source.colors[index])) : 0;
  };
  return numbers;
}

std::uint32_t NumberAt(const std::vector<std::uint32_t>& numbers, std::uint32_t index) {
  return index < numbers.size() ? numbers[index] : 0;
}

}  // namespace

rtf::RtfDocument MergeRtf(rtf::RtfDocument&& source, RtfStore& store) {
  rtf::RtfDocument text = TakeRtfText(source);
  rtf::RtfDocument& kept = store.document;
  RtfFormatStore formats(store);
  const auto objects = static_cast<std::uint32_t>(kept.objects.size());
  const auto fields = static_cast<std::uint32_t>(kept.fields.size());
  const rtf::DecodeCodePage decode = BytesToUtf8;
  rtf::RtfTableJoin join(source, kept, NumbersOf(source, formats), decode);
  for (rtf::Object& object : source.objects) {
    object.rtf = join.Mapped(object.rtf);
    kept.objects.push_back(std::move(object));
  }
  for (rtf::Field& field : source.fields) {
    if (field.parent) field.parent += fields;
    field.instruction = join.Mapped(field.instruction);
    kept.fields.push_back(std::move(field));
  }
  for (rtf::Row& row : text.rows) row.definition = join.Mapped(row.definition);

  const auto color_of = [&](std::uint32_t color) {
    return color == 0 || color >= source.colors.size() ? 0 : formats.AddColor(source.colors[color]);
  };
  ExtraMap extras(source, join, kept);
  std::vector<std::uint32_t> char_numbers, paragraph_numbers;
  for (rtf::CharFormat format : source.char_formats) {
    format.font = format.font < source.fonts.size() ? formats.Add(source.fonts[format.font]) : 0;
    format.color = color_of(format.color);
    format.background = color_of(format.background);
    format.shading = color_of(format.shading);
    format.field = format.field ? format.field + fields : 0;
    format.extra = extras.NumberOf(format.extra);
    char_numbers.push_back(formats.Add(format));
  }
  for (rtf::ParagraphFormat format : source.paragraph_formats) {
    format.list_id = join.ListNumber(format.list_id);
    format.list_group = extras.NumberOf(format.list_group);
    format.extra = extras.NumberOf(format.extra);
    paragraph_numbers.push_back(formats.Add(format));
  }
  for (rtf::Run& run : text.runs) {
    run.format = NumberAt(char_numbers, run.format);
    run.object = run.object ? run.object + objects : 0;
  }
  for (rtf::Paragraph& paragraph : text.paragraphs) {
    paragraph.format = NumberAt(paragraph_numbers, paragraph.format);
    paragraph.mark_format = NumberAt(char_numbers, paragraph.mark_format);
  }
  return text;
}

}  // namespace tme
