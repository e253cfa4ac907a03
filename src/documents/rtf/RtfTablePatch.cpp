#include "documents/rtf/RtfTablePatch.h"

#include <algorithm>
#include <string>

#include "documents/rtf/RtfFormatOutput.h"
#include "documents/rtf/RtfOutput.h"

namespace tme::rtf {

RtfTablePatch::RtfTablePatch(const RtfDocument& after, const RtfSource& source, std::size_t fonts)
    : after_(after),
      source_(source),
      file_fonts_(fonts),
      known_formats_(after.char_formats.size()),
      known_fonts_(after.fonts.size()) {
  // As the view chooses it.
  const auto found = std::ranges::find(after.fonts, after.default_font, &Font::number);
  unnamed_font_ = found == after.fonts.end() ? 0 : static_cast<std::size_t>(found - after.fonts.begin());
}

void RtfTablePatch::Note(const RtfHunk& hunk) {
  for (std::size_t i = hunk.after_begin; i < hunk.after_end; ++i) {
    for (std::size_t run = after_.paragraphs[i].first_run; run < after_.EndOfRuns(i); ++run)
      NoteFormat(after_.runs[run].format);
    NoteFormat(after_.paragraphs[i].mark_format);
  }
}

void RtfTablePatch::NoteFormat(std::uint32_t format) {
  if (known_formats_[format]) return;
  known_formats_[format] = true;
  const CharFormat& it = after_.char_formats[format];
  const bool is_new = it.font >= file_fonts_ && it.font < after_.fonts.size() && it.font != unnamed_font_;
  if (is_new && !known_fonts_[it.font]) fonts_.push_back(it.font);
  if (is_new) known_fonts_[it.font] = true;
  for (const std::uint32_t color : {it.color, it.background})
    if (color < after_.colors.size()) color_ = std::max(color_, color);
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
  if (!fonts_.empty()) {
    if (header.fonts_end == 0) out.Open("\\fonttbl");
    for (const std::uint32_t font : fonts_) WriteFont(after_.fonts[font], out);
    if (header.fonts_end == 0) out.Close();
    put(header.fonts_end);
  }
  if (color_ == 0 || color_ < header.colors) return;
  if (header.colors_end == 0) out.Open("\\colortbl");
  for (std::uint32_t i = header.colors; i <= color_; ++i) WriteColor(after_.colors, i, out);
  if (header.colors_end == 0) out.Close();
  put(header.colors_end);
}

}  // namespace tme::rtf
