#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RtfProbe.h"
#include "documents/rtf/RtfPicture.h"
#include "documents/rtf/RtfWriter.h"

namespace tme::rtf {
namespace {

using Writing = bool (*)(const RtfDocument&, const PartSink&);

const DecodeCodePage kDecode = [](int, std::string_view) { return std::string("\u00B7"); };

std::string Written(const RtfDocument& document, Writing write = WriteRtf) {
  std::string bytes;
  EXPECT_TRUE(write(document, [&](std::string_view part) {
    bytes.append(part);
    return true;
  }));
  return bytes;
}

/// The first font is Arial, the second a symbol font, the third "Symbol".
RtfDocument Empty() {
  RtfDocument document;
  document.fonts = {{0, "Arial", "swiss", 0}, {7, "Wingdings", "nil", 2}, {3, "Symbol", "tech", 2}};
  document.colors = {0, 0xFF0080};
  document.char_formats.resize(1);
  document.paragraph_formats.resize(1);
  return document;
}

void AddRun(RtfDocument& document, std::string_view text, const CharFormat& format = {}) {
  document.text.append(text);
  document.char_formats.push_back(format);
  document.runs.push_back(
      {static_cast<std::uint32_t>(text.size()), static_cast<std::uint32_t>(document.char_formats.size() - 1), 0});
}

void AddParagraph(RtfDocument& document, std::string_view text, std::int32_t cell = -1, std::uint32_t format = 0) {
  document.paragraphs.push_back({static_cast<std::uint32_t>(document.runs.size()), format, 0, cell});
  document.text.append(text);
  if (!text.empty()) document.runs.push_back({static_cast<std::uint32_t>(text.size()), 0, 0});
}

/// What stands between the header and the end of the file, its lines ended by LF.
std::string Body(const RtfDocument& document) {
  std::string bytes = Written(document);
  std::erase(bytes, '\r');
  const std::size_t begin = bytes.find("\\uc1\\pard") + 4;
  return bytes.substr(begin, bytes.size() - 2 - begin);
}

TEST(RtfWriterTest, HeaderNamesFontsColoursAndWhatIsKept) {
  RtfDocument document = Empty();
  document.ansi_code_page = 1250;
  document.default_font = 7;
  document.kept_header = "{\\stylesheet{\\s1 x;}}";
  document.document_controls = "\\paperw11906";
  document.kept_section = "{\\header h\\par}";
  AddParagraph(document, "");
  EXPECT_EQ(Written(document),
            "{\\rtf1\\ansi\\ansicpg1250\\uc1\\deff7\r\n"
            "{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}{\\f7\\fnil\\fcharset2 Wingdings;}{\\f3\\ftech\\fcharset2 "
            "Symbol;}}\r\n"
            "{\\colortbl;\\red255\\green0\\blue128;}\r\n"
            "{\\stylesheet{\\s1 x;}}\r\n\\paperw11906\r\n{\\header h\\par}\r\n"
            "\\uc1\\pard\\f0\\par\r\n}\r\n");
}

TEST(RtfWriterTest, CharactersOfATextRun) {
  const std::vector<std::pair<std::string_view, std::string_view>> cases = {
      {"a{b}\\c", " a\\{b\\}\\\\c"},
      {"\u00E9\u20AC7", "\\u233 e\\u8364?7"},
      {"\U0001F600", "\\u-10179?\\u-8704?"},
      {"a\tb\u2028c\fd", " a\\tab b\\line c\\page d"},
      {"1\u00A0-\u00AD\u2011 x", " 1\\~-\\-\\_ x"},
      {"\u201Cq\u201D \u2022", "\\ldblquote q\\rdblquote  \\bullet"},
      {"\uF041", "\\u-4031?"},
      {"a\xFFz", " a\\u-3?z"},
      {std::string_view("\0", 1), "\\u0?"},
  };
  for (const auto& [text, expected] : cases) {
    RtfDocument document = Empty();
    AddParagraph(document, text);
    EXPECT_EQ(Body(document), "\\pard" + std::string(expected) + "\\par\n");
  }
}

TEST(RtfWriterTest, LooksAreWrittenAsDifferences) {
  RtfDocument document = Empty();
  document.extras = {"\\lang1031"};
  document.paragraphs.emplace_back();
  AddRun(document, "a", {.half_points = 20, .bold = true});
  AddRun(document, "b", {.half_points = 20, .color = 1, .italic = true, .underline = Underline::Wave});
  AddRun(document, "c", {.extra = 1, .strike = Strike::Double, .script = Script::Sub});
  AddRun(document, "d", {.font = 1, .background = 1, .capitals = Capitals::Small});
  AddRun(document, "\uF0FC", {.font = 1});
  AddRun(document, "e", {.script = Script::Super});
  EXPECT_EQ(
      Body(document),
      "\\pard\\fs20\\b a\\b0\\i\\ulwave\\cf1 b{\\lang1031\\fs24\\i0\\ulnone\\cf0\\sub\\striked1 c}"
      "\\f7\\fs24\\i0\\ulnone\\cf0\\highlight1\\scaps\\u100 d\\highlight0\\scaps0\\'fc{\\f0\\super e}\\f0\\par\n");
}

TEST(RtfWriterTest, ParagraphLooks) {
  RtfDocument document = Empty();
  document.extras = {"\\keepn\\s3"};
  document.paragraph_formats.push_back({.left = 720, .first_line = -360, .extra = 1, .alignment = Alignment::Center});
  document.paragraph_formats.push_back({.right = 5,
                                        .space_before = 1,
                                        .space_after = 2,
                                        .line_spacing = 360,
                                        .line_multiple = true,
                                        .page_break_before = true,
                                        .tabs = {{720, TabKind::Left, TabLeader::Dots}, {900, TabKind::Decimal}}});
  AddParagraph(document, "a", -1, 1);
  AddParagraph(document, "b", -1, 1);
  AddParagraph(document, "c", -1, 2);
  EXPECT_EQ(Body(document),
            "\\pard\\keepn\\s3\\qc\\li720\\fi-360 a\\par\nb\\par\n"
            "\\pard\\ri5\\sb1\\sa2\\sl360\\slmult1\\pagebb\\tldot\\tx720\\tqdec\\tx900 c\\par\n");
}

TEST(RtfWriterTest, ListsCountTheirItems) {
  RtfDocument document = Empty();
  document.paragraph_formats.push_back({.list = ListKind::Bullet});
  document.paragraph_formats.push_back({.list_start = 3, .list = ListKind::UpperRoman});
  document.paragraph_formats.push_back({.list_id = 2, .list = ListKind::LowerLetter, .list_level = 1});
  for (const std::uint32_t format : {1U, 1U, 2U, 2U, 3U, 0U, 3U}) AddParagraph(document, "x", -1, format);
  EXPECT_EQ(
      Body(document),
      "\\pard{\\pntext\\bullet\\tab}{\\*\\pn\\pnlvlblt\\pnindent0{\\pntxtb\\'95}}x\\par\n"
      "{\\pntext\\bullet\\tab}x\\par\n"
      "\\pard{\\pntext III.\\tab}{\\*\\pn\\pnlvlbody\\pnucrm\\pnindent0\\pnstart3{\\pntxta.}}x\\par\n"
      "{\\pntext IV.\\tab}x\\par\n"
      "\\pard{\\listtext a.\\tab}\\ls2\\ilvl1 x\\par\n\\pard x\\par\n\\pard{\\listtext b.\\tab}\\ls2\\ilvl1 x\\par\n");
}

TEST(RtfWriterTest, FieldsAroundTheirRuns) {
  RtfDocument document = Empty();
  document.fields = {{"http://x/\\", "", 0}, {"", "{\\*\\fldinst TOC}", 0}, {"", "{\\*\\fldinst PAGE}", 2}};
  document.paragraphs.emplace_back();
  AddRun(document, "a", {.field = 1});
  AddRun(document, "b", {.field = 1, .bold = true});
  AddRun(document, "c");
  AddRun(document, "d", {.field = 2});
  document.paragraphs.back().mark_format = static_cast<std::uint32_t>(document.char_formats.size() - 1);
  document.paragraph_formats.push_back({.left = 9});
  document.paragraphs.push_back({static_cast<std::uint32_t>(document.runs.size()), 1, 0, -1});
  AddRun(document, "e", {.field = 3});
  AddRun(document, "f", {.field = 2});
  AddRun(document, "g");
  EXPECT_EQ(Body(document),
            "\\pard{\\field{\\*\\fldinst HYPERLINK \"http://x/\\\\\\\\\"}{\\fldrslt a\\b b}}c"
            "{\\field{\\*\\fldinst TOC}{\\fldrslt d\\par\n"
            "\\pard\\li9{\\field{\\*\\fldinst PAGE}{\\fldrslt e}}f}}\\pard\\li9 g\\par\n");
}

TEST(RtfWriterTest, ObjectsStandWhereTheyStood) {
  RtfDocument document = Empty();
  document.objects = {{ObjectKind::Invisible, "{\\*\\bkmkstart b}", "", 0, 0, ""},
                      {ObjectKind::Picture, "", "\x89PNG\x01", 300, 0, ""}};
  AddParagraph(document, "a");
  document.runs.push_back({0, 0, 1});
  document.runs.push_back({0, 0, 2});
  AddRun(document, "b");
  EXPECT_EQ(Body(document), "\\pard a{\\*\\bkmkstart b}{\\pict\\pngblip\\picwgoal300\n89504e4701}b\\par\n");
}

TEST(RtfWriterTest, PicturesSayTheirPixels) {
  using namespace std::string_literals;
  const std::string png = "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\1\2\0\0\0\3"s;
  const std::string jpeg = "\xFF\xD8\xFF\xE0\0\4ab\xFF\xC4\0\2\xFF\xC2\0\x11\x08\0\3\1\2"s;
  for (const std::string& bytes : {png, jpeg, jpeg.substr(0, 12), "\x89PNG"s}) {
    const bool is_whole = bytes.size() > 12;
    const std::string rtf = RtfOfPicture(bytes, 0, 90);
    EXPECT_NE(rtf.find(is_whole ? "blip\\picw258\\pich3\\picwgoal3870\\pichgoal90\r\n" : "blip\\pichgoal90\r\n"),
              std::string::npos)
        << rtf;
    const PictureGroup read = ReadPicture(rtf);
    EXPECT_EQ(read.bytes, bytes);
    EXPECT_EQ(read.height, 90);
  }
}

/// A row of two cells; the first holds a table of one cell, then nothing; a row with a kept definition that lacks the
/// second, empty cell after it.
RtfDocument NestedTables() {
  RtfDocument document = Empty();
  document.tables = {{-1}, {0}};
  document.rows = {{0, ""}, {1, ""}, {0, "\\trowd\\x\\cellx5"}};
  document.cells = {{0, 1000, 1, 1}, {1, 500, 1, 1}, {0, 2000, 2, 1}, {2, 5, 1, 1}, {2, 9, 1, 1}};
  AddParagraph(document, "before");
  AddParagraph(document, "outer", 0);
  AddParagraph(document, "inner", 1);
  AddParagraph(document, "right", 2);
  AddParagraph(document, "lower", 3);
  AddParagraph(document, "after");
  return document;
}

TEST(RtfWriterTest, TablesAndTablesInThem) {
  const std::string outer = "\\trowd\\trgaph108\\cellx1000\\clvmgf\\cellx2000";
  EXPECT_EQ(Body(NestedTables()),
            "\\pard before\\par\n" + outer +
                "\n\\pard\\intbl outer\\par\n\\pard\\intbl\\itap2 inner\\nestcell\n"
                "{\\*\\nesttableprops\\trowd\\trgaph108\\cellx500\\nestrow}{\\nonesttables\\par}\n"
                "\\pard\\intbl\\cell\\pard\\intbl right\\cell\n" +
                outer +
                "\\row\n\\trowd\\x\\cellx5\n\\pard\\intbl lower\\cell\n\\pard\\intbl\\cell\\row\n\\pard "
                "after\\par\n");
}

TEST(RtfWriterTest, WhatIsReadComesBack) {
  const std::vector<std::string_view> files = {
      R"({\rtf1\ansi\deff1{\fonttbl{\f1\froman\fcharset0 Times;}{\f2\ftech\fcharset2 Symbol;}}{\colortbl;\red1\green2\blue3;}
{\stylesheet{\s1 Heading;}}\paperw9000{\header\pard h\par}\pard\s1\qc\keepn\tqr\tldot\tx900\b a{\i\cf1 b\super c}\par
\pard\plain\f2 abc\'b7{\f1\fs40\lang1031 x\line y\~z}\page\par})",
      R"({\rtf1\ansi{\fonttbl{\f0\fnil\fcharset0 A;}}\uc0 \u8364 x{\*\bkmkstart \u8364 b}{\uc1{\footnote\pard n\par}}
{\field{\*\fldinst{HYPERLINK "http://x/" }}{\fldrslt a{\b b\par\pard\qr}c}} d\par{\pntext\'b7\tab}\pard{\*\pn\pnlvlblt{\pntxtb\'b7}}one\par
{\pntext\'b7\tab}two\par\pard{\pntext i.\tab}{\*\pn\pnlvlbody\pnstart4\pnlcrm}three\par{\pict\wmetafile8 0102}\par})",
      R"({\rtf1\ansi{\fonttbl{\f0\fnil\fcharset0 A;}}\trowd\trgaph70\clvmgf\cellx1000\cellx3000\pard\intbl a\par b\cell
\pard\intbl\itap2 in\nestcell{\*\nesttableprops\trowd\cellx500\nestrow}{\nonesttables\par}\pard\intbl c\cell\row
\trowd\clvmrg\cellx1000\cellx3000\pard\intbl\cell d\cell\row\pard after\par})",
      R"({\rtf1\ansi\deff0{\fonttbl{\f0\ftech\fcharset2 Symbol;}}\f9 unknown font\par})",
      R"({\rtf1\f0 of no table \plain plain{\hich\f8\dbch\f9 classes}\par})",
      R"({\rtf1{\fonttbl{\f0 A;}}plain \f0 said\f7 missing\f0{\b again}\par})"};
  for (const std::string_view file : files) {
    const RtfDocument first = ReadRtf(file, kDecode);
    const std::string saved = Written(first);
    EXPECT_EQ(Describe(ReadRtf(saved, kDecode)), Describe(first)) << saved;
  }
}

/// What is kept besides looks is written as it was read, and says the same when it is read again.
TEST(RtfWriterTest, WordsOfParagraphsSectionsAndFontsComeBack) {
  constexpr std::string_view kAsRead[] = {
      R"({\pntext 1)\tab}{\*\pn\pnlvlbody\pnf0\pnindent360\pnhang\pndec\pnstart1{\pntxta )}}x\par)",
      R"(\pard{\pntext(c)\tab}{\*\pn\pnlvlbody\pnlcltr\pnstart3\pnsp9{\pntxtb (}{\pntxta )}}x\par)",
      R"(\pard{\pntext(iv)\tab}{\*\pn\pnlvlbody\pnlcrm\pnindent0\pnstart4{\pntxtb(}{\pntxta)}}x\par)",
      R"(\pard\s1\ql\li0\ri0\fi0\sb0\sa0\lin0\rin0\sl0\slmult0\pagebb0\ls0 x\par)",
      R"(\pard\rtlpar\ri720\lin720\rin0 x\par)",
      R"(\pard\posx9\posyb\posnegy-5\absw2000\overlay\shading500\cfpat1\cbpat1\bgdkcross\ltrpar\outlinelevel2 x\par)",
      R"(\pard\brdrt\brdrtnthmg\brdrw75\brsp20\brdrcf1\brdrbtw\brdrart7\brdrnew3\keep\contextualspace x\par)",
      R"(\sectd\cols2\colno1\colw99\colsr9\colno2\colw50\linebetcol\pgbrdrt\brdrs\brdrw15\pgbrdrb\brdrs\pgnnew)",
      R"(x\sect\sectd\sbknone\pgbrdrl\brdrdot\titlepg\pgnrestart\pgwsxn9{\headerf first}{\footer{\b f}})",
      R"({\f0\fbidi\fswiss\fcharset0\fprq2{\*\panose 020b}Arial{\*\falt Helvetica};})",
      R"({\colortbl;\red1\green0\blue0;\caccentone\ctint255\cshade191\red2\green3\blue4;\red5\green6\blue7;})",
      R"({\f7\froman\fcharset0{\fontemb\fttruetype 00ff}Own;})"};
  for (const std::string_view words : kAsRead) {
    const bool is_font = words.starts_with("{\\f");
    const std::string body = is_font ? "{\\fonttbl" + std::string(words) + "}x\\par" : std::string(words);
    const bool has_colors = words.starts_with("{\\colortbl");
    const RtfDocument first = ReadRtf(
        (has_colors ? "{\\rtf1\\ansi" : "{\\rtf1\\ansi{\\colortbl;\\red1;}") + body + "\\pard y\\par}", kDecode);
    std::string saved = Written(first);
    EXPECT_EQ(Describe(ReadRtf(saved, kDecode)), Describe(first)) << saved;
    std::erase(saved, '\n');
    std::erase(saved, '\r');
    EXPECT_NE(saved.find(words), std::string::npos) << words << "\n" << saved;
  }
}

/// What a broken file says at odd places, said again, is neither lost nor said twice.
TEST(RtfWriterTest, TextOfABrokenFileComesBack) {
  std::string nested;
  for (int i = 0; i < 900; ++i) nested += "{{\\fldinst x}";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"symbols of a name", R"({\fonttbl{\f1\fcharset3 Symbol;}}\f1\u65 ?b)"},
      {"symbols of a name alone", R"({\fonttbl{\f0 A;}{\f1 Symbol;}}\f1\u65 ?b)"},
      {"the same behind text", R"(Sym{\fonttbl{\f0 Symbol;}}\u65 ?b)"},
      {"symbols with a code page", R"({\fonttbl{\f1\fcharset2\cpg1252 Symbol;}}\f1\u-4031?)"},
      {"no such symbol", R"({\fonttbl{\f1\fcharset2 Symbol;}}\f1\u-3969?)"},
      {"braces among symbols", R"({\fonttbl{\f1\fcharset2 W;}}\f1\u92?\u123?)"},
      {"a font's number again", R"({\fonttbl{\f0\fcharset2 Symbol;}}a{\fonttbl{\f0 A;}}b\f0 c)"},
      {"a default font's number again", R"({\fonttbl{\f0 A;}}a{\fonttbl{\f0\fcharset2 Symbol;}}b\f0 c)"},
      {"a font behind its text", R"({\fonttbl{\f1\fcharset2 W;}}\f1\hich\f0 a\f-1 b{\fonttbl{\f0\fcharset2 Symbol;}})"},
      {"a default font behind text", R"({\fonttbl{\f1\fcharset2 Symbol;}}a\deff1 b)"},
      {"a section in a kept group", R"(a{\sect\pict 00}b)"},
      {"a section in an empty field", R"({\field\sect{\*\fldinst X}}b)"},
      {"half a character in a kept group", R"(a{\u-10179?\footnote x}b)"},
      {"a fallback in a kept group", R"(\uc3{\u10 abc\footnote x}d)"},
      {"binary data in a kept group", R"(\uc2 a{\bin4 }}}}\footnote \u65 ab}c)"},
      {"bytes behind the last brace", "a}\nb{c"},
      {"fields in a thousand groups", nested + "text" + std::string(900, '}')},
  };
  for (const auto& [name, body] : cases) {
    const RtfDocument first = ReadRtf("{\\rtf1" + body + "}", kDecode);
    const RtfDocument again = ReadRtf(Written(first), kDecode);
    EXPECT_EQ(again.text, first.text) << name;
    EXPECT_FALSE(again.losses.ended_early) << name;
  }
}

TEST(RtfWriterTest, PlainText) {
  EXPECT_EQ(Written(NestedTables(), WriteRtfAsText), "before\r\nouter\r\ninner\r\n\tright\r\nlower\t\r\nafter");
  RtfDocument document = Empty();
  document.objects = {{ObjectKind::Placeholder, "{\\object}", "", 0, 0, "Embedded object"},
                      {ObjectKind::Invisible, "{\\bkmkstart}", "", 0, 0, "b"}};
  AddParagraph(document, "a\u2028\u00E9");
  document.runs.push_back({0, 0, 1});
  document.runs.push_back({0, 0, 2});
  AddParagraph(document, "");
  EXPECT_EQ(Written(document, WriteRtfAsText), "a\r\n\u00E9[Embedded object]\r\n");
}

TEST(RtfWriterTest, ComesInPartsAndStopsWhenAsked) {
  RtfDocument document = Empty();
  for (int i = 0; i < 100; ++i) AddParagraph(document, std::string(5000, 'x'));
  document.objects = {{ObjectKind::Placeholder, "{" + std::string(300'000, 'y') + "}", "", 0, 0, ""}};
  document.runs.push_back({0, 0, 1});
  std::size_t parts = 0;
  std::size_t largest = 0;
  EXPECT_TRUE(WriteRtf(document, [&](std::string_view part) {
    ++parts;
    largest = std::max(largest, part.size());
    return true;
  }));
  EXPECT_GE(parts, 10U);
  EXPECT_LE(largest, std::size_t{1} << 17);
  parts = 0;
  EXPECT_FALSE(WriteRtf(document, [&](std::string_view) { return ++parts < 2; }));
  EXPECT_EQ(parts, 2U);
}

}  // namespace
}  // namespace tme::rtf
