#include <array>
#include <string>
#include <vector>

#include "base/LineReader.h"
#include "base/Utf8.h"
#include "console/Commands.h"
#include "console/ConsoleFile.h"
#include "console/RtfLines.h"
#include "documents/reg/RegDataLine.h"
#include "documents/reg/RegHex.h"
#include "documents/reg/RegSourceLine.h"

namespace tme::console {
namespace {

/// Puts UTF-8, whatever the text is.
void PutText(std::string_view text, Streams& streams) {
  if (utf8::IsValid(text)) return streams.Put(text);
  streams.Put(AsUtf8(text));
}

void PutTextLine(std::string_view line, Streams& streams) {
  PutText(line, streams);
  streams.Put("\n");
}

void PutLines(std::string_view text, Streams& streams) {
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);) PutTextLine(line, streams);
}

void PutRegPiece(const RegCoding& coding, RegPiece kind, std::string_view text, Streams& streams) {
  LineReader lines(text);
  std::string_view line;
  lines.Next(line);
  const auto place = kind == RegPiece::Value ? FindRegValue(text, line.size()) : std::nullopt;
  const auto data = place ? DecodeAssignment(place->assignment.Of(text), coding) : std::nullopt;
  if (!data) return PutLines(text, streams);
  for (const std::string_view comment : CommentsInHex(place->assignment.Of(text))) PutTextLine(comment, streams);
  std::string behind(text.substr(place->assignment.End()));
  while (behind.ends_with('\n') || behind.ends_with('\r')) behind.pop_back();
  PutTextLine(std::string(place->name.Of(text)) + "=" + RegDataLine(*data) + behind, streams);
}

Result Text(const Arguments& arguments, Streams& streams) {
  const ConsoleFile file(arguments.Operand(0), arguments.ValueOf(kKindOption), streams);
  if (file.Kind() == DocumentKind::Rtf) {
    PutRtfLines(file.Bytes(), streams);
  } else if (file.Kind() != DocumentKind::Reg) {
    file.Parts()([&streams](std::string_view part) {
      PutText(part, streams);
      return true;
    });
  } else {
    const SourceLines& lines = file.Lines();
    for (SourceLines::Piece at = lines.First(); at != SourceLines::kEnds; at = lines.Next(at))
      PutRegPiece(file.Coding(), static_cast<RegPiece>(lines.Kind(at)), lines.Text(at), streams);
  }
  return Result::Done;
}

constexpr std::array kTextOptions{kKindOption};

}  // namespace

constinit const Command kTextCommand{
    "text",
    "FILE",
    1,
    1,
    kTextOptions,
    "write the file as UTF-8 lines that can be compared",
    "A registry file has a line for each value, decoded and not wrapped: \"name\"=expand:\"%A%\". Of rich text there "
    "is a\n"
    "line for each paragraph and each row of a table, with tabs between its cells. Other files come as they are, in\n"
    "UTF-8; bytes that are no text of their encoding are \\xe9 there, half a character \\ud800. This is what git diff "
    "can use (textconv).\n",
    &Text};

}  // namespace tme::console
