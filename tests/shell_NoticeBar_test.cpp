#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include "shell/NoticeBar.h"

namespace tme {
namespace {
using namespace Qt::StringLiterals;

struct NoticeBarTest : testing::Test {
  NoticeBarTest() {
    window.setLayout(new QVBoxLayout);
    bar = new NoticeBar(&window);
    window.layout()->addWidget(bar);
    static_cast<QVBoxLayout*>(window.layout())->addStretch(1);
    window.resize(500, 400);
    window.show();
    QApplication::processEvents();
  }
  int TextHeight() {
    QApplication::processEvents();
    return bar->findChild<QScrollArea*>()->height();
  }

  QWidget window;
  NoticeBar* bar = nullptr;
};

TEST_F(NoticeBarTest, StaysSlimHoweverMuchItSays) {
  const int line = bar->fontMetrics().lineSpacing();
  bar->Add(u"Short."_s);
  EXPECT_LT(TextHeight(), 2 * line);
  auto* more = bar->findChild<QToolButton*>(u"notice_more"_s);
  EXPECT_FALSE(more->isVisible());
  for (int i = 0; i < 20; ++i) bar->Add(u"Sentence %1 of a notice that goes on and on."_s.arg(i));
  EXPECT_LE(TextHeight(), 3 * line + 2);
  ASSERT_TRUE(more->isVisible());
  more->click();
  EXPECT_GT(TextHeight(), 3 * line + 2);
  EXPECT_LE(TextHeight(), window.height() / 2);
  bar->Clear();
  EXPECT_EQ(bar->findChild<QLabel*>(u"notice_text"_s)->text(), u"");  // a screen reader finds no old text either
  bar->Add(u"Short."_s);
  EXPECT_LT(TextHeight(), 2 * line);
}

TEST_F(NoticeBarTest, CutsNoLineOffAtAnyWidth) {
  bar->Add(u"This is the whole file: every byte of it stays."_s, {{u"Show by the Rules"_s, [] {}}});
  const auto* label = bar->findChild<QLabel*>(u"notice_text"_s);
  for (int width = 320; width < 700; width += 3) {
    window.resize(width, window.height());
    QCoreApplication::processEvents();
    ASSERT_LE(label->heightForWidth(label->width()), TextHeight()) << width;
  }
}

TEST_F(NoticeBarTest, SaysNothingTwiceAndRunsItsButtons) {
  int ran = 0;
  bar->Add(u"The file has 12 parts."_s, {{u"Show"_s, [&] { ran = 1; }}});
  bar->Add(u"The file has 12 parts."_s, {{u"Show"_s, [&] {
                                            ran = 2;
                                            bar->Clear();
                                          }}});
  bar->Add(u"12 parts."_s);  // another sentence, though the first one ends in it
  EXPECT_EQ(bar->Text(), u"The file has 12 parts. 12 parts.");
  ASSERT_EQ(bar->findChildren<QPushButton*>().size(), 1);
  window.activateWindow();
  bar->FocusFirst();
  auto* button = bar->findChild<QPushButton*>();
  EXPECT_EQ(window.focusWidget(), button);
  button->click();
  EXPECT_EQ(ran, 2);
  EXPECT_TRUE(bar->findChildren<QPushButton*>().isEmpty());
  EXPECT_FALSE(bar->isVisible());
}
}  // namespace
}  // namespace tme
