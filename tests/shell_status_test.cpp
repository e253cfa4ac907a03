#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <utility>

#include "KindsEditor.h"
#include "WaitFor.h"
#include "shell/DocumentArea.h"
#include "shell/GlobalMenus.h"
#include "shell/LongWork.h"
#include "shell/OpenDispatch.h"
#include "shell/QuietFigure.h"
#include "shell/StatusLine.h"
#include "windows/text/TextPad.h"
#include "windows/text/form_TXT.h"

using namespace tme;
using namespace Qt::StringLiterals;
using namespace std::string_literals;

namespace {

class StatusTest : public KindsEditor {
 protected:
  StatusTest() { Start(); }
  DocumentWindow& Open(const QString& name, const std::string& bytes) {
    OpenPathList(global_, File(name, bytes));
    QApplication::processEvents();
    return *global_.area.ActiveDocument();
  }
  QWidget* Part(const char* name) { return frame_->findChild<QWidget*>(QLatin1StringView(name)); }
  QToolButton& Button(const char* name) { return dynamic_cast<QToolButton&>(*Part(name)); }
  /// What the parts say, from left to right; a button in brackets.
  std::string Said() {
    global_.status.ShowNow();
    QStringList said;
    for (const char* name : {"status_kind", "status_holding", "status_path", "status_selection", "status_place",
                             "status_count", "status_encoding", "status_line_ends"}) {
      QWidget* part = Part(name);
      if (!part->isVisibleTo(frame_.get())) continue;
      const auto* button = qobject_cast<QToolButton*>(part);
      said += button ? u'[' + button->text() + u']' : dynamic_cast<QLabel&>(*part).text();
      EXPECT_FALSE(QAccessible::queryAccessibleInterface(part)->text(QAccessible::Name).isEmpty()) << name;
    }
    return said.join(u' ').toStdString();
  }
  /// Chooses from the menu of a part.
  bool Choose(const char* part, const QString& caption) {
    global_.status.ShowNow();
    QMenu* menu = Button(part).menu();
    if (!menu) return false;
    emit menu->aboutToShow();
    for (QAction* action : menu->actions())
      if (action->text() == caption) {
        action->trigger();
        return true;
      }
    return false;
  }
  static TextPad& PadOf(DocumentWindow& window) { return *window.findChild<TextPad*>(); }
  static std::string TextOf(DocumentWindow& window) { return std::string(PadOf(window).Text()); }
  void Trigger(const QString& item) { global_.menus.Action(item)->trigger(); }
};

}  // namespace

TEST_F(StatusTest, SaysWhatEachKindIs) {
  EXPECT_EQ(Said(), "");
  frame_->resize(1600, 700);
  const QString text = File(u"a.txt"_s, "caf\xC3\xA9\nb\n");
  OpenPathList(global_, text);
  TextPad& pad = PadOf(*global_.area.ActiveDocument());
  EXPECT_EQ(Said(), "TXT File [" + text.toStdString() + "] [Ln 1, Col 1] [UTF-8] [LF]");
  pad.Select(1, 7);
  EXPECT_EQ(Said(),
            "TXT File [" + text.toStdString() + "] 5 characters selected in 2 lines [Ln 2, Col 2] [UTF-8] [LF]");
  Open(u"a.rtf"_s, "{\\rtf1 word}");
  EXPECT_TRUE(Said().ends_with("] 4 characters")) << Said();
  DocumentWindow& ini = Open(u"a.ini"_s, "; 1\nx=1\n[B]\ny=2\n");
  global_.menus.Action(u"menu_ViewWholeFile"_s)->trigger();
  auto* tree = ini.findChild<QTreeView*>(u"TV"_s);
  const auto go = [&](int down) {
    tree->setCurrentIndex(tree->model()->index(0, 0));
    tree->expandAll();
    for (; down > 0; --down) QTest::keyClick(tree, Qt::Key_Down);
    return Said();
  };
  EXPECT_EQ(go(1), "INI File [whole] [; 1] 1 section, 2 entries [8-bit] [LF]");
  EXPECT_EQ(go(4), "INI File [whole] [[B] y] 1 section, 2 entries [8-bit] [LF]");
  DocumentWindow& reg = Open(u"a.reg"_s, "REGEDIT4\n\n[HKEY_USERS\\a\\b]\n\"x\"=\"1\"\n@=-\n");
  EXPECT_TRUE(Said().starts_with("Registry File [by the rules] [")) << Said();
  EXPECT_TRUE(Said().ends_with("] 3 keys, 1 value [8-bit] [CR LF]")) << Said();
  Button("status_holding").click();
  EXPECT_TRUE(Said().ends_with("3 keys, 2 values [8-bit] [LF]")) << Said();
  auto* keys = reg.findChild<QTreeView*>(u"TV"_s);
  keys->expandAll();
  keys->setCurrentIndex(keys->indexBelow(keys->indexBelow(keys->indexBelow(keys->model()->index(0, 0)))));
  QTest::keyClick(keys, Qt::Key_Shift);
  EXPECT_EQ(reg.State().path, u"HKEY_USERS\\a\\b");
  auto* values = reg.findChild<QTreeView*>(u"LV"_s);
  for (const QString& name : {u" \"x\""_s, u" @"_s}) {
    QTest::keyClick(values, Qt::Key_Down);
    EXPECT_EQ(reg.State().path, u"HKEY_USERS\\a\\b"_s + name);
  }
  global_.documents.ForEachOpen([](DocumentWindow& window) { window.FileClose(); });
  EXPECT_EQ(Said(), "");
}

TEST_F(StatusTest, EncodingAndLineEndsOfATextAreStepsOfUndo) {
  DocumentWindow& window = Open(u"a.txt"_s, "one\r\ntwo\nthr\xE9");
  const auto shown = [&] { return Said().substr(Said().find("] [Ln") + 2); };
  EXPECT_EQ(shown(), "[Ln 1, Col 1] [8-bit] [mixed]");
  ASSERT_TRUE(Choose("status_encoding", u"UTF-16 LE"_s) && Choose("status_line_ends", u"LF, as on Linux"_s));
  EXPECT_EQ(shown(), "[Ln 1, Col 1] [UTF-16 LE] [LF]");
  EXPECT_TRUE(window.File().IsChanged() && window.IsModified());
  QTest::keyClick(&PadOf(window), Qt::Key_Return);
  const std::string changed = "\none\ntwo\nthr\xC3\xA9";
  EXPECT_EQ(TextOf(window), changed);
  Trigger(u"menu_FileSave"_s);
  EXPECT_TRUE(BytesOf(window.File().Path()).starts_with("\xFF\xFE\n"));
  const struct {
    const char* shown;
    std::string text;
  } steps[] = {{"[Ln 1, Col 1] [UTF-16 LE] [LF]", "one\ntwo\nthr\xC3\xA9"},
               {"[Ln 3, Col 5] [UTF-16 LE] [mixed]", "one\r\ntwo\nthr\xC3\xA9"},
               {"[Ln 3, Col 5] [8-bit] [mixed]", "one\r\ntwo\nthr\xC3\xA9"}};
  for (const auto& step : steps) {
    QTest::keyClick(&PadOf(window), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shown().substr(13), std::string(step.shown).substr(13));
    EXPECT_EQ(TextOf(window), step.text);
  }
  EXPECT_TRUE(window.IsModified());
  WaitFor([&] { return !global_.menus.Action(u"menu_EditUndo"_s)->isEnabled(); });
  Trigger(u"menu_FileSave"_s);
  EXPECT_EQ(BytesOf(window.File().Path()), "one\r\ntwo\nthr\xE9");
  for (int step = 0; step < 3; ++step) Trigger(u"menu_EditRedo"_s);
  EXPECT_EQ(TextOf(window), changed);
  EXPECT_EQ(shown().substr(13), " [UTF-16 LE] [LF]");
  window.File().SetChanged(false);
}

TEST_F(StatusTest, LineEndsChangeInSlicesAndCanBeCancelled) {
  std::string bytes, changed;
  for (int line = 0; line < 900'000; ++line) {
    bytes += line % 7 == 0 ? "lines\r\n" : "and lines\n";
    changed += line % 7 == 0 ? "lines\n" : "and lines\n";
  }
  bytes += std::string(5'000'000, 'x') + "\r\nend";
  changed += std::string(5'000'000, 'x') + "\nend";
  DocumentWindow& window = Open(u"a.txt"_s, bytes);
  const int quiet_ms = std::exchange(LongWork::quiet_ms, 0);
  OnDialog(u"LongWorkProgress"_s, [](QWidget& box) { box.findChild<QPushButton*>()->click(); });
  window.ChangeLineEnds(LineEnds::Lf);
  LongWork::quiet_ms = quiet_ms;
  EXPECT_TRUE(TextOf(window) == bytes);
  EXPECT_FALSE(window.File().IsChanged());
  window.ChangeLineEnds(LineEnds::Lf);
  EXPECT_TRUE(TextOf(window) == changed);
  Trigger(u"menu_EditUndo"_s);
  EXPECT_TRUE(TextOf(window) == bytes) << "one step";
  window.File().SetChanged(false);
}

TEST_F(StatusTest, EncodingAndLineEndsOfTreesAreStepsOfUndo) {
  const struct {
    const char* name;
    std::string bytes;
    Holding holding;
    const char* undo;
    const char* redo;
  } table[] = {
      {"a.ini", "[A]\r\nx=\xE9\r\n\r\n", Holding::ByRules, "menu_EditUndo", "menu_EditRedo"},
      {"a.ini", "[A]\n;\nx=\xE9", Holding::Whole, "menu_EditUndo", "menu_EditRedo"},
      {"a.reg", "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"\xE9\"=\"\"\r\n\r\n", Holding::ByRules, "menu_EditRegUndo",
       "menu_EditRegRedo"},
      {"a.reg", "REGEDIT4\n\n[HKEY_USERS\\A]\n\"\xE9\"=hex:00,\\\n  00\n", Holding::Whole, "menu_EditRegUndo",
       "menu_EditRegRedo"},
  };
  for (const auto& [name, bytes, holding, undo, redo] : table) {
    SCOPED_TRACE(bytes);
    const bool is_whole = holding == Holding::Whole;
    global_.settings.ini_whole = global_.settings.reg_whole = is_whole;
    DocumentWindow& window = Open(QLatin1StringView(name), bytes);
    ASSERT_TRUE(Choose("status_encoding", u"UTF-16 LE"_s));
    EXPECT_EQ(Choose("status_line_ends", u"CR LF, as on Windows"_s), is_whole);
    EXPECT_TRUE(Said().ends_with("[UTF-16 LE] [CR LF]")) << Said();
    EXPECT_TRUE(window.File().IsChanged() && window.IsModified());
    const std::string changed = window.Content();
    EXPECT_TRUE(changed.starts_with("\xFF\xFE") && changed.find("\r\0\n"s) != std::string::npos);
    EXPECT_EQ(changed.find("]\0\n"s), std::string::npos);
    for (int step = 0; step < (is_whole ? 2 : 1); ++step) Trigger(QLatin1StringView(undo));
    EXPECT_TRUE(Said().ends_with(is_whole ? "[8-bit] [LF]" : "[8-bit] [CR LF]")) << Said();
    EXPECT_FALSE(window.File().IsChanged() || window.IsModified());
    EXPECT_TRUE(!is_whole || window.Content() == bytes);
    for (int step = 0; step < (is_whole ? 2 : 1); ++step) Trigger(QLatin1StringView(redo));
    EXPECT_EQ(window.Content(), changed);
    window.SavePlain({});
    EXPECT_TRUE(BytesOf(window.File().Path()).starts_with("\xFF\xFE"));
    EXPECT_EQ(Notice(window).contains(u"UTF-16"_s), false) << "as the user chose";
    window.FileClose();
  }
}

TEST_F(StatusTest, AnEncodingThatDoesNotHoldTheTextIsRefused) {
  const struct {
    std::string bytes;
    const char* wanted;
    const char* reason;
  } table[] = {{"one\n\xE4\xB8\xAD", "8-bit code page", "character of line 2: \xE4\xB8\xAD"},
               {"\xC3\x83\xC2\xA9", "8-bit code page", "would be read as another encoding"},
               {"\xEF\xBB\xBF one\n\xFF", "UTF-16 LE", "character of line 2"}};
  for (const auto& row : table) {
    DocumentWindow& window = Open(u"a.txt"_s, row.bytes);
    ASSERT_TRUE(Choose("status_encoding", QLatin1StringView(row.wanted)));
    EXPECT_TRUE(Notice(window).toStdString().find(row.reason) != std::string::npos) << Notice(window).toStdString();
    EXPECT_FALSE(window.File().IsChanged() || window.IsModified());
    EXPECT_EQ(window.Content(), row.bytes);
    ASSERT_TRUE(Choose("status_encoding", u"UTF-8 with byte order mark"_s));
    EXPECT_EQ(Notice(window), QString()) << "of the choice before";
    window.File().SetChanged(false);
    window.FileClose();
  }
}

TEST_F(StatusTest, GoesToALine) {
  DocumentWindow& window = Open(u"a.txt"_s, "1\n2\n3\n");
  auto* field = dynamic_cast<QLineEdit*>(Part("line_number"));
  ASSERT_NE(field, nullptr);
  const auto said = [&] { return dynamic_cast<QLabel&>(*Part("line_said")).text(); };
  Trigger(u"menu_SearchGoToLine"_s);
  EXPECT_TRUE(field->hasFocus() && field->text() == u"1" && said() == u"of 4");
  for (const QString& wrong : {u"0"_s, u"5"_s, u"x"_s, u""_s}) {
    field->setText(wrong);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(said().contains(u"1 to 4"_s)) << wrong.toStdString();
  }
  field->setText(u" 3 "_s);
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(PadOf(window).Caret(), 4);
  EXPECT_TRUE(PadOf(window).hasFocus() && !field->isVisible());
  Trigger(u"menu_SearchGoToLine"_s);
  QTest::keyClick(field, Qt::Key_Escape);
  EXPECT_TRUE(PadOf(window).hasFocus() && !field->isVisible() && Part("status_path")->isVisible());
}

TEST_F(StatusTest, KeysAndNarrowFrames) {
  DocumentWindow& window = Open(u"a.txt"_s, "text");
  global_.status.ShowNow();
  const auto focused = [&] {
    return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
  };
  QTest::keyClick(&PadOf(window), Qt::Key_F6);
  QStringList stops;
  for (int stop = 0; stop < 5; ++stop) {
    stops += focused();
    QTest::keyClick(QApplication::focusWidget(), stop % 2 ? Qt::Key_Tab : Qt::Key_Right);
  }
  EXPECT_EQ(stops.join(u' '), u"status_path status_place status_encoding status_line_ends status_path"_s);
  QTest::keyClick(&Button("status_path"), Qt::Key_Return);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), window.File().Path());
  EXPECT_EQ(Button("status_path").text(), u"Copied"_s);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
  EXPECT_TRUE(PadOf(window).hasFocus());
  std::size_t parts = 9;
  for (const int width : {1600, 600, 300, 150}) {
    frame_->resize(width, 500);
    QApplication::processEvents();
    std::size_t shown = 0;
    int right = 0;
    for (QWidget* part :
         frame_->findChild<StatusLine*>()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      if (!part->isVisible()) continue;
      ++shown;
      right = std::max(right, part->geometry().right());
    }
    EXPECT_TRUE(shown <= parts && shown > 0) << width;
    EXPECT_LE(right, frame_->width());
    parts = shown;
  }
  EXPECT_LE(parts, 2U);
}

TEST_F(StatusTest, LineNumbersAreASettingOfAllTexts) {
  DocumentWindow& window = Open(u"a.txt"_s, "1\n2\n");
  const auto margin = [&] { return PadOf(window).SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 0); };
  EXPECT_EQ(margin(), 0);
  Trigger(u"menu_ViewLineNumbers"_s);
  const long narrow = margin();
  EXPECT_GT(narrow, 0);
  PadOf(window).ReplaceSelection(QString(5000, u'\n'));
  WaitFor([&] { return margin() > narrow; });
  Settings next_start;
  next_start.ReadFrameGroup(registry_);
  EXPECT_TRUE(next_start.line_numbers && global_.menus.Action(u"menu_ViewLineNumbers"_s)->isChecked());
  Trigger(u"menu_ViewLineNumbers"_s);
  EXPECT_EQ(margin(), 0);
  window.File().SetChanged(false);
}

TEST(QuietFigure, IsFoundLaterWhereFindingTakesLong) {
  int found = 0, told = 0;
  const auto find = [&](int milliseconds) {
    return [&found, milliseconds] {
      QTest::qSleep(milliseconds);
      return ++found;
    };
  };
  QuietFigure<int> figure([&told] { ++told; });
  EXPECT_EQ(figure.Of(1, find(10)), 1);
  for (const std::uint64_t revision : {2U, 3U, 1U, 4U})
    EXPECT_EQ(figure.Of(revision, find(10)), 1) << "edits and undo go on";
  WaitFor([&] { return told == 1; });
  EXPECT_EQ(figure.Of(4, find(10)), 2);
  EXPECT_EQ(figure.Of(4, find(10)), 2) << "known";
  figure.Forget();
  EXPECT_EQ(figure.Of(4, find(10)), 3) << "of another content";
}
