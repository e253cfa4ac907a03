#include "documents/rtf/RtfTablePatch.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfFormatOutput.h"
#include "documents/rtf/RtfHeaderTables.h"
#include "documents/rtf/RtfOutput.h"

namespace tme::rtf {

RtfTablePatch::RtfTablePatch(const RtfDocument& after, const RtfSource& source, std::size_t fonts)
    : after_(after), source_(source), file_fonts_(fonts), uses_(after) {
  // As the view chooses it.
  const auto found = std::ranges::find(after.fonts, after.default_font, &Font::number);
  unnamed_font_ = found == after.fonts.end() ? 0 : static_cast<std::size_t>(found - after.fonts.begin());
}

void RtfTablePatch::Write(Patch& patch) const {
  const RtfSource::Header& header = source_.header;
  std::string text;
  const PartSink sink = [&text](std::string_view part) {
    text.append(part);
    return true;
  };
  RtfOutput out(sink);
  const auto put = [&](std::uint32_t end) {
    out.Finish();
    const std::uint32_t at = end > 0 ? end : header.fonts_end > 0 ? header.fonts_end + 1 : header.begin;
    patch.Replace(at, at, text);
    text.clear();
  };
  std::vector<std::uint32_t> fonts = uses_.Fonts();
  std::erase_if(fonts, [this](std::uint32_t font) { return font < file_fonts_ || font == unnamed_font_; });
  if (!fonts.empty()) {
    if (header.fonts_end == 0) out.Open("\\fonttbl");
    for (const std::uint32_t font : fonts) WriteFont(after_.fonts[font], out);
    if (header.fonts_end == 0) out.Close();
    put(header.fonts_end);
  }
  if (const std::uint32_t last = uses_.LastColor(); last > 0 && last >= header.colors) {
    if (header.colors_end == 0) out.Open("\\colortbl");
    for (std::uint32_t i = header.colors; i <= last; ++i) WriteColor(after_, i, out);
    if (header.colors_end == 0) out.Close();
    put(header.colors_end);
  }
  const std::vector<const JoinedEntry*> joined = uses_.Joined();
  for (std::size_t i = 0; i < kHeaderTables; ++i) {
    const std::uint32_t end = header.table_ends[i];
    const std::uint32_t at = end > 0 ? end : std::max(header.begin, header.end);
    patch.Replace(at, at,
                  TextOfTable(static_cast<HeaderTable>(i), joined, end > 0 ? TableText::Entries : TableText::Whole));
  }
}

bool RtfTablePatch::HasMade(const std::string& read_header, const std::string& kept_header) const {
  const std::vector<const JoinedEntry*> joined = uses_.Joined();
  if (joined.empty()) return read_header == kept_header;
  const std::string wanted = HeaderWith(kept_header, source_.header.kept, joined);
  return read_header == wanted || WithoutTableSkips(read_header) == WithoutTableSkips(wanted);
}

}  // namespace tme::rtf
