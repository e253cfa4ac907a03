#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "WaitFor.h"
#include "system/Twips.h"
#include "windows/text/TextPad.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

using Scintilla = QsciScintillaBase;
constexpr bool kPatched = TME_PATCHED_QSCINTILLA;

class TextPadLines : public testing::Test {
 protected:
  void SetUp() override {
    if (!kPatched) GTEST_SKIP() << "built with the system's QScintilla as it is";
    pad_.SetTextFont(u"DejaVu Sans Mono"_s, 10);
    pad_.resize(600, 400);
    pad_.show();
  }
  long Ask(unsigned message, unsigned long first = 0, PadPosition second = 0) {
    return pad_.SendScintilla(message, first, static_cast<long>(second));
  }
  /// Without the way that the view is scrolled.
  long X(PadPosition position) {
    Ask(Scintilla::SCI_SETXOFFSET, 0);
    return Ask(Scintilla::SCI_POINTXFROMPOSITION, 0, position);
  }
  long Y(PadPosition position) { return Ask(Scintilla::SCI_POINTYFROMPOSITION, 0, position); }
  int Wrapped() { return PixelsToTwips(500, pad_.logicalDpiX()); }
  /// Where the characters from a position on are shown.
  std::vector<std::pair<long, long>> Places(PadPosition start, int count) {
    std::vector<std::pair<long, long>> places;
    for (PadPosition at = start; count-- > 0; at = pad_.Moved(at, 1)) places.emplace_back(X(at), Y(at) - Y(0));
    return places;
  }
  /// Pixels of the first line that are not its background, from a place on.
  int Ink(long from) {
    QApplication::processEvents();
    const QImage image = pad_.viewport()->grab().toImage();
    int ink = 0;
    for (int x = static_cast<int>(from); x < image.width(); ++x)
      for (int y = 0; y < Ask(Scintilla::SCI_TEXTHEIGHT); ++y) ink += image.pixel(x, y) != image.pixel(590, 390);
    return ink;
  }

  TextPad pad_{nullptr};
};

std::string Words(std::size_t bytes) {
  std::string text;
  for (std::size_t count = 0; text.size() < bytes; ++count) {
    text += "word" + std::to_string(count) + (count % 7 ? " " : "\t\xC3\xA9\xE4\xB8\xAD\x01");
    if (count % 100 == 50) text += std::string(200, 'x');  // breaks within itself
  }
  return text;
}

}  // namespace

TEST_F(TextPadLines, TextThatRunsFromRightToLeftIsShownWithItsCaret) {
  struct Case {
    const char16_t* before;
    const char16_t* word;  // runs to the left
    const char16_t* behind;
  };
  for (const Case& line : {Case{u"", u"\u05E9\u05DC\u05D5\u05DD", u""}, Case{u"key=", u"\u05E2\u05E8\u05DA", u""},
                           Case{u"", u"\u05D0\u05D1\u05D2", u" abc"}, Case{u"a\t", u"\u0633\u0644\u0645\u0629", u""}}) {
    const std::string before = QString::fromUtf16(line.before).toStdString();
    const std::string word = QString::fromUtf16(line.word).toStdString();
    pad_.SetText(before + word + QString::fromUtf16(line.behind).toStdString());
    const auto start = static_cast<PadPosition>(before.size()), end = start + static_cast<PadPosition>(word.size());
    const long left = before.empty() ? 0 : X(start - 1);
    EXPECT_GT(Ink(left + (before.empty() ? 0 : 8)), 40) << word;
    // Its first letter is the rightmost; a click on a letter's right half goes before it.
    for (PadPosition at = start; at < end; at += 2) {
      EXPECT_TRUE(at == start || X(at) < X(at - 2)) << word;
      EXPECT_EQ(Ask(Scintilla::SCI_POSITIONFROMPOINT, static_cast<unsigned long>(X(at) - 1), 2), at) << word;
    }
    EXPECT_GT(X(end - 2), left) << word;
    // Selected alone, it is painted once, and as it was.
    pad_.Select(start + 2, end - 2);
    EXPECT_GT(Ink(left), 40) << word;
  }
  // Numbers run to the right among it, and what follows a tab is beside it.
  pad_.SetText("\xD7\x90\xD7\x91 12\t\xD7\x92");
  EXPECT_GT(X(0), X(2));
  EXPECT_LT(X(5), X(6));
  EXPECT_LT(X(6), X(2));
  EXPECT_GT(X(8), X(0));
}

TEST_F(TextPadLines, LongLinesAreLaidOutAsShortOnesAre) {
  const std::string text = Words(30'000);
  for (const int right_margin : {Pad::kNoWrap, Wrapped()}) {
    pad_.SetRightMargin(right_margin);
    pad_.SetText(text.substr(0, 5000));
    const auto of_short = Places(0, 4500);
    pad_.SetText(text);
    EXPECT_EQ(Places(0, 4500), of_short);
    // After edits at either end and between: as if laid out anew.
    for (const std::size_t at : {std::size_t{0}, std::size_t{12'000}, text.size()}) {
      pad_.Select(static_cast<PadPosition>(at), static_cast<PadPosition>(at));
      pad_.ReplaceSelection(u"\u00E9\tput in"_s);
      QTest::keyClick(&pad_, Qt::Key_Backspace);
    }
    pad_.Select(20'000, 20'100);
    QTest::keyClick(&pad_, Qt::Key_Delete);
    const auto start = Places(0, 500), middle = Places(19'000, 2000);
    const long end = X(pad_.End()), lines = Ask(Scintilla::SCI_WRAPCOUNT);
    pad_.SetText(std::string(pad_.Text()));
    EXPECT_EQ(Places(0, 500), start);
    EXPECT_EQ(X(pad_.End()), end);
    EXPECT_EQ(Ask(Scintilla::SCI_WRAPCOUNT), lines);
    EXPECT_EQ(Places(19'000, 2000), middle);
  }
}

TEST_F(TextPadLines, AWrappedLongLineTakesKeysAtItsEnd) {
  pad_.SetRightMargin(Wrapped());
  for (const std::size_t bytes : {8500UL, 30'000UL}) {
    const std::string text(bytes, 'w');
    pad_.SetText(text);
    QApplication::processEvents();
    QTest::keyClick(&pad_, Qt::Key_End, Qt::ControlModifier);
    // The room for the line grows more than once.
    for (std::size_t count = 0; count < bytes / 2; count += 500) {
      QTest::keyClick(&pad_, Qt::Key_Q);
      pad_.ReplaceSelection(QString(499, u'q'));
      QApplication::processEvents();
    }
    EXPECT_EQ(pad_.Text().size(), bytes + bytes / 2 / 500 * 500 + (bytes / 2 % 500 ? 500 : 0));
    EXPECT_GT(Ask(Scintilla::SCI_WRAPCOUNT), 100);
  }
}

TEST_F(TextPadLines, AJumpToTheEndDoesNotWaitForTheLinesBeforeIt) {
  constexpr long kLines = 20'000;
  std::string text;
  for (long line = 0; line < kLines; ++line) text += std::string(120, 'a') + " " + std::to_string(line) + "\n";
  pad_.SetText(text);
  pad_.SetRightMargin(Wrapped());
  QTest::keyClick(&pad_, Qt::Key_End, Qt::ControlModifier);
  EXPECT_LT(Ask(Scintilla::SCI_VISIBLEFROMDOCLINE, kLines), kLines + kLines / 2);
  const auto caret_shows = [this] {
    return Y(pad_.SelectionEnd()) >= 0 && Y(pad_.SelectionEnd()) < pad_.viewport()->height();
  };
  EXPECT_TRUE(caret_shows());
  WaitFor([&] { return Ask(Scintilla::SCI_VISIBLEFROMDOCLINE, kLines) >= 2 * kLines; });
  EXPECT_TRUE(caret_shows());
}
