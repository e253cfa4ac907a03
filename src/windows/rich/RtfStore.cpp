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

}  // namespace tme
