#include "windows/rich/RtfStore.h"

namespace tme {

rtf::RtfDocument EmptyRtfDocument() {
  rtf::RtfDocument document;
  document.fonts.push_back({0, kDefaultRtfFont, "swiss", 0});
  document.colors.push_back(0);
  document.char_formats.emplace_back();
  document.paragraph_formats.emplace_back();
  return document;
}

rtf::RtfDocument TakeRtfText(rtf::RtfDocument& from) {
  rtf::RtfDocument text;
  text.text.swap(from.text);
  text.runs.swap(from.runs);
  text.paragraphs.swap(from.paragraphs);
  text.cells.swap(from.cells);
  text.rows.swap(from.rows);
  text.tables.swap(from.tables);
  return text;
}

}  // namespace tme
