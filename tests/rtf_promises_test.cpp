#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

#include "../fuzz/RtfPromises.h"
#include "RtfProbe.h"
#include "documents/rtf/RtfOriginal.h"

namespace tme::rtf {
namespace {

// What programs write beside text. Each is whole, and may stand anywhere in a paragraph.
// clang-format off
constexpr std::string_view kInText[] = {
    "ab c", "{\\*\\hyphen a\\-b}", "\\'e9", "\\u8364?", "\\u8364\\'3f", "{\\uc2\\u20013\\'d6\\'d0}", "\\tab ", "\\line\r\n", "\\~x",
    "{\\v hid}", "{\\b bo}", "\\i it\\i0 ", "{\\field{\\*\\fldinst PAGE}{\\fldrslt 12}}", "{\\field{\\*\\fldinst{HYPERLINK \"http://a\"}}{\\fldrslt{\\ul ln}}}",
    "{\\*\\bkmkstart m}", "{\\*\\bkmkend m}", "{\\upr{a\\'e9}{\\*\\ud{b\\u233\\'e9}}}", "{\\footnote\\pard n\\par}", "{\\revised\\revauth1 new}", "{\\deleted old}",
    "{\\f1 \\'93\\'fa\\'96\\'7b}", "{\\f2\\'d6\\'d0x}", "{\\f3\\'b0\\'a1}", "{\\f4 \\'a4\\'a4}", "{\\f5\\'8e}", "{\\f6\\u61623\\'b7}", "\\emdash ", "\\{x\\}",
    "{\\rtlch\\af0 \\ltrch x}", "{\\xe{\\*\\pxe}q}", "{\\super 2}", "\\u-10179?\\u-8704?", "\\endash-", "{\\*\\unknown{\\b x}}", "\\chpgn ", "{\\cf0 auto}"};
constexpr std::string_view kParagraphEnds[] = {
    "\\par ", "\\par\r\n\\pard\\plain ", "\\par\\pard\\qc\\b ", "\\par{\\*\\pn\\pnlvlblt}\\pard ", "\\\r\n", "\\par{\\pntext 1.\\tab}\\pard{\\*\\pn\\pnlvlbody\\pndec{\\pntxta .}} ",
    "\\par\\sect\\sectd ", "\\par\\page x\\par ", "\\par{\\colortbl;\\red9\\green9\\blue9;}", "\\par}{\\pard\\sb20 "};
constexpr std::string_view kRows[] = {
    "\\trowd\\cellx900\\cellx1800\\pard\\intbl @\\cell @\\par @\\cell\\row\\pard ",
    "{\\trowd\\cellx900\\pard\\intbl{@\\cell}{\\trowd\\cellx900\\row}}\\pard ",
    "\\trowd\\clvmgf\\cellx900\\cellx1800\\pard\\intbl @\\cell @\\cell\\row\\trowd\\clvmrg\\cellx900\\cellx1800\\pard\\intbl\\cell @\\cell\\row\\pard ",
    "\\trowd\\cellx900\\pard\\intbl @\\par\\itap2 @\\nestcell{\\*\\nesttableprops\\trowd\\cellx500\\nestrow}{\\nonesttables\\par}\\pard\\intbl @\\cell\\row\\pard "};
constexpr std::string_view kHeaders[] = {
    "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 A;}{\\f1\\fcharset128 J;}{\\f2\\fcharset134 C;}{\\f3\\fcharset129 K;}{\\f4\\fcharset136 T;}{\\f5\\fcharset77 M;}{\\f6\\fcharset2 Symbol;}}{\\colortbl;\\red1\\green1\\blue1;}{\\*\\pnseclvl1\\pndec}\\pard ",
    "{\\rtf1\\ansi\\ansicpg65001\\uc0{\\stylesheet{\\s1 x;}}\\paperw9000 ",
    "{\\rtf1\\mac\\uc2{\\fonttbl\\f0 A;\\f1 B;}{\\info{\\title t}}{\\header h}\\pard\\plain\\f0\\fs20 ",
    "{\\rtf1\\ansi\\ansicpg932\\deff3 ", "{\\pard "};
// clang-format on

class RtfGenerator {
 public:
  explicit RtfGenerator(unsigned seed) : random_(seed) {}

  std::string Make() {
    std::string file(Pick(kHeaders));
    for (unsigned parts = 2 + random_() % 4; parts > 0; --parts) {
      if (random_() % 3 == 0) {
        for (const char byte : Pick(kRows)) byte == '@' ? AddText(file) : file.push_back(byte);
      } else {
        AddText(file);
        file += Pick(kParagraphEnds);
      }
    }
    if (random_() % 2 == 0) AddText(file);
    return file += random_() % 4 == 0 ? "}\r\n\0 behind" : "}";
  }

 private:
  template <typename List>
  std::string_view Pick(const List& list) {
    return list[random_() % std::size(list)];
  }
  void AddText(std::string& file) {
    for (unsigned parts = random_() % 4; parts > 0; --parts) file += Pick(kInText);
  }
  std::mt19937 random_;
};

struct PromisedEdit {
  const char* name;
  void (*make)(EditedRtf& edited, std::size_t paragraph, std::size_t place);
  /// What it does where it may need all to be written anew.
  enum class Risk : std::uint8_t { None, AddsColor, MovesSections } risk = Risk::None;
};

std::size_t PlaceBehind(const EditedRtf& edited, std::size_t paragraph, std::size_t place) {
  return std::min(place + 3, edited.PlacesIn(paragraph) - 1);
}

constexpr PromisedEdit kPromisedEdits[] = {
    {"a letter", [](EditedRtf& it, std::size_t paragraph, std::size_t place) { it.Type(paragraph, place, "x"); }},
    {"a letter that no font has",
     [](EditedRtf& it, std::size_t paragraph, std::size_t place) { it.Type(paragraph, place, "\xE1\x8E\xA0"); }},
    {"bold",
     [](EditedRtf& it, std::size_t paragraph, std::size_t place) {
       it.Format(paragraph, place, PlaceBehind(it, paragraph, place),
                 [](CharFormat& format) { format.bold = !format.bold; });
     }},
    {"font and colour",
     [](EditedRtf& it, std::size_t paragraph, std::size_t place) {
       it.Format(paragraph, place, PlaceBehind(it, paragraph, place),
                 [font = it.AddFont(), color = it.AddColor()](CharFormat& format) {
                   format.font = font;
                   format.color = color;
                 });
     },
     PromisedEdit::Risk::AddsColor},
    {"removed", [](EditedRtf& it, std::size_t paragraph,
                   std::size_t place) { it.Remove(paragraph, place, PlaceBehind(it, paragraph, place)); }},
    {"split", [](EditedRtf& it, std::size_t paragraph, std::size_t place) { it.Split(paragraph, place); }},
    {"joined", [](EditedRtf& it, std::size_t paragraph, std::size_t) { it.Join(paragraph); }},
    {"aligned",
     [](EditedRtf& it, std::size_t paragraph, std::size_t) { it.FormatParagraph(paragraph, Alignment::Right); }},
    {"added", [](EditedRtf& it, std::size_t paragraph, std::size_t) { it.AddParagraph(paragraph); }},
    {"moved", [](EditedRtf& it, std::size_t paragraph, std::size_t) { it.Move(paragraph); },
     PromisedEdit::Risk::MovesSections}};
constexpr std::size_t kLetters = 2;

/// Before a table of colours that stands in the text, a new one has no number. The break of a section that changes its
/// place among the others would take what is said of these with it; one that goes, comes or stays beside an edit does
/// not.
bool MayBeWrittenAnew(PromisedEdit::Risk risk, const RtfOriginal& original, const RtfSource& source) {
  const std::size_t last_table = original.Bytes().rfind("{\\colortbl");
  const bool has_late_table = last_table != std::string_view::npos && last_table > source.header.body;
  return (risk == PromisedEdit::Risk::AddsColor && has_late_table) ||
         (risk == PromisedEdit::Risk::MovesSections && !source.section_parts.empty());
}

/// What an edit breaks of a save's promises; empty when all is well.
std::string BrokenBy(const RtfOriginal& original, const RtfDocument& read, const RtfSource& source, std::size_t edit,
                     std::size_t paragraph, std::size_t place) {
  EditedRtf edited(read);
  if (!edited.IsSeen(paragraph)) return {};
  kPromisedEdits[edit].make(edited, paragraph, place);
  std::vector<RtfHunk> hunks;
  const std::optional<std::string> saved = original.WithEdits(edited.Document(), BytesToUtf8, &hunks);
  if (!saved) return MayBeWrittenAnew(kPromisedEdits[edit].risk, original, source) ? "" : "all was written anew";
  const bool is_spliced =
      std::ranges::all_of(hunks, [](const RtfHunk& hunk) { return hunk.level == RtfHunk::Level::Splice; });
  // Behind the break of a section a letter makes a paragraph.
  const bool is_letter = edit < kLetters && !HasTextBehindSections(edited.Document());
  if (is_letter && is_spliced && !IsOneLetterMore(original.Bytes(), *saved)) return "not one letter: " + *saved;
  if (is_letter && !is_spliced) return "a letter is not spliced: " + *saved;
  const std::string broken = BrokenPromise(original.Bytes(), source, edited, *saved, hunks, Read(*saved));
  return broken.empty() ? broken : broken + "\n" + *saved;
}

TEST(RtfPromises, HoldForEachEditOfGeneratedFiles) {
  constexpr unsigned kFiles = 300;
  for (unsigned seed = 1; seed <= kFiles; ++seed) {
    const std::string bytes = RtfGenerator(seed).Make();
    RtfSource source;
    const RtfDocument read = ReadRtf(bytes, BytesToUtf8, &source);
    ASSERT_EQ(source.marks.size(), read.paragraphs.size()) << bytes;
    RtfOriginal original(bytes, read, source);
    original.SetUnedited(read);
    std::mt19937 random(seed);
    for (std::size_t edit = 0; edit < std::size(kPromisedEdits); ++edit) {
      const std::size_t paragraph = random() % read.paragraphs.size();
      const std::size_t place = random() % EditedRtf(read).PlacesIn(paragraph);
      const std::string broken = BrokenBy(original, read, source, edit, paragraph, place);
      EXPECT_TRUE(broken.empty()) << "file " << seed << ": " << bytes << "\n"
                                  << kPromisedEdits[edit].name << " at " << paragraph << "/" << place << ": " << broken;
    }
  }
}

TEST(RtfPromises, EditsStandInTheirPlace) {
  struct Case {
    const char* before;
    void (*edit)(EditedRtf&);
    const char* after;
  };
  const Case cases[] = {
      {"{\\rtf1 a\\sect\\sectd\\cols2{\\header h}\\pard b\\par}", [](EditedRtf& it) { it.Remove(0, 1, 2); },
       "{\\rtf1 a\\par\\pard b\\par}"},
      {"{\\rtf1\\sect\\sectd b\\colsx9 c}", [](EditedRtf& it) { it.Remove(0, 0, 1); }, "{\\rtf1\\par bc}"},
      {"{\\rtf1 a\\sect\\sectd\\cols2\\sect\\sbknone b}",
       [](EditedRtf& it) {
         it.Remove(0, 1, 2);
         it.Join(0);
       },
       "{\\rtf1 a\\sect\\sbknone b}"},
      {"{\\rtf1 a\\par\\sect\\sectd b}", [](EditedRtf& it) { it.Type(1, 0, "x"); }, "{\\rtf1 a\\par x\\sect\\sectd b}"},
      {"{\\rtf1 a\\sect\\sectd b}", [](EditedRtf& it) { it.Type(0, 2, "x"); }, "{\\rtf1 a\\sect\\sectd x\\par b}"},
      {"{\\rtf1 a\\sect\\sectd}", [](EditedRtf& it) { it.Type(0, 2, "x"); }, "{\\rtf1 a\\sect\\sectd x\\par}"},
      {"{\\rtf1 a\\sect\\sectd\\trowd\\cellx900\\intbl b\\cell\\row}", [](EditedRtf& it) { it.Type(0, 2, "x"); },
       "{\\rtf1 a\\sect\\sectd x\\par\\trowd\\cellx900\\intbl b\\cell\\row}"},
      {"{\\rtf1 a\\par b\\sect\\cols2 c\\par}", [](EditedRtf& it) { it.Move(0); },
       "{\\rtf1 b\\sect\\cols2 a\\par c\\par}"},
      {"{\\rtf1 a\\sect{\\*\\bkmkstart m}}", [](EditedRtf& it) { it.Type(1, 1, "x"); },
       "{\\rtf1 a\\sect{\\*\\bkmkstart m}x}"},
      // Beside the same letter of another format.
      {"{\\rtf1 ax{\\b x}\\par}", [](EditedRtf& it) { it.Type(0, 2, "x"); }, "{\\rtf1 axx{\\b x}\\par}"},
      {"{\\rtf1 ax{\\b xx}b\\par}", [](EditedRtf& it) { it.Remove(0, 2, 3); }, "{\\rtf1 ax{\\b x}b\\par}"},
      {"{\\rtf1 ax{\\b x}b\\par}", [](EditedRtf& it) { it.Remove(0, 1, 2); }, "{\\rtf1 a{\\b x}b\\par}"},
      {"{\\rtf1ab\\par}", [](EditedRtf& it) { it.Type(0, 1, "x"); }, "{\\rtf1axb\\par}"},
      // The label of what is no item stays.
      {"{\\rtf1{\\pntext\\tab}{\\pntext\\tab}ab\\par}", [](EditedRtf& it) { it.Type(0, 1, "x"); },
       "{\\rtf1{\\pntext\\tab}{\\pntext\\tab}axb\\par}"},
      // Its label goes with an item that is written anew, as the first one of the file too.
      {"{\\rtf1{\\pntext 1.\\tab}{\\*\\pn\\pnlvlbody\\pndec}a{\\field{\\*\\fldinst X}{\\fldrslt b}}\\par}",
       [](EditedRtf& it) { it.Format(0, 0, 1, [](CharFormat& format) { format.field = 1; }); },
       "{\\rtf1{\\*\\pn\\pnlvlbody\\pndec}{\\plain\\pard{\\pntext "
       "1\\tab}{\\*\\pn\\pnlvlbody\\pndec}{\\field{\\*\\fldinst X}{\\fldrslt ab}}\\par\r\n}}"},
      {"{\\pard {\\field{\\*\\fldinst PAGE}{\\fldrslt 1}}\\par}", [](EditedRtf& it) { it.AddParagraph(0); },
       "{\\pard {\\plain\\pard\\par\r\n}{\\field{\\*\\fldinst PAGE}{\\fldrslt 1}}\\par}"}};
  for (const Case& it : cases) {
    RtfSource source;
    const RtfDocument read = ReadRtf(it.before, BytesToUtf8, &source);
    RtfOriginal original(it.before, read, source);
    original.SetUnedited(read);
    EditedRtf edited(read);
    it.edit(edited);
    EXPECT_EQ(original.WithEdits(edited.Document(), BytesToUtf8).value_or("refused"), it.after) << it.before;
  }
}

TEST(RtfPromises, ATableThatTheViewHasInAnotherShapeKeepsItsOwn) {
  const std::string bytes = "{\\rtf1\\trowd\\cellx900\\cellx1800\\pard\\intbl a\\cell b\\cell\\row}";
  RtfSource source;
  const RtfDocument read = ReadRtf(bytes, BytesToUtf8, &source);
  RtfDocument view = read;
  view.cells[0].right_edge = 700;
  RtfOriginal original(bytes, read, source);
  original.SetUnedited(view);
  EditedRtf edited(view);
  edited.Type(1, 1, "x");
  EXPECT_EQ(original.WithEdits(edited.Document(), BytesToUtf8).value_or("refused"),
            "{\\rtf1\\trowd\\cellx900\\cellx1800\\pard\\intbl a\\cell bx\\cell\\row}");
}

TEST(RtfPromises, ATableThatCameBehindAnotherIsPutThere) {
  const std::string bytes = "{\\rtf1\\trowd\\cellx900\\pard\\intbl a\\cell\\row}";
  RtfSource source;
  const RtfDocument read = ReadRtf(bytes, BytesToUtf8, &source);
  RtfOriginal original(bytes, read, source);
  original.SetUnedited(read);
  RtfDocument edited = read;
  edited.tables.push_back({-1});
  edited.rows.push_back({1, "\\trowd\\cellx700"});
  edited.cells.push_back({1, 700});
  edited.paragraphs.push_back({static_cast<std::uint32_t>(edited.runs.size()), 0, 0, 1});
  EXPECT_EQ(original.WithEdits(edited, BytesToUtf8).value_or("refused"),
            bytes.substr(0, bytes.size() - 1) + "{\\plain\\trowd\\cellx700\r\n\\pard\\intbl\\cell\r\n\\row\r\n}}");
}

}  // namespace
}  // namespace tme::rtf
