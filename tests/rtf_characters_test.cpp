#include <gtest/gtest.h>

#include <QTextCursor>
#include <QTextDocument>

#include "RtfProbe.h"
#include "documents/rtf/RtfWriter.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfImport.h"

namespace tme::rtf {
namespace {

std::string WrittenAnew(const RtfDocument& document) {
  std::string bytes;
  WriteRtf(document, [&](std::string_view part) {
    bytes.append(part);
    return true;
  });
  std::erase(bytes, '\r');
  return bytes;
}

constexpr std::string_view kCharacterTables =
    R"({\rtf1\ansi\deff0{\fonttbl{\f0\fnil A;}{\f1\fnil B;}{\f2\fnil C;}}{\colortbl;\red1\green1\blue1;\red2\green2\blue2;})";
constexpr std::string_view kCharacterStyles = "{\\stylesheet{\\s1\\b\\fs36 Head;}{\\*\\cs10\\ul Link;}}";

/// The body that a file of this body is written with.
std::string BodyAnew(std::string_view body, std::string_view styles) {
  const RtfDocument first = Read(std::string(kCharacterTables).append(styles).append(body) + "}");
  const std::string bytes = WrittenAnew(first);
  EXPECT_EQ(Describe(Read(bytes)), Describe(first)) << bytes;
  const std::size_t begin = bytes.rfind("\\uc1") + 4;
  return bytes.substr(begin, bytes.size() - begin - 3);
}

struct CharactersCase {
  std::string_view body;
  std::string_view written;
};

TEST(RtfCharacters, WhatIsWrittenAnewEndsWhereItEnded) {
  // clang-format off
  const CharactersCase cases[] = {
      // Nothing takes back a tracked change but the end of its group.
      {R"(a{\revised\revauth1\revdttm9 b}c{\deleted\revauthdel1 d}e\par)",
       R"(\pard a{\revised\revauth1\revdttm9 b}c{\deleted\revauthdel1 d}e\par)"},
      {R"(a{\revised\revauth1 b\par c}d\par)",
       "\\pard a{\\revised\\revauth1 b\\par}\n{\\revised\\revauth1 c}d\\par"},
      {R"({\crauth1\crdate5\b a}b\par)", R"(\pard{\crauth1\crdate5\b a}b\par)"},
      // What text of the other direction has stays in its pair.
      {R"(\rtlch\fcs1 \af1\afs40 \ltrch\fcs0 \f2\fs22 a{\rtlch\fcs1\ab\ltrch\fcs0\b b}\par)",
       R"(\pard\rtlch\fcs1\af1\afs40\ltrch\fcs0\f2\fs22 a{\rtlch\fcs1\af1\afs40\ab\ltrch\fcs0\b b}\par)"},
      {R"(a{\ab\ai\afs40 b}\par)", R"(\pard a{\rtlch\fcs1\ab\ai\afs40\ltrch\fcs0 b}\par)"},
      {R"({\ltrch\fcs0\af1\rtlch\fcs1\f2 a}\par)", R"(\pard{\ltrch\fcs0\af1\rtlch\fcs1\f2 a}\par)"},
      // Each class of text has its font.
      {R"(\hich\af1\loch\f2\fs22\dbch\af0{\loch a}{\dbch\u20013?}\par)",
       R"(\pard\fs22\hich\af1\dbch\af0\loch\f2 a\dbch\u20013?\par)"},
      {R"(\loch\af1\hich\af1\dbch\af0\f2 a\hich\f1 b\par)",
       R"(\pard\dbch\f2\loch\af1\hich\f1\hich\af1\dbch\f2 a\dbch\f2\hich\f1 b\par)"},
      // Kinds that the view does not tell apart.
      {R"({\up6 a}{\dn8 b}{\ulth c}{\ulthdashdd d}{\ulhwave e}{\ululdbwave f}{\ulldash\ulc2 g}\par)",
       R"(\pard\up6 a\dn8 b\ulth\up0 c\ulthdashdd d\ulhwave e\ululdbwave f{\ulc2\ulldash g}\ulnone\par)"},
      {R"(\brdrb\brdrs{\chbrdr\brdrs\brdrw10\brdrcf2\chcbpat1 a}{\chshdng2500\chcfpat1\cb2\highlight1 b}c\par)",
       R"(\pard\brdrb\brdrs{\chbrdr\brdrs\brdrw10\brdrcf2\chcbpat1 a}{\chshdng2500\chcfpat1\cb2\highlight1 b}c\par)"},
      {R"({\expndtw30\kerning28\charscalex150\lang1031\langfe1041\noproof\embo\webhidden a}{\outl\shad\impr b}c\par)",
       R"(\pard{\expndtw30\kerning28\charscalex150\lang1031\langfe1041\noproof\embo\webhidden a}{\outl\shad\impr b}c\par)"},
      {R"({\strike a}{\striked b}{\caps c}{\scaps d}\par)",
       R"(\pard\strike a\strike0\striked1 b\striked0\caps c\caps0\scaps d\scaps0\par)"},
      // A field says of itself that nobody updates it.
      {R"({\field\fldlock\fldedit{\*\fldinst DATE}{\fldrslt 3.4.1999}}a{\field\flddirty\fldpriv{\*\fldinst X}{\fldrslt}}\par)",
       R"(\pard{\field\fldedit\fldlock{\*\fldinst DATE}{\fldrslt 3.4.1999}}a{\field\flddirty\fldpriv{\*\fldinst X}{\fldrslt}}\par)"},
  };
  // clang-format on
  for (const CharactersCase& it : cases) EXPECT_EQ(BodyAnew(it.body, ""), it.written);
}

// Without the word the style's own format would be seen.
TEST(RtfCharacters, DefaultsBesideAStyleAreSaid) {
  // clang-format off
  const CharactersCase cases[] = {
      {R"(\pard\s1 a\par\pard\s1\b0\fs24 b\par)", "\\pard\\s1 a\\par\n\\fs24\\b0 b\\par"},
      {R"(\pard\s1{\b0\cf0 a}b\par)", R"(\pard\s1{\b0\cf0 a}b\par)"},
      {R"(\pard\s1{\b a}b\par)", R"(\pard\s1{\b a}b\par)"},
      {R"(\pard{\cs10\ul a}{\cs10\ul0\up0\strike0\scaps0\v0\i0\highlight0\f0 b}\par)",
       R"(\pard{\cs10\ul a}{\cs10\f0\i0\ulnone\highlight0\v0\nosupersub\strike0\scaps0 b}\par)"},
      {R"(\pard\b a{\plain b}c\par)", R"(\pard\b a\plain b{\b c\par})"},
  };
  // clang-format on
  for (const CharactersCase& it : cases) EXPECT_EQ(BodyAnew(it.body, kCharacterStyles), it.written);
}

TEST(RtfCharacters, WhatAViewTakesAwayIsSaidOrGone) {
  RtfStore store;
  QTextDocument view;
  RtfSimplified simplified;
  RtfDocument read = Read(std::string(kCharacterTables).append(kCharacterStyles) +
                          "\\pard\\s1{\\b\\chcbpat1\\chshdng5\\lang7\\up6 a}\\par}");
  ASSERT_TRUE(ImportRtf(std::move(read), store, view, simplified));
  QTextCursor cursor(&view);
  cursor.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor);
  QTextCharFormat format = cursor.charFormat();
  format.setFontWeight(QFont::Normal);
  format.setVerticalAlignment(QTextCharFormat::AlignSubScript);
  format.clearBackground();
  cursor.setCharFormat(format);
  const std::string bytes = WrittenAnew(RtfExport(view, store).Document());
  EXPECT_NE(bytes.find("{\\lang7\\b0\\sub a}"), std::string::npos) << bytes;
}

}  // namespace
}  // namespace tme::rtf
