// Input: the bytes of a rich-text file.
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "Fuzz.h"
#include "base/Utf8.h"
#include "documents/rtf/RtfContents.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfWriter.h"
#include "files/CodePage.h"

namespace tme::fuzz {
namespace {

using rtf::RtfDocument;

void CheckRuns(const RtfDocument& document) {
  std::size_t bytes = 0;
  for (const rtf::Run& run : document.runs) {
    bytes += run.bytes;
    Promise(run.object <= document.objects.size(), "an object that is named is there");
    Promise(run.object == 0 || run.bytes == 0, "an object has no text");
    Promise(run.format < document.char_formats.size(), "a format that is named is there");
  }
  Promise(bytes == document.text.size(), "the runs are the text");
  for (const rtf::CharFormat& format : document.char_formats) {
    Promise(format.field <= document.fields.size(), "a field that is named is there");
    Promise(format.extra <= document.extras.size(), "control words that are named are there");
  }
}

void CheckParagraphs(const RtfDocument& document) {
  Promise(!document.paragraphs.empty(), "there is a paragraph");
  Promise(document.paragraphs.front().first_run == 0, "the first paragraph begins with the text");
  std::size_t run = 0;
  for (const rtf::Paragraph& paragraph : document.paragraphs) {
    Promise(paragraph.first_run >= run && paragraph.first_run <= document.runs.size(), "paragraphs are in order");
    run = paragraph.first_run;
    Promise(paragraph.format < document.paragraph_formats.size(), "a paragraph's format is there");
    Promise(paragraph.mark_format < document.char_formats.size(), "the format of its end is there");
    Promise(paragraph.cell < static_cast<std::int64_t>(document.cells.size()), "its cell is there");
  }
  for (const rtf::Cell& cell : document.cells) Promise(cell.row < document.rows.size(), "a cell's row is there");
  for (const rtf::Row& row : document.rows) Promise(row.table < document.tables.size(), "a row's table is there");
  for (const rtf::Table& table : document.tables)
    Promise(table.parent_cell < static_cast<std::int64_t>(document.cells.size()), "a table's cell is there");
}

/// Where in the text paragraphs end. Several at one place are one: a row gets the paragraphs that its empty cells lack.
std::set<std::size_t> ParagraphEnds(const RtfDocument& document) {
  std::set<std::size_t> ends = {0, document.text.size()};
  std::size_t run = 0;
  std::size_t bytes = 0;
  for (const rtf::Paragraph& paragraph : document.paragraphs) {
    for (; run < paragraph.first_run; ++run) bytes += document.runs[run].bytes;
    ends.insert(bytes);
  }
  return ends;
}

/// A reader asks for all 256 bytes of each page; asking the system once leaves time for inputs.
std::string Decode(int page, std::string_view bytes) {
  static std::map<std::pair<int, std::string>, std::string> known;
  if (bytes.size() > 2 || known.size() > 100'000) return BytesToUtf8(page, bytes);
  const auto [place, is_new] = known.try_emplace({page, std::string(bytes)});
  if (is_new) place->second = BytesToUtf8(page, bytes);
  return place->second;
}

RtfDocument Read(std::string_view bytes) {
  RtfDocument document = rtf::ReadRtf(bytes, Decode);
  CheckRuns(document);
  CheckParagraphs(document);
  Promise(utf8::IsValid(document.text), "the text is made of whole characters");
  return document;
}

std::string Write(const RtfDocument& document) {
  std::string bytes;
  Promise(rtf::WriteRtf(document, [&bytes](std::string_view part) { return bytes.append(part), true; }),
          "writing goes on while its parts are taken");
  return bytes;
}

void CheckContents(std::string_view input) {
  const rtf::Contents contents = rtf::ListContents(input, Decode);
  Promise(contents.is_complete && contents.parts.size() <= rtf::kPartKinds * rtf::kMaxParts, "the list has its bound");
  for (const rtf::Part& part : contents.parts) {
    Promise(utf8::IsValid(part.name) && utf8::IsValid(part.declared_class), "names are made of whole characters");
    for (const std::string& target : part.targets) Promise(utf8::IsValid(target), "and targets");
  }
}

void Run(std::string_view input) {
  CheckContents(input);
  const RtfDocument document = Read(input);
  const RtfDocument again = Read(Write(document));
  Promise(!again.losses.not_rtf && !again.losses.ended_early, "what is written is whole");
  Promise(again.text == document.text, "read, write, read keeps the text");
  Promise(ParagraphEnds(again) == ParagraphEnds(document), "and the ends of its paragraphs");
  std::string plain;
  rtf::WriteRtfAsText(document, [&plain](std::string_view part) { return plain.append(part), true; });
  Promise(utf8::IsValid(plain), "plain text is made of whole characters");
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
