#include "documents/rtf/RtfReader.h"

#include <algorithm>
#include <limits>

#include "base/Utf8.h"
#include "documents/rtf/RtfParser.h"

namespace tme::rtf {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Programs that make paragraphs for other files put them into one of their own, too.
bool IsFragment(std::string_view rtf) {
  constexpr std::string_view kBeginnings[] = {"{\\pard", "{\\fonttbl", "{\\colortbl"};
  return std::ranges::any_of(kBeginnings, [rtf](std::string_view beginning) { return rtf.starts_with(beginning); });
}

void ReadAsText(std::string_view bytes, const DecodeCodePage& decode, RtfDocument& document) {
  document.losses.not_rtf = true;
  std::string decoded;
  if (!utf8::IsValid(bytes)) {
    decoded = decode(document.ansi_code_page, bytes);
    bytes = decoded;
  } else if (bytes.starts_with(kByteOrderMark)) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  Builder builder(document, bytes.size());
  const std::uint32_t format = builder.Intern(CharFormat{});
  while (true) {
    const std::size_t end = bytes.find_first_of("\r\n\v");
    if (end != 0 && !bytes.empty()) builder.AddText(bytes.substr(0, end), format);
    if (end == std::string_view::npos) break;
    builder.EndParagraph(ParagraphFormat{}, format, 0);
    bytes.remove_prefix(end + (bytes.substr(end).starts_with("\r\n") ? 2 : 1));
  }
  if (builder.HasPending() || document.paragraphs.empty()) builder.EndParagraph(ParagraphFormat{}, format, 0);
  builder.Finish();
}

void MoveBy(RtfSource& source, std::uint32_t bytes) {
  if (bytes == 0) return;
  for (RtfSource::Piece& place : source.pieces) place.begin += bytes, place.end += bytes;
  for (RtfSource::Mark& place : source.marks) {
    place.begin += bytes, place.end += bytes;
    if (place.whole_end > 0) place.whole_end += bytes;
    if (place.label_end > 0) place.label_begin += bytes, place.label_end += bytes;
  }
  for (RtfSource::SectionPart& place : source.section_parts) place.begin += bytes, place.end += bytes;
  RtfSource::Header& header = source.header;
  header.begin += bytes;
  for (std::uint32_t* const place : {&header.end, &header.fonts_end, &header.colors_end, &header.body})
    if (*place > 0) *place += bytes;
  for (std::uint32_t& end : header.table_ends)
    if (end > 0) end += bytes;
}

}  // namespace

RtfDocument ReadRtf(std::string_view bytes, const DecodeCodePage& decode, RtfSource* source) {
  RtfDocument document;
  std::string_view rtf = bytes;
  if (rtf.starts_with(kByteOrderMark)) rtf.remove_prefix(kByteOrderMark.size());
  rtf.remove_prefix(std::min(rtf.find_first_not_of(" \t\r\n"), rtf.size()));
  const bool is_file = rtf.starts_with("{\\rtf");
  if (is_file || IsFragment(rtf)) {
    if (bytes.size() >= std::numeric_limits<std::uint32_t>::max()) source = nullptr;
    Parser(rtf, document, decode, source).Read(is_file ? Parser::Form::File : Parser::Form::Fragment);
    if (source != nullptr) MoveBy(*source, static_cast<std::uint32_t>(rtf.data() - bytes.data()));
  } else {
    ReadAsText(bytes, decode, document);
  }
  return document;
}

}  // namespace tme::rtf
