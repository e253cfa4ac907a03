#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "RtfProbe.h"

namespace tme::rtf {
namespace {

constexpr std::string_view kHead =
    R"({\rtf1\ansi\deff0{\fonttbl{\f0\fcharset0 Roman;}{\f1\fcharset204 Cyr;}{\f2\fcharset128 Jap;}{\f3\fcharset2 Symbol;})"
    R"({\f4\fcharset2 Wings;}}{\colortbl;\red255\green0\blue0;\red0\green0\blue1;})";

struct ReadCase {
  const char* name;
  std::string rtf;  ///< stands behind kHead; the last brace is added
  std::string expected;
  std::string losses = {};
};

void Check(const std::vector<ReadCase>& cases) {
  for (const ReadCase& it : cases) {
    const RtfDocument document = Read(std::string(kHead) + it.rtf + "}");
    EXPECT_EQ(Dump(document), it.expected) << it.name;
    EXPECT_EQ(Dump(document.losses), it.losses) << it.name;
  }
}

TEST(RtfReader, Characters) {
  const std::string none = BytesToUtf8(1251, "\x98");  // some systems have a control character there
  Check({
      {"paragraphs: the last end makes none, text behind it does", R"(a\par b\par)", "a|b|"},
      {"line ends are nothing, escaped ones are paragraphs", "a\r\nb\\\nc\\\r\nd", "ab|c|d|"},
      {"special characters", R"(\'80\emdash\endash\bullet\lquote x\~\-\_\{\\\}\tab\line\page y)",
       "\u20AC\u2014\u2013\u2022\u2018x\u00A0\u00AD\u2011{\\}~$^y|"},
      {"font pages, back at the group's end", R"({\f1 \'ea\'ee}{\f3 ab\'b7}{\f4 \'fc}\'e9)",
       "[Cyr:\u043A\u043E][Symbol:\u03B1\u03B2\u2022][Wings:\uF0FC]\u00E9|"},
      {"double bytes, mixed with raw ones and with ASCII as second byte",
       "{\\f2 \\'82\\'a0\\'83\\'5c\\'83\\\\\\'83A\x82\\'a2}", "[Jap:\u3042\u30BD\u30BD\u30A2\u3044]|"},
      {"half a character", R"({\f2 \'82}x)", "[Jap:\uFFFD]x|", "unknown 1 "},
      {"a byte without a character", R"(\f1\'98)", "[Cyr:" + none + "]|", none == "\uFFFD" ? "unknown 1 " : ""},
      {"unicode, what is skipped behind it",
       R"(\u8364?\u8364\'80\u-4 ?{\uc2\u233 ab\uc0\u233 c}\u233\~\u233\endash\u233{x}\u233\b0 y)",
       "\u20AC\u20AC\uFFFC\u00E9\u00E9c\u00E9\u00E9\u00E9x\u00E9y|"},
      {"surrogate pairs, and halves", R"(\u-10179?\u-8694?\u-10179?\u-10179?x\u-8694?)",
       "\U0001F60A\uFFFD\uFFFDx\uFFFD|", "unknown 3 "},
      {"two forms", R"({\upr{a?}{\*\ud{a\u233?}}}b)", "a\u00E9b|"},
      {"binary data is no text", "a\\bin3 }}}b", "ab|"},
  });
}

TEST(RtfReader, Formats) {
  Check({
      {"characters",
       R"({\b a\i b}{\ul\strike c\ulnone d}\fs20\cf1\highlight2 e\plain{\super f}{\dn4 g}\v\scaps h\v0\caps0 i)",
       "[b:a][b,i:b][ul1,strike1:c][strike1:d][fs20,cf1,cb2:e][super:f][sub,raise-4:g][v,scaps:h]i|"},
      {"paragraphs", R"(\pard\qc\li10\ri20\fi-5\sb1\sa2\sl240\slmult1\tqr\tldot\tx9\tb7 a\par\pagebb b\par\pard c)",
       "(q2,li10,ri20,fi-5,sb1,sa2,sl240,slmult1,tab11:9,tab40:7)a|"
       "(q2,li10,ri20,fi-5,sb1,sa2,sl240,slmult1,pagebb1,tab11:9,tab40:7)b|c|"},
      {"a group gives its paragraph back", R"(\pard\li1{\li2 a\par}b)", "(li2)a|(li1)b|"},
      {"words that are kept; the last of a name counts, but for borders",
       R"(\pard\s1\keepn\brdrt\brdrs\brdrb\brdrs\s2\rtlch\lang1\kerning2\ltrch\lang3 a\plain\unknown b)",
       R"((\s2\keepn\brdrt\brdrs\brdrb\brdrs)[\lang3\kerning2:a][\unknown:b]|)"},
      {"no colour of that number", R"(\cf99 a\cf-1 b)", "ab|"},
      {"sections",
       R"(\pgbrdrt\brdrs\brdrw9\colno1\colw5\colno2\colw7 a\sect\sectd\sbknone b\par\sect{\headerf h}\pgnx c)",
       R"(a<section \sect\sectd\sbknone>|b|<section \sect{\headerf h}\pgnx>|c|)"},
      {"a section in a cell", R"(\trowd\cellx9\intbl a\sect\cols2 b\cell\row)", R"(0/a|<section \sect\cols2>|1/b|)"},
      {"what a style does not say", R"(\pard\s1\li0\ql\sb5\sb0\pagebb0\slmult0\ls0 a\par\li5\ls2 b)",
       R"((said489,\s1)a|(li5,ls2,said232,\s1)b|)"},
  });
}

TEST(RtfReader, Lists) {
  constexpr std::string_view kTables =
      R"({\*\listtable{\list{\listlevel\levelnfc23}{\listlevel\levelnfc4\levelstartat3}\listid7}})"
      R"({\*\listoverridetable{\listoverride\listid7\ls1}})";
  const std::string tables(kTables);
  Check({
      {"by tables", tables + R"(\pard{\listtext\'b7\tab}\ls1 a\par\ilvl1 b\par\pard c)",
       "(list1,start1,ls1)a|(list3,level1,start3,ls1)b|c|"},
      {"by their own words", R"(\pard{\*\pn\pnlvlbody\pnucrm\pnstart2{\pntxta.}}{\pntext II.\tab}a\par{\pntext III.}b)",
       R"((list6,start2,{\*\pn\pnlvlbody\pnucrm\pnstart2{\pntxta.}})a|)"
       R"((list6,start2,{\*\pn\pnlvlbody\pnucrm\pnstart2{\pntxta.}})b|)"},
      {"by their numbers, which go on or begin again",
       R"({\pntext 4.\tab}a\par{\pntext 5.}b\par c\par{\pntext (h)}d\par{\pntext (i)}e\par{\pntext ii)}f\par{\pntext 1.2}g)",
       "(list2,start4)a|(list2,start4)b|c|(list3,start8)d|(list3,start8)e|(list5,start2)f|(list2,start2)g|"},
      {"by their text alone", R"({\listtext 1.\tab}a\par{\listtext\'b7}\ls9 b\par c)",
       "(list2,start1)a|(list1,start1,ls9)b|(ls9)c|"},
  });
  EXPECT_EQ(Read(std::string(kHead) + tables + "a}").kept_header, tables);
}

TEST(RtfReader, Tables) {
  Check({
      {"cells", R"(\trowd\cellx1\cellx2\intbl a\cell b\par c\cell\row\pard d)", "0/a|1/b|1/c|d|"},
      {"nested",
       R"(\trowd\cellx9\pard\intbl a\par\itap2 b\nestcell{\*\nesttableprops\trowd\cellx5\nestrow}{\nonesttables\par})"
       R"(\itap1 c\cell\row)",
       "0/a|1/b|0/c|"},
      {"a table on the way to a deeper one, with nothing of its own",
       R"(\trowd\cellx9\pard\intbl\itap2 a\par\itap5 b\nestcell{\*\nesttableprops\trowd\cellx4\nestrow})"
       R"(\itap2 c\nestcell{\*\nesttableprops\trowd\cellx4\nestrow}\itap1 d\cell\row)",
       "1/a|4/b|1/c|0/d|"},
      {"text without cells or rows", R"(a\cell b\row\intbl c)", "0/a|1/b|2/c|"},
      {"rows without an end", R"(\trowd\cellx1\intbl a\cell\pard b)", "0/a|b|"},
  });
  const RtfDocument merged = Read(
      R"({\rtf1\trowd\clvmgf\cellx5\trgaph7\cellx9\pard\intbl a\cell b\cell\row)"
      R"(\trowd\clvmrg\cellx5\clmgf\cellx7\clmrg\cellx9 \cell c\cell\cell\row\trowd\clvmrg\cellx5 text\cell\row})");
  std::string cells;
  for (const Cell& cell : merged.cells) {
    cells += std::to_string(cell.row) + ":" + std::to_string(cell.right_edge) + "," + std::to_string(cell.row_span) +
             "," + std::to_string(cell.column_span) + " ";
  }
  EXPECT_EQ(cells, "0:5,2,1 0:9,1,1 1:5,0,1 1:7,1,2 1:9,1,0 2:5,1,1 ");
  EXPECT_EQ(merged.rows[0].definition, R"(\trowd\clvmgf\cellx5\trgaph7\cellx9)");
  EXPECT_EQ(merged.tables.size(), 1u);
  const RtfDocument behind = Read(R"({\rtf1\trowd\cellx5\cellx9\trkeep\clvmgf\trqc\pard\intbl a\cell b\cell\row})");
  EXPECT_EQ(behind.rows[0].definition, R"(\trowd\cellx5\cellx9\trkeep)") << "words of a cell that does not come";
}

TEST(RtfReader, ObjectsAndFields) {
  const std::string png = R"(\pict{\*\blipuid 00}\pngblip\picwgoal200\pichgoal100\picscalex50 89504e470d0a)";
  Check({
      {"pictures", "a{" + png + "}{\\*\\shppict{" + png + "}}{\\nonshppict{\\pict\\wmetafile8 01}}{\\pict\\bin2 }}00}b",
       "a<picture 6 100x100><picture 6 100x100><placeholder Picture>b|"},
      {"metafile, object, drawing",
       R"({\pict\emfblip 01}{\object{\*\objdata 00}{\result x}}{\object}{\shp{\*\shpinst{\sp{\sn a}}{\shptxt y\par}}})",
       "<placeholder Picture (enhanced metafile)><placeholder x><placeholder Embedded object><placeholder y>|"},
      {"footnote", R"(a{\super\chftn}{\footnote{\super\chftn} n\'e9{\b o}\par p{\footnote q}}b)",
       R"(a[super:<invisible {\chftn}>]<placeholder né)"
       "o\np>b|"},
      {"what is not seen; behind the last end it joins the paragraph before",
       R"(a{\*\bkmkstart x}{\*\bkmkend x}{\*\new{\u9 y}}b\par{\xe{z}})",
       R"(a<invisible {\*\bkmkstart x}{\*\bkmkend x}{\*\new{\u9 y}}>b)"
       R"(<invisible {\xe{z}}>)"
       "|"},
      {"links", R"({\field{\*\fldinst{HYPERLINK "http://a/\'e9" \\o "t" \\l "p"}}{\fldrslt{\b x}y\plain z}}w)",
       "[b,field 1 http://a/\u00E9#p:x][field 1 http://a/\u00E9#p:yz]w|"},
      {"fields in fields",
       R"({\field{\*\fldinst TOC}{\fldrslt a{\field{\*\fldinst PAGE}{\fldrslt 5}}}}{\field{\*\fldinst NIL}})",
       R"([field 1 :a][field 2 :5]<invisible {\field{\*\fldinst NIL}}>|)"},
  });
}

TEST(RtfReader, WhatStandsAroundTheText) {
  const RtfDocument document = Read(
      R"({\rtf1\ansi\ansicpg1251\deff5\paperw1{\fonttbl\f5\fswiss\fcharset204 A{\*\falt B};\f7 C;}{\colortbl\red1\green2\blue3;;}\paperw2)"
      R"({\stylesheet{\s1 x;}}{\*\generator g;}\viewkind4\sectd\headery3{\header h}{\*\later l}\pard a\'e9{\info{\title t}}})");
  EXPECT_EQ(Dump(document), "a\u0439|");
  EXPECT_EQ(document.kept_header, R"({\stylesheet{\s1 x;}}{\*\generator g;}{\*\later l}{\info{\title t}})");
  EXPECT_EQ(document.kept_section, R"({\header h})");
  EXPECT_EQ(document.document_controls, R"(\paperw2\viewkind4\sectd\headery3)");
  EXPECT_EQ(document.ansi_code_page, 1251);
  ASSERT_EQ(document.fonts.size(), 2u);
  EXPECT_EQ(document.fonts[0].name + document.fonts[0].family + document.fonts[1].name, "AswissC");
  EXPECT_EQ(document.colors, (std::vector<std::uint32_t>{0, 0, 0x010203}));
}

TEST(RtfReader, MacintoshFonts) {
  const std::pair<int, std::pair<std::string_view, std::string_view>> fonts[] = {
      {78, {"\\'82\\'a0", "\u3042"}}, {80, {"\\'d6\\'d0", "\u4E2D"}}, {83, {"\\'e0", "\u05D0"}},
      {84, {"\\'c7", "\u0627"}},      {85, {"\\'b0", "\u0391"}},      {86, {"\\'dd", "\u0131"}},
      {88, {"\\'8b", "\u010D"}},      {89, {"\\'df", "\u044F"}}};
  for (const auto& [charset, text] : fonts) {
    const std::string begin = "{\\rtf1{\\fonttbl{\\f0\\fcharset" + std::to_string(charset) + " M;}}";
    EXPECT_EQ(Read(begin + std::string(text.first) + "}").text, text.second) << charset;
  }
}

TEST(RtfReader, BrokenFiles) {
  struct Broken {
    std::string bytes, expected, losses;
  };
  std::string deep = "{\\rtf1 a";
  for (int i = 0; i < 300'000; ++i) deep += '{';
  const std::string deep_text = "{\\rtf1 a" + deep.substr(8, 2000) +
                                "\\b b{\\field{\\*\\fldinst PAGE}{\\fldrslt c}}\\u233?" + std::string(2000, '}') + "d}";
  const std::array<Broken, 16> cases = {{
      {"", "|", "not-rtf "},
      {"plain \xC3\xA9\r\nb\rc\n", "plain \u00E9|b|c|", "not-rtf "},
      {"\xE9", "\u00E9|", "not-rtf "},
      {"a\v\x1B", "a|\x1B|", "not-rtf "},
      {"{\\rtf1 a\\u27 ?\\u10 ?\\'0d\\'07}", "a\x1B$\x07|", ""},
      {"{\\rtf", "|", "early "},
      {"{\\rtf1 a{\\b b", "a[b:b]|", "early "},
      {"{\\rtf1 a}b}c", "ab|", "early "},
      {"{\\rtf1 a}} \r\n", "a|", "early "},
      {"{\\rtf1 a\\", "a|", "early "},
      {"{\\rtf1 a\\bin99 b}", "a|", "early "},
      {"{\\rtf1 a{\\*\\x {b\\bin9 c}", "a<invisible {\\*\\x {b}}>|", "early "},
      {"{\\rtf1\\fs99999999999 a\\'zz\\'4", "[fs3276:azz4]|", "early "},
      {deep, "a|", "limits 1 early "},
      {deep_text, "abc\u00E9d|", "limits 1 "},
      {"{\\rtf1 a}\nb\1", "a|", ""},
  }};
  for (const Broken& it : cases) {
    const RtfDocument document = Read(it.bytes);
    EXPECT_EQ(Dump(document), it.expected) << it.bytes.substr(0, 40);
    EXPECT_EQ(Dump(document.losses), it.losses) << it.bytes.substr(0, 40);
  }
}

// A few bytes said again and again must not become many.
TEST(RtfReader, RepetitionStaysSmall) {
  std::string tabs = "{\\rtf1 ";
  std::string rows = "{\\rtf1\\trowd" + std::string(5000, 'x') + "\\cellx1 ";
  std::string words = "{\\rtf1 ";
  for (int i = 0; i < 20'000; ++i) {
    tabs += "\\tx" + std::to_string(i) + "\\par";
    rows += "\\cell\\row";
    words += "\\a" + std::string{static_cast<char>('a' + i % 26), static_cast<char>('a' + i / 26 % 26)} + " x";
  }
  std::size_t bytes = 0;
  for (const ParagraphFormat& format : Read(tabs).paragraph_formats) bytes += format.tabs.size() * sizeof(TabStop);
  EXPECT_LT(bytes, 2 * tabs.size());
  bytes = 0;
  for (const Row& row : Read(rows).rows) bytes += row.definition.size();
  EXPECT_LT(bytes, 2 * rows.size());
  bytes = 0;
  for (const std::string& extra : Read(words).extras) bytes += extra.size();
  EXPECT_LT(bytes, 4 * words.size());
}

}  // namespace
}  // namespace tme::rtf
