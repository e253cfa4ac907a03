// Large documents: the beginning is there at once, the rest comes from a thread.
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

#include "RtfProbe.h"
#include "RtfWindow.h"
#include "windows/rich/RtfBeginning.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr int kGroups = 2'000;

/// In tables and outside, with formats, objects and a list.
std::string LargeFile() {
  std::string bytes = "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}";
  for (int i = 0; i < kGroups; ++i) {
    const std::string number = std::to_string(i);
    bytes += "\\pard{\\*\\bkmkstart m}word {\\b " + number + "}\\par{\\pntext 1.}\\pard{\\*\\pn\\pnlvlbody} item\\par";
    bytes += "\\trowd\\cellx2000\\cellx4000\\pard\\intbl a\\cell b{\\v c}\\cell\\row\\pard end\\par\n";
  }
  return bytes + "}";
}

/// As the window shows it before the rest is there.
form_RTF& OpenLarge(Global& global, const QString& path) {
  OpenPathList(global, path);
  auto& window = dynamic_cast<form_RTF&>(*global.documents.At(DocumentKind::Rtf, 0));
  EXPECT_TRUE(static_cast<RtfPad&>(window.EditingArea()).IsFilling());
  return window;
}

}  // namespace

TEST_F(FormRtf, ALargeDocumentIsTheSameOnceItIsWhole) {
  const std::string bytes = LargeFile();
  form_RTF& window = OpenLarge(global_, File(u"letter.rtf"_s, bytes));
  RtfPad& pad = PadOf(window);
  EXPECT_LT(pad.document()->blockCount(), 1'000);
  const QString beginning = pad.toPlainText();
  // What the user selected and where the view stands goes over.
  QTextCursor cursor(pad.document());
  cursor.setPosition(500);
  cursor.setPosition(505, QTextCursor::KeepAnchor);
  pad.setTextCursor(cursor);
  pad.verticalScrollBar()->setValue(pad.verticalScrollBar()->value() + 3);
  const int top = pad.cursorRect().top();
  const std::uint64_t revision = pad.Revision();
  QSignalSpy changes(&pad, &QTextEdit::textChanged);
  ASSERT_TRUE(QTest::qWaitFor([&pad] { return !pad.IsFilling(); }, 20'000));
  EXPECT_GE(pad.document()->blockCount(), kGroups * 5);
  EXPECT_TRUE(pad.toPlainText().startsWith(beginning.chopped(1)));
  EXPECT_EQ(pad.SelectionStart(), 500);
  EXPECT_EQ(pad.SelectionEnd(), 505);
  EXPECT_EQ(pad.cursorRect().top(), top);
  EXPECT_FALSE(pad.isReadOnly());
  EXPECT_EQ(pad.Revision(), revision);
  EXPECT_EQ(changes.count(), 0);
  EXPECT_FALSE(window.IsModified());
  pad.Select(0, 0);
  pad.ReplaceSelection(u"x"_s);
  window.SaveFile();
  std::string edited = bytes;
  edited.insert(edited.find("word"), "x");
  EXPECT_EQ(BytesOf(InFolder(u"letter.rtf"_s)), edited);
}

TEST_F(FormRtf, WhoNeedsAllOfALargeDocumentWaitsForIt) {
  const std::string bytes = LargeFile();
  const QString path = File(u"letter.rtf"_s, bytes);
  const std::function<void(form_RTF&, RtfPad&)> uses[] = {
      [](form_RTF&, RtfPad& pad) { QTest::keyClick(&pad, Qt::Key_A); },
      [](form_RTF& window, RtfPad&) { window.EditSelectAll(); },
      [](form_RTF& window, RtfPad&) { window.FormatBold(); },
      [](form_RTF&, RtfPad& pad) { EXPECT_TRUE(pad.Find(u"1999"_s, 0, pad.End(), 0)); },
  };
  for (const auto& use : uses) {
    form_RTF& window = OpenLarge(global_, path);
    use(window, PadOf(window));
    EXPECT_FALSE(PadOf(window).IsFilling());
    EXPECT_GE(PadOf(window).document()->blockCount(), kGroups * 5);
    dialogs_.AnswerAll(MsgAnswer::No);
    window.FileClose();
  }
  // Saved or closed, the file needs no view.
  form_RTF& window = OpenLarge(global_, path);
  window.SaveFile();
  EXPECT_TRUE(PadOf(window).IsFilling());
  EXPECT_EQ(BytesOf(path), bytes);
  window.FileClose();
  EXPECT_FALSE(PadOf(window).IsFilling());
  EXPECT_FALSE(window.IsOpen());
}

TEST(RtfBeginning, EndsWithARowAndNamesWhatIsThere) {
  EXPECT_FALSE(TakesLongToShow(rtf::Read("{\\rtf1 a}")));
  const rtf::RtfDocument all = rtf::Read(LargeFile());
  EXPECT_TRUE(TakesLongToShow(all));
  const rtf::RtfDocument beginning = BeginningOf(all);
  EXPECT_TRUE(all.text.starts_with(beginning.text));
  ASSERT_FALSE(beginning.cells.empty());
  EXPECT_EQ(beginning.cells.size(), beginning.rows.size() * 2);
  for (const rtf::Run& run : beginning.runs) EXPECT_LE(run.object, beginning.objects.size());
  // One paragraph is cut between characters, where it is still shown in pieces.
  const rtf::RtfDocument cut = BeginningOf(rtf::Read("{\\rtf1 x" + std::string(100'000, '\xE4') + "}"));
  EXPECT_EQ(cut.text.size(), 39'999U);
  EXPECT_EQ(cut.runs.back().bytes, 39'999U);
}
