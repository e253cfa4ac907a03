#include <gtest/gtest.h>

#include "documents/rtf/RtfContents.h"
#include "documents/rtf/RtfOleData.h"
#include "files/CodePage.h"

namespace tme::rtf {
namespace {

using namespace std::string_literals;

std::string Hex(std::string_view bytes) {
  std::string hex;
  for (const char c : bytes)
    for (const int shift : {4, 0}) hex += "0123456789abcdef"[(static_cast<unsigned char>(c) >> shift) & 15];
  return hex;
}

std::string Number(std::size_t number) { return {static_cast<char>(number), static_cast<char>(number >> 8), 0, 0}; }
std::string Counted(const std::string& text) { return Number(text.size() + 1) + text + '\0'; }

/// The data of an embedded object.
std::string Embedded(const std::string& class_name, const std::string& native) {
  return Number(0x501) + Number(2) + Counted(class_name) + Number(0) + Number(0) + Number(native.size()) + native;
}

/// Each part as "kind name bytes <target>…", marks behind: linked, updated, copy.
std::string List(std::string_view bytes) {
  const Contents contents = ListContents(bytes, BytesToUtf8);
  std::string list;
  for (const Part& part : contents.parts) {
    constexpr std::string_view kinds[] = {"object", "template", "field", "reference", "link", "picture", "unshown"};
    list.append(list.empty() ? "" : "; ").append(kinds[static_cast<std::size_t>(part.kind)]);
    if (!part.name.empty()) list.append(" " + part.name);
    if (!part.declared_class.empty()) list.append(" (" + part.declared_class + ")");
    if (part.bytes > 0) list.append(" ").append(std::to_string(part.bytes));
    if (part.count > 1) list.append(" x").append(std::to_string(part.count));
    for (const std::string& target : part.targets) list.append(" <" + target + ">");
    if (!part.shown.empty()) list.append(" shows ").append(part.shown);
    list.append(part.is_linked ? " linked" : "").append(part.is_updated ? " updated" : "");
    list.append(part.is_copy ? " copy" : "");
  }
  return list;
}

TEST(RtfContents, ListsWhatAFileHoldsBesideItsText) {
  const struct {
    std::string rtf, list;
  } cases[] = {
      {"{\\object\\objemb{\\*\\objclass Excel.Sheet.12}{\\*\\objdata 0105}{\\result{\\pict\\pngblip 8950}}}",
       "object Excel.Sheet.12 2; picture PNG 2"},
      {"{\\object\\objautlink\\rsltpict{\\*\\objclass Word.Document}{\\*\\objdata " +
           Hex(Number(0x501) + Number(1) + Counted("Word.Document.8") + Counted("C:\\a.doc") + Counted("A1")) + "}}",
       "object Word.Document.8 (Word.Document) 48 <C:\\a.doc> <A1> linked updated"},
      // Word processors read past what stands between the digits, and take data without an object for one.
      {"{\\*\\objdata\r\n01 05{\\*\\x ab}\\bin2 ab\\'cc0\r\n0}", "object 5"},
      {"{\\object{\\*\\objupdate}{\\*\r\n\\objdata " +
           Hex(Embedded("Package", "\2\0a.exe\0C:\\x\\a.exe\0\0\0\3\0"s + Counted("C:\\t\\a.exe") + Number(0))) + "}}",
       "object Package 74 <a.exe> <C:\\x\\a.exe> <C:\\t\\a.exe> updated"},
      {"{\\header{\\object{\\*\\objdata " + Hex("h\0t\0t\0p\0:\0/\0/\0x\0.\0y\0/\0z\0\0\0 https://a.b/c?d"s) + "}}}",
       "object 42 <https://a.b/c?d> <http://x.y/z>"},
      {"{\\*\\template http://a/b.dotm}{\\field{\\*\\fldinst {\\b hyper}{LINK \"http://q\" \\\\l \"p\"}}{\\fldrslt x}}",
       "template <http://a/b.dotm>; link HYPERLINK <http://q#p> shows x"},
      {"{\\field{\\*\\fldinst HYPERLINK \"http://q\"}{\\fldrslt {\\b www.\\u228?.org}{\\*\\new z}{\\pict 01}\\par 2}} "
       "no "
       "link {\\fldrslt none}",
       "link HYPERLINK <http://q> shows www.\xC3\xA4.org2; picture 1; unshown new 10"},
      {"{\\field{\\*\\fldinst  DDE\\'41UTO\r\n c:\\\\\\\\x \\u228?}{\\fldrslt}}{\\field{\\*\\fldinst PAGE}{\\fldrslt "
       "1}}",
       "field DDEAUTO <c:\\\\x \xC3\xA4>"},
      {"{\\field{\\*\\fldinst {\\field{\\*\\fldinst QUOTE 68 68 69}{\\fldrslt DDE}} \"cmd\"}{\\fldrslt}}",
       "field <{ QUOTE 68 68 69 } \"cmd\">"},
      {"{\\filetbl{\\file\\fid1 a.rtf;}}{\\shp{\\*\\shpinst{\\sp{\\sn pibName}{\\sv \\\\\\\\host\\\\p.png}}"
       "{\\sp{\\sn fLine}{\\sv 0}}{\\*\\hl{\\hlsrc file:///e}}}}",
       "reference file <a.rtf;>; reference pibName <\\\\host\\p.png>; link hlsrc <file:///e>"},
      {"{\\*\\shppict{\\pict\\emfblip 0102}}{\\nonshppict{\\pict\\wmetafile8 01}}",
       "picture enhanced metafile 2; picture Windows metafile 1 copy"},
      {"{\\*\\odd 1{\\*\\even 2}}{\\*\\odd}{\\*\\bkmkstart b}{\\stylesheet{\\*\\cs1 x;}}", "unshown odd 29 x2"},
      {"no rich text", ""},
  };
  for (const auto& [rtf, list] : cases) {
    EXPECT_EQ(List("{\\rtf1\\ansi" + rtf + " text\\par}"), list) << rtf;
    EXPECT_EQ(List(std::string(100'000, '{') + rtf), list) << "deep, and never closed: " << rtf;
  }
}

TEST(RtfContents, CountsWithoutABoundAndListsWithOne) {
  std::string bytes = "{\\rtf1{\\header h{\\footnote f}}{\\headerl h}{\\footerf f}\\chftn{\\footnote\\ftnalt e}";
  bytes += "{\\*\\annotation c}{\\mmath{\\*\\moMath x}}a{\\revised b{\\i c}}d{\\deleted e\\plain f}{\\revised\\u233?}";
  for (std::size_t i = 0; i < kMaxParts + 5; ++i) bytes += "{\\object}{\\*\\new" + std::string(i, 'n') + "}";
  bytes += "}\r\n\0x"s;
  const Contents contents = ListContents(bytes, BytesToUtf8);
  EXPECT_EQ(contents.headers, 2U);
  EXPECT_EQ(contents.footers, 1U);
  EXPECT_EQ(contents.footnotes, 1U);
  EXPECT_EQ(contents.endnotes, 1U);
  EXPECT_EQ(contents.comments, 1U);
  EXPECT_EQ(contents.formulas, 1U);
  EXPECT_EQ(contents.insertions, 2U);
  EXPECT_EQ(contents.deletions, 1U);
  EXPECT_EQ(contents.bytes_behind_end, 4U);
  EXPECT_EQ(contents.parts.size(), 2 * kMaxParts);
  EXPECT_EQ(contents.totals[static_cast<std::size_t>(PartKind::Object)], kMaxParts + 5);
  EXPECT_EQ(contents.totals[static_cast<std::size_t>(PartKind::Unshown)], kMaxParts + 5);
  EXPECT_TRUE(contents.IsActive());
  EXPECT_FALSE(ListContents(std::string(1'000'000, '{'), BytesToUtf8, [](auto, auto) { return false; }).is_complete);
}

TEST(RtfContents, TakesDataThatMakeNoSense) {
  for (const std::string& bytes : {""s, Number(1), Number(0) + Number(2) + "\xFF\xFF\xFF\x7F"s,
                                   Number(0) + Number(1) + Number(5) + "ab", "://"s, ":\0/\0/\0"s, "x:\0/\0/"s})
    EXPECT_TRUE(ReadOleData(bytes, BytesToUtf8).names.empty()) << Hex(bytes);
}

}  // namespace
}  // namespace tme::rtf
