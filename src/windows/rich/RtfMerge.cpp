#include "windows/rich/RtfMerge.h"

#include <iterator>
#include <utility>
#include <vector>

#include "windows/rich/RtfFormatStore.h"

namespace tme {

using rtf::RtfDocument;

RtfDocument TakeRtfText(RtfDocument& from) {
  RtfDocument text;
  text.text.swap(from.text);
  text.runs.swap(from.runs);
  text.paragraphs.swap(from.paragraphs);
  text.cells.swap(from.cells);
  text.rows.swap(from.rows);
  text.tables.swap(from.tables);
  return text;
}

RtfDocument MergeRtf(RtfDocument&& source, RtfStore& store) {
  RtfDocument text = TakeRtfText(source);
  RtfDocument& kept = store.document;
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
  std::vector<std::uint32_t> char_numbers, paragraph_numbers;
  for (rtf::CharFormat format : source.char_formats) {
    format.font = format.font < source.fonts.size() ? formats.Add(source.fonts[format.font]) : 0;
    format.color = color_of(format.color);
    format.background = color_of(format.background);
    format.field = format.field ? format.field + fields : 0;
    format.extra = 0;
    char_numbers.push_back(formats.Add(format));
  }
  for (rtf::ParagraphFormat format : source.paragraph_formats) {
    format.list_id = 0;
    format.extra = 0;
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
