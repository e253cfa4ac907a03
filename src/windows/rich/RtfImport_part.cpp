// A document that joins another one.

#include <iterator>
#include <utility>
#include <vector>

#include "windows/rich/RtfImport.h"

namespace tme {

using rtf::RtfDocument;

bool ImportRtfPart(RtfDocument&& source, RtfStore& store, QTextDocument& target, RtfSimplified& simplified,
                   const RtfImportStep& step) {
  RtfDocument text = TakeRtfText(source);
  RtfDocument& kept = store.document;
  RtfLooks looks(store);
  const auto objects = static_cast<std::uint32_t>(kept.objects.size());
  const auto fields = static_cast<std::uint32_t>(kept.fields.size());
  std::move(source.objects.begin(), source.objects.end(), std::back_inserter(kept.objects));
  for (rtf::Field& field : source.fields) {
    if (field.parent) field.parent += fields;
    kept.fields.push_back(std::move(field));
  }

  const auto color_of = [&](std::uint32_t color) {
    return color == 0 || color >= source.colors.size() ? 0 : looks.ColorOf(source.colors[color]);
  };
  std::vector<std::uint32_t> char_numbers, paragraph_numbers;
  for (rtf::CharFormat look : source.char_formats) {
    look.font = look.font < source.fonts.size() ? looks.FontOf(source.fonts[look.font]) : 0;
    look.color = color_of(look.color);
    look.background = color_of(look.background);
    look.field = look.field ? look.field + fields : 0;
    look.extra = 0;
    char_numbers.push_back(looks.Add(look));
  }
  for (rtf::ParagraphFormat look : source.paragraph_formats) {
    look.list_id = 0;
    look.extra = 0;
    paragraph_numbers.push_back(looks.Add(look));
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
  return ShowRtf(text, store, target, simplified, step);
}

}  // namespace tme
