#include <functional>
#include <string>

#include "base/Utf8.h"
#include "console/Findings.h"
#include "documents/SourceLines.h"
#include "documents/ini/IniSourceLine.h"
#include "files/CodePage.h"

namespace tme::console {
namespace {

using VisitLine = std::function<void(std::uint64_t number, std::string_view line)>;

void ForEachLineOf(std::string_view text, std::uint64_t number, const VisitLine& visit) {
  SourceLineReader lines(text);
  for (std::string_view line; lines.Next(line); ++number) visit(number, line);
}

std::string_view NameOfEnd(std::string_view end) {
  if (end == "\r\n") return "CR LF";
  return end == "\n" ? "LF" : "CR";
}

/// What stands in a line that its file's encoding does not have.
void CheckBytes(TextEncoding encoding, std::uint64_t number, std::string_view line, Findings& findings) {
  if (line.find('\0') != std::string_view::npos)
    findings.push_back({number, "a NUL character", "many readers end there"});
  if (utf8::AsciiRun(line) == line.size()) return;
  const bool is_utf8_file = encoding == TextEncoding::Utf8 || encoding == TextEncoding::Utf8Bom;
  if (!utf8::IsValid(line)) {
    if (is_utf8_file)
      findings.push_back({number, "bytes that are no UTF-8 in a file of UTF-8", "readers refuse or replace them"});
    else
      findings.push_back({number, "half a UTF-16 character", "readers refuse or replace it"});
  } else if (encoding == TextEncoding::CodePage) {
    const auto bytes = Utf8ToCodePage(line);
    if (bytes && utf8::IsValid(*bytes))
      findings.push_back({number, "UTF-8 in a file of 8-bit characters", "readers take it for other characters"});
  }
}

}  // namespace

void CheckLines(const ConsoleFile& file, Findings& findings) {
  const TextEncoding encoding = file.Format().encoding;
  if (file.Format().stray_byte)
    findings.push_back({1, "an odd number of bytes in a file of UTF-16", "half a character stands at the end"});
  std::string_view first_end;
  std::uint64_t first_other = 0, others = 0;
  std::string other_end;
  const auto visit = [&](std::uint64_t number, std::string_view line) {
    CheckBytes(encoding, number, line, findings);
    const std::string_view end = LineEndOf(line);
    if (first_end.empty()) first_end = end;
    if (end.empty() || end == first_end) return;
    if (others++ > 0) return;
    first_other = number;
    other_end = NameOfEnd(end);
  };
  if (file.Kind() == DocumentKind::Txt)
    ForEachLineOf(file.Text(), 1, visit);
  else
    ForEachPiece(file, [&](SourceLines::Piece, std::uint64_t number, std::string_view text) {
      ForEachLineOf(text, number, visit);
    });
  if (first_end == "\r")
    findings.push_back({1, "the line ends in CR alone", "most readers take it and the next for one"});
  if (others == 0) return;
  const std::string more =
      others > 1 ? "; lines that end in another way than the first: " + std::to_string(others) : std::string();
  findings.push_back({first_other,
                      "the line ends in " + other_end + " and not in " + std::string(NameOfEnd(first_end)) + more,
                      "some readers join lines or keep the CR as part of a value"});
}

}  // namespace tme::console
