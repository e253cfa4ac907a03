#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "RtfProbe.h"
#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfOriginal.h"

namespace tme::rtf {
namespace {

using namespace std::string_view_literals;

/// Takes bytes out of the text and puts others in, in the format of what stands before, else behind.
void Type(RtfDocument& document, std::size_t at, std::size_t removed, std::string_view text) {
  document.text.replace(at, removed, text);
  std::size_t begin = 0;
  bool is_typed = false;
  for (Run& run : document.runs) {
    const std::size_t end = begin + run.bytes;
    const std::size_t cut_begin = std::clamp(at, begin, end), cut_end = std::clamp(at + removed, begin, end);
    const std::size_t cut = cut_end - cut_begin;
    const bool holds = !is_typed && run.object == 0 && at >= begin && at <= end && removed == cut;
    run.bytes -= static_cast<std::uint32_t>(cut);
    if (holds) run.bytes += static_cast<std::uint32_t>(text.size());
    is_typed = is_typed || holds;
    begin = end;
  }
}

/// Parts a run of the first paragraph that has the text, and gives a part of it another format.
void Format(RtfDocument& document, std::size_t run, std::uint32_t from, std::uint32_t bytes,
            const std::function<void(CharFormat&)>& change) {
  const Run whole = document.runs[run];
  CharFormat format = document.char_formats[whole.format];
  change(format);
  document.char_formats.push_back(format);
  const auto number = static_cast<std::uint32_t>(document.char_formats.size() - 1);
  document.runs[run].bytes = from;
  document.runs.insert(document.runs.begin() + static_cast<std::ptrdiff_t>(run) + 1,
                       {{bytes, number, 0}, {whole.bytes - from - bytes, whole.format, 0}});
  for (Paragraph& paragraph : document.paragraphs)
    if (paragraph.first_run > run) paragraph.first_run += 2;
}

/// Ends a paragraph behind the first runs of one.
void Split(RtfDocument& document, std::size_t paragraph, std::uint32_t run, std::uint32_t bytes) {
  const Run whole = document.runs[run];
  document.runs[run].bytes = bytes;
  document.runs.insert(document.runs.begin() + run + 1, {whole.bytes - bytes, whole.format, 0});
  const auto place = document.paragraphs.begin() + static_cast<std::ptrdiff_t>(paragraph);
  for (auto later = place + 1; later != document.paragraphs.end(); ++later) ++later->first_run;
  Paragraph second = *place;
  second.first_run = run + 1;
  place->mark_format = whole.format;
  document.paragraphs.insert(place + 1, second);
}

void Join(RtfDocument& document, std::size_t paragraph) {
  const auto place = document.paragraphs.begin() + static_cast<std::ptrdiff_t>(paragraph);
  place->format = place[1].format;
  place->mark_format = place[1].mark_format;
  document.paragraphs.erase(place + 1);
}

constexpr std::string_view kBeforeBody = "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0 Arial;}}{\\*\\unknown x}";

/// What an edit makes of a file behind what stands before the body; all of it where that changes. "refused" where it
/// has no place.
std::string Edited(std::string_view body, const std::function<void(RtfDocument&)>& edit) {
  const std::string bytes = std::string(kBeforeBody).append(body);
  RtfSource source;
  const RtfDocument read = ReadRtf(bytes, BytesToUtf8, &source);
  RtfOriginal original(bytes, read, std::move(source));
  original.SetUnedited(read);
  EXPECT_EQ(original.WithEdits(read, BytesToUtf8), bytes) << "nothing was edited";
  RtfDocument edited = read;
  edit(edited);
  const std::optional<std::string> result = original.WithEdits(edited, BytesToUtf8);
  if (!result) return "refused";
  return result->starts_with(kBeforeBody) ? result->substr(kBeforeBody.size()) : *result;
}

TEST(RtfOriginal, AnEditIsPutIntoTheBytesOfTheFile) {
  const auto type = [](std::size_t at, std::size_t removed, std::string_view text) {
    return [=](RtfDocument& document) { Type(document, at, removed, text); };
  };
  const auto bold = [](CharFormat& format) { format.bold = true; };
  struct Case {
    const char* before;
    std::function<void(RtfDocument&)> edit;
    const char* after;
  };
  const Case cases[] = {
      {"\\pard ab\\par}", type(1, 0, "x"), "\\pard axb\\par}"},
      {"\\pard\\b\\par}", type(0, 0, "x"), "\\pard\\b\\par}"},
      {"\\pard\r\na\\'e9b\\par}", type(3, 0, "\xE2\x82\xAC"), "\\pard\r\na\\'e9\\u8364?b\\par}"},
      {"\\uc0 a\\u8364 b\\par}", type(4, 0, "\xE2\x82\xAC"), "\\uc0 a\\u8364 \\u8364 b\\par}"},
      {"a\\u233\\'e9b\\par}", type(1, 2, ""), "ab\\par}"},
      {"a\\b\\'e9bc\\par}", type(1, 2, ""), "a\\b bc\\par}"},
      {"a{\\*\\bkmkstart q}bc{\\*\\bkmkend q}\\par}", type(2, 1, ""), "a{\\*\\bkmkstart q}b{\\*\\bkmkend q}\\par}"},
      {"a\\sect\\sectd\\cols2{\\header h}\\pard b\\par}", type(1, 0, "x"),
       "ax\\sect\\sectd\\cols2{\\header h}\\pard b\\par}"},
      {"a\\sect\\sectd\\cols2{\\header h}\\pard b\\par}", type(1, 1, "x"),
       "a\\sect\\sectd\\cols2{\\header h}\\pard x\\par}"},
      {"a\\par\\pard\\sect\\cols2 b\\par}", type(1, 1, "x"), "a\\par\\pard\\sect\\cols2 x\\par}"},
      {"abc\\sect\\cols2 d\\par}", [&](RtfDocument& it) { Format(it, 0, 1, 1, bold); },
       "a{\\b b}c\\sect\\cols2 d\\par}"},
      {"ab\\sect\\cols2 d\\par}", [](RtfDocument& it) { Split(it, 0, 0, 1); }, "a\\par b\\sect\\cols2 d\\par}"},
      {"a{\\field{\\*\\fldinst PAGE}{\\fldrslt 12}}b\\sect\\cols2{\\header h}c\\par}",
       [](RtfDocument& it) { it.runs[1].format = it.runs[0].format; },
       "{\\plain\\pard a12b\\sect}\\cols2{\\header h}c\\par}"},
      {"a{\\field{\\*\\fldinst PAGE}{\\fldrslt 12}}b\\par}", type(2, 0, "0"),
       "a{\\field{\\*\\fldinst PAGE}{\\fldrslt 102}}b\\par}"},
      {"{\\revised\\i abc}\\par}", [&](RtfDocument& it) { Format(it, 0, 1, 1, bold); },
       "{\\revised\\i a{\\b b}c}\\par}"},
      {"ab\\'e9cd\\par}", [&](RtfDocument& it) { Format(it, 0, 1, 4, bold); }, "a{\\b b\\'e9c}d\\par}"},
      {"\\qc abcd\\par x\\par}", [](RtfDocument& it) { Split(it, 0, 0, 2); }, "\\qc ab\\par cd\\par x\\par}"},
      {"ab\\par\\keepn cd\\par}", [](RtfDocument& it) { Join(it, 0); }, "ab\\keepn cd\\par}"},
      {"ab\\par cd\\par}",
       [](RtfDocument& it) {
         ParagraphFormat centered = it.paragraph_formats[it.paragraphs[0].format];
         centered.alignment = Alignment::Center;
         it.paragraph_formats.push_back(centered);
         it.paragraphs[0].format = static_cast<std::uint32_t>(it.paragraph_formats.size() - 1);
       },
       "ab{\\pard\\qc\\par }cd\\par}"},
      {"ab\\par cd\\par}",
       [](RtfDocument& it) {
         it.paragraph_formats.push_back({.list_start = 3, .list = ListKind::Decimal});
         it.paragraphs[0].format = static_cast<std::uint32_t>(it.paragraph_formats.size() - 1);
       },
       "{\\pntext 3.\\tab}ab{\\pard{\\*\\pn\\pnlvlbody\\pndec\\pnindent0\\pnstart3{\\pntxta.}}\\par }cd\\par}"},
      {"\\trowd\\cellx900\\pard\\intbl ab\\cell\\row\\pard c\\par}", type(1, 0, "x"),
       "\\trowd\\cellx900\\pard\\intbl axb\\cell\\row\\pard c\\par}"},
      // Between the end of a cell and that of its row no text can stand.
      {"\\trowd\\cellx900\\pard\\intbl ab\\cell{\\*\\end x}\\row\\pard c\\par}", type(2, 0, "x"),
       "\\trowd\\cellx900\\pard\\intbl abx\\cell{\\*\\end x}\\row\\pard c\\par}"},
      // New items of a list have their number, and those that go take theirs with them.
      {"\\ls1{\\listtext 1.\\tab}ab\\par{\\listtext 2.\\tab}cd\\par}", [](RtfDocument& it) { Split(it, 0, 0, 1); },
       "\\ls1{\\listtext 1.\\tab}a\\par{\\listtext 2.\\tab}b\\par{\\listtext 2.\\tab}cd\\par}"},
      {"\\ls1{\\listtext 1.\\tab}ab\\par{\\listtext 2.\\tab}cd\\par}",
       [](RtfDocument& it) {
         Type(it, 0, 2, "");
         Join(it, 0);
       },
       "\\ls1{\\listtext 2.\\tab}cd\\par}"},
      {"\\ls1{\\listtext 1.\\tab}ab\\par{\\listtext 2.\\tab}cd\\par}", [](RtfDocument& it) { Join(it, 0); },
       "\\ls1{\\listtext 1.\\tab}abcd\\par}"},
      {"\\ls1{\\listtext 1.\\tab}ab\\par{\\listtext 2.\\tab}\\par}",
       [](RtfDocument& it) {
         it.paragraph_formats.emplace_back();
         it.paragraphs[1].format = static_cast<std::uint32_t>(it.paragraph_formats.size() - 1);
       },
       "\\ls1{\\listtext 1.\\tab}ab\\par{\\pard\\par}}"},
      // What has no place is written anew with its paragraph, or its table.
      {"a{\\field{\\*\\fldinst PAGE}{\\fldrslt 12}}b\\par\\b x\\par}",
       [](RtfDocument& it) { it.runs[1].format = it.runs[0].format; }, "{\\plain\\pard a12b\\par\r\n}\\b x\\par}"},
      {"\\trowd\\cellx900\\pard\\intbl ab\\cell\\row\\pard c\\par}",
       [](RtfDocument& it) {
         it.rows[0].definition = "\\trowd\\cellx950";
         it.cells[0].right_edge = 950;
       },
       "\\pard\\intbl {\\plain\\trowd\\cellx950\r\n\\pard\\intbl ab\\cell\r\n\\row\r\n}\\pard c\\par}"},
      // So is a row; the others stay.
      {"\\trowd\\cellx900\\pard\\intbl a\\cell\\row\\trowd\\cellx900 b\\cell\\row\\pard c\\par}",
       [](RtfDocument& it) {
         it.rows[1].definition = "\\trowd\\cellx950";
         it.cells[1].right_edge = 950;
       },
       "\\trowd\\cellx900\\pard\\intbl a\\cell\\row{\\plain\\trowd\\cellx950\r\n\\pard\\intbl "
       "b\\cell\r\n\\row\r\n}\\pard "
       "c\\par}"},
      {"\\trowd\\cellx900\\pard\\intbl a\\cell\\row\\trowd\\cellx900 b\\cell\\row\\pard c\\par}",
       [](RtfDocument& it) {
         it.paragraphs.insert(it.paragraphs.begin() + 1, it.paragraphs[1]);
         it.rows.insert(it.rows.begin() + 1, it.rows[1]);
         it.cells.insert(it.cells.begin() + 1, it.cells[1]);
         it.cells[2].row = static_cast<std::uint32_t>(it.paragraphs[2].cell = 2);
       },
       "\\trowd\\cellx900\\pard\\intbl a\\cell\\row{\\plain\\trowd\\cellx900\r\n\\pard\\intbl\\cell\r\n\\row\r\n}"
       "\\trowd\\cellx900 b\\cell\\row\\pard c\\par}"},
      // Before a table that begins the text.
      {"\\margl9\\trowd\\cellx900\\pard\\intbl ab\\cell\\row\\pard c\\par}",
       [](RtfDocument& it) {
         it.paragraphs.insert(it.paragraphs.begin(), {0, 0, 0, -1});
       },
       "\\margl9{\\plain\\pard\\par\r\n}\\trowd\\cellx900\\pard\\intbl ab\\cell\\row\\pard c\\par}"},
      // A letter is not taken for a fallback's, nor for the second byte of one that is cut off.
      {"\\uc2 a\\u8364?\\par}", type(4, 0, "x"), "\\uc2 a\\u8364?{x}\\par}"},
      {"{\\f1\\u-3913\\'b7}a\\par}", type(3, 0, "x"), "{\\f1\\u-3913\\'b7x}a\\par}"},
      {"ab{\\*\\x}cd{\\*\\y}\\par}", type(2, 2, ""), "ab{\\*\\x}{\\*\\y}\\par}"},
      {"\\pard{\\*\\pn\\pnlvlbody\\pndec}{\\pntext 1.\\tab}ab\\par}", [](RtfDocument& it) { Split(it, 0, 0, 1); },
       "\\pard{\\*\\pn\\pnlvlbody\\pndec}{\\pntext 1.\\tab}a\\par{\\pntext 2\\tab}b\\par}"},
      {"ab\\par}",
       [](RtfDocument& it) {
         it.fonts.push_back({.number = 7, .name = "Other", .family = "nil", .charset = 0});
         it.colors = {0, 0x123456};
         Format(it, 0, 0, 1, [](CharFormat& format) { format.font = format.color = 1; });
       },
       "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0 Arial;}{\\f7\\fnil\\fcharset0 Other;}}"
       "{\\colortbl;\\red18\\green52\\blue86;}{\\*\\unknown x}{\\f7\\cf1 a}b\\par}"},
  };
  for (const Case& it : cases) EXPECT_EQ(Edited(it.before, it.edit), it.after) << it.before;
}

std::string SavedAfter(std::string_view bytes, const std::function<void(RtfDocument&)>& edit) {
  RtfSource source;
  const RtfDocument read = ReadRtf(bytes, BytesToUtf8, &source);
  RtfOriginal original(std::string(bytes), read, std::move(source));
  original.SetUnedited(read);
  RtfDocument edited = read;
  edit(edited);
  return original.WithEdits(edited, BytesToUtf8).value_or("refused");
}

TEST(RtfOriginal, FilesWithoutAFrameOfTheirOwnKeepTheirForm) {
  const auto type = [](RtfDocument& it) { Type(it, 1, 0, "x"); };
  const auto nothing = [](RtfDocument&) {};
  EXPECT_EQ(SavedAfter("", nothing), "");
  EXPECT_EQ(SavedAfter("{\\pard\\qc ab\\par}\n{\\pard c\\par}", type), "{\\pard\\qc axb\\par}\n{\\pard c\\par}");
  const auto recolor = [](RtfDocument& it) {
    it.colors = {0, 0x123456};
    Format(it, 0, 0, 1, [](CharFormat& format) { format.color = 1; });
  };
  EXPECT_EQ(SavedAfter("\n{\\pard ab\\par}", recolor),
            "\n{\\colortbl;\\red18\\green52\\blue86;}{\\pard {\\cf1 a}b\\par}");
  constexpr std::string_view kTail = "{\\rtf1 ab\\par}\0\0tail {x} \\par end"sv;
  EXPECT_EQ(Dump(Read(kTail)), "ab|");
  EXPECT_EQ(SavedAfter(kTail, type), "{\\rtf1 axb\\par}" + std::string(kTail.substr(14)));
}

// Of a long paragraph only what stands around the edit is compared by characters.
TEST(RtfOriginal, AnEditOfALongParagraphIsPutIntoItsPlace) {
  const auto filler = [](std::size_t words) {
    std::string text;
    while (words-- > 0) text += "\\'e9\\u8364?e{\\b w}{\\*\\bkmkstart m} ";
    return text;
  };
  constexpr std::size_t kShown = 8;  // bytes of text of a word
  for (const auto& [before, behind] : {std::pair(1000U, 1000U), std::pair(0U, 2000U), std::pair(2000U, 0U)}) {
    const std::string front = filler(before), back = filler(behind) + "\\par}";
    const std::size_t at = before * kShown;
    const auto edited = [&](std::string_view old_text, std::size_t removed, std::string_view text) {
      const auto type = [&](RtfDocument& document) { Type(document, at, removed, text); };
      const std::string result = Edited(std::string(front).append(old_text).append(back), type);
      const bool is_inside = result.starts_with(front) && result.ends_with(back);
      return is_inside ? result.substr(front.size(), result.size() - front.size() - back.size()) : "elsewhere";
    };
    EXPECT_EQ(edited("x ", 0, "y"), "yx ") << before;
    EXPECT_EQ(edited("abc", 2, ""), "c") << before;
    EXPECT_EQ(edited("abc", 1, "\xE2\x82\xAC"), "\\u8364?bc") << before;
  }
}

// Two numbers that change places, or change alike, are another look.
TEST(RtfOriginal, AnotherLookOfAParagraphAndItsEndIsSeen) {
  const auto look = [](RtfDocument& it) { it.paragraphs[0].format = it.paragraphs[0].mark_format = 1; };
  EXPECT_EQ(SavedAfter("{\\rtf1\\par\\qc\\b\\par}", look), "{\\rtf1{\\pard\\qc\\b\\par}\\qc\\b\\par}");
}

}  // namespace
}  // namespace tme::rtf
