// Input: a byte for how many edits, four bytes for each (which one, at which paragraph, where in it, with what), the
// bytes of a file.
#include <algorithm>
#include <string>
#include <string_view>

#include "Fuzz.h"
#include "documents/rtf/RtfOriginal.h"
#include "files/CodePage.h"

namespace tme::fuzz {
namespace {

using namespace rtf;

constexpr unsigned kMostEdits = 6;

/// Puts a run of a text into a paragraph behind one of its runs, in that one's format.
void InsertText(RtfDocument& document, std::size_t paragraph, std::size_t at, std::string_view text) {
  const std::size_t first = document.paragraphs[paragraph].first_run, end = document.EndOfRuns(paragraph);
  const std::size_t run = first + at % (end - first + 1);
  const std::uint32_t format = run > first ? document.runs[run - 1].format : document.paragraphs[paragraph].mark_format;
  std::size_t offset = 0;
  for (std::size_t i = 0; i < run; ++i) offset += document.runs[i].bytes;
  document.text.insert(offset, text);
  document.runs.insert(document.runs.begin() + static_cast<std::ptrdiff_t>(run),
                       {static_cast<std::uint32_t>(text.size()), format, 0});
  for (std::size_t i = paragraph + 1; i < document.paragraphs.size(); ++i) ++document.paragraphs[i].first_run;
}

/// Removes the text of a run, or makes it bold.
void ChangeRun(RtfDocument& document, std::size_t paragraph, std::size_t at, bool is_removed) {
  const std::size_t first = document.paragraphs[paragraph].first_run, end = document.EndOfRuns(paragraph);
  if (first == end) return;
  Run& run = document.runs[first + at % (end - first)];
  if (!is_removed) {
    CharFormat format = document.char_formats[run.format];
    format.bold = !format.bold;
    document.char_formats.push_back(format);
    run.format = static_cast<std::uint32_t>(document.char_formats.size() - 1);
    return;
  }
  std::size_t offset = 0;
  for (const Run* it = document.runs.data(); it != &run; ++it) offset += it->bytes;
  document.text.erase(offset, run.bytes);
  run.bytes = 0;
}

void SplitParagraph(RtfDocument& document, std::size_t paragraph, std::size_t at) {
  Paragraph second = document.paragraphs[paragraph];
  const std::size_t count = document.EndOfRuns(paragraph) - second.first_run;
  second.first_run += static_cast<std::uint32_t>(at % (count + 1));
  document.paragraphs.insert(document.paragraphs.begin() + static_cast<std::ptrdiff_t>(paragraph) + 1, second);
}

void JoinParagraphs(RtfDocument& document, std::size_t paragraph) {
  if (paragraph + 1 == document.paragraphs.size()) return;
  const Paragraph second = document.paragraphs[paragraph + 1];
  if (second.cell != document.paragraphs[paragraph].cell) return;
  document.paragraphs[paragraph].format = second.format;
  document.paragraphs.erase(document.paragraphs.begin() + static_cast<std::ptrdiff_t>(paragraph) + 1);
}

void Edit(RtfDocument& document, std::string_view& input) {
  const std::uint8_t what = TakeByte(input);
  const std::size_t paragraph = TakeByte(input) % document.paragraphs.size();
  const std::size_t at = TakeByte(input);
  const std::uint8_t with = TakeByte(input);
  constexpr std::string_view kTexts[] = {"a", "1", " ", "\xC3\xA9", "\xE4\xB8\xAD", "\xF0\x9F\x98\x80", "\\{}", "\t-"};
  switch (what % 5) {
    case 0:
      return InsertText(document, paragraph, at, kTexts[with % std::size(kTexts)]);
    case 1:
      return ChangeRun(document, paragraph, at, true);
    case 2:
      return ChangeRun(document, paragraph, at, false);
    case 3:
      return SplitParagraph(document, paragraph, at);
    default:
      return JoinParagraphs(document, paragraph);
  }
}

/// Each piece of the source stands in order, and plain ones are the text.
void LookAt(const RtfSource& source, const RtfDocument& document, std::string_view bytes) {
  Promise(source.marks.size() == document.paragraphs.size(), "each paragraph has its mark");
  for (std::size_t i = 0; i < source.pieces.size(); ++i) {
    const RtfSource::Piece& piece = source.pieces[i];
    const std::size_t end = i + 1 < source.pieces.size() ? source.pieces[i + 1].text : document.text.size();
    Promise(piece.begin <= piece.end && piece.end <= bytes.size(), "a piece stands in the file");
    if (piece.kind != RtfSource::Kind::Plain) continue;
    const std::string_view text = std::string_view(document.text).substr(piece.text, end - piece.text);
    Promise(bytes.substr(piece.begin, piece.end - piece.begin) == text, "a plain piece is its text");
  }
}

void Run(std::string_view input) {
  const unsigned edits = TakeByte(input) % (kMostEdits + 1);
  const std::string_view script = input.substr(0, 4 * edits);
  const std::string bytes(input.substr(script.size()));
  RtfSource source;
  const RtfDocument read = ReadRtf(bytes, BytesToUtf8, &source);
  if (source.marks.empty()) return;
  LookAt(source, read, bytes);
  RtfOriginal original(bytes, read, source);
  original.SetUnedited(read);
  Promise(original.WithEdits(read, BytesToUtf8) == bytes, "a document that was not edited is its file");
  RtfDocument edited = read;
  std::string_view left = script;
  for (unsigned i = 0; i < edits; ++i) Edit(edited, left);
  // It reads what it makes, and compares.
  original.WithEdits(edited, BytesToUtf8);
}

}  // namespace
}  // namespace tme::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
