#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>
#include <QSplitter>
#include <QTest>
#include <random>

#include "Editor.h"
#include "RegWindow.h"
#include "WaitFor.h"
#include "shell/DocumentArea.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"
#include "shell/Settings.h"
#include "shell/StatusLine.h"
#include "windows/tree/SourceView.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;

constexpr const char* kIniText = "; c\r\n[A]\r\nx=1\r\ny=2\r\n\r\n[B]\r\nz=\r\n\r\n";
constexpr const char* kRegText =
    "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"x\"=\"1\"\r\n\"y\"=hex:01,02\r\n\r\n[HKEY_USERS\\A\\B]\r\n\"z\"=\"\"\r\n\r\n";

/// A document in its window with its source.
class SourceBesideTree : public RegWindow {
 protected:
  void OpenWith(DocumentKind kind, Holding holding, const std::string& bytes) {
    if (!frame_->isVisible()) Start();
    global_.settings.ini_whole = global_.settings.reg_whole = holding == Holding::Whole;
    path_ = File(kind == DocumentKind::Ini ? u"a.ini"_s : u"a.reg"_s, bytes);
    OpenPathList(global_, path_);
    window_ = dynamic_cast<TreeDocumentWindow*>(global_.documents.At(kind, 0));
    if (!global_.settings.show_source) window_->ViewSource();
  }
  SourceView& View() { return *window_->findChild<SourceView*>(); }
  std::string Shown() { return std::string(View().Text()); }
  void ExpectShown(const std::string& text) {
    if (!QTest::qWaitFor([&] { return Shown() == text; })) FAIL() << Shown() << "\ninstead of\n" << text;
  }
  std::string Saved() {
    window_->Save({});
    return BytesOf(path_);
  }
  /// The marked lines' text.
  std::string Marked() {
    std::string marked;
    for (const SourceLineRange& range : View().Marked()) {
      const auto start = static_cast<std::size_t>(View().StartOf(range.first));
      const std::string text = Shown();
      std::size_t end = start;
      for (PadPosition line = 0; line < range.count; ++line) end = text.find('\n', end) + 1;
      marked += text.substr(start, end - start);
    }
    return marked;
  }
  void ExpectMarked(const std::string& lines) {
    if (!QTest::qWaitFor([&] { return Marked() == lines; })) FAIL() << Marked();
  }
  /// As a click there.
  void GoTo(PadPosition line) {
    View().setFocus();
    WaitFor([&] { return View().hasFocus(); });
    View().SendScintilla(QsciScintillaBase::SCI_GOTOLINE, static_cast<unsigned long>(line));
    View().repaint();
  }

  QString path_;
  TreeDocumentWindow* window_ = nullptr;
};

TEST_F(SourceBesideTree, ShowsWhatASaveWritesAndFollows) {
  for (const Holding holding : {Holding::ByRules, Holding::Whole}) {
    OpenWith(DocumentKind::Ini, holding, kIniText);
    ExpectShown(window_->Content());
    Select(Ini(), {u"A"_s, u"x=1"_s});
    Ini().EditCut();
    const std::string cut = window_->Content();
    EXPECT_EQ(cut.find("x=1"), std::string::npos);
    ExpectShown(cut);
    EXPECT_EQ(Saved(), cut);
    window_->FileClose();

    OpenWith(DocumentKind::Reg, holding, kRegText);
    ExpectShown(kRegText);
    SelectKey({u"HKEY_USERS"_s, u"A"_s});
    SelectValue(0);
    ExpectDeletion(u"this value?"_s, MsgAnswer::Yes);
    Reg().EditDelete();
    const std::string deleted = Saved();
    EXPECT_EQ(deleted.find("\"x\""), std::string::npos);
    ExpectShown(deleted);
    window_->FileClose();
  }
}

TEST_F(SourceBesideTree, BecomesAnyOtherText) {
  OpenWith(DocumentKind::Ini, Holding::Whole, kIniText);
  ExpectShown(kIniText);
  std::mt19937 random(3);
  const auto below = [&](std::size_t end) { return random() % end; };
  std::string text;
  for (int turn = 0; turn < 300; ++turn) {
    if (turn % 50 == 0) {
      const std::size_t lines = below(3) == 0 ? 0 : below(30'000);
      text.clear();
      for (std::size_t line = 0; line < lines; ++line) text += "k\xC3\xA9y=" + std::to_string(below(200)) + "\r\n";
    }
    for (std::size_t edits = below(4); edits > 0; --edits) {
      const std::size_t at = below(text.size() + 1);
      text.replace(at, below(2) == 0 ? 0 : below(below(10) == 0 ? 90'000 : 60),
                   std::string(below(40), "\n\xA9x"[below(3)]));
    }
    const std::size_t part = 1 + below(100'000);
    View().Follow([&](const PartSink& put) {
      for (std::size_t at = 0; at < text.size(); at += part)
        if (!put(std::string_view(text).substr(at, part))) return false;
      return true;
    });
    ASSERT_EQ(Shown(), text) << turn;
  }
}

TEST_F(SourceBesideTree, SelectionGoesBothWays) {
  for (const Holding holding : {Holding::ByRules, Holding::Whole}) {
    SCOPED_TRACE(static_cast<int>(holding));
    OpenWith(DocumentKind::Ini, holding, kIniText);
    ExpectShown(kIniText);
    Select(Ini(), {u"A"_s, u"x=1"_s});
    ExpectMarked("x=1\r\n");
    Select(Ini());
    ExpectMarked("");
    GoTo(6);
    ExpectMarked("z=\r\n");
    EXPECT_EQ(Ini().Tree().Selected()->Text(), "z=");
    EXPECT_TRUE(View().hasFocus());
    GoTo(4);
    WaitFor([&] { return Ini().Tree().Selected()->Text() == (holding == Holding::Whole ? "y=2" : "A"); });
    GoTo(View().LineCount() - 1);
    WaitFor([&] { return Ini().Tree().Selected()->Text() == (holding == Holding::Whole ? "z=" : "B"); });
    window_->FileClose();

    OpenWith(DocumentKind::Reg, holding, kRegText);
    ExpectShown(kRegText);
    SelectKey({u"HKEY_USERS"_s, u"A"_s, u"B"_s});
    ExpectMarked("[HKEY_USERS\\A\\B]\r\n");
    SelectKey({u"HKEY_USERS"_s, u"A"_s});
    SelectValue(0);
    ExpectMarked("\"x\"=\"1\"\r\n");
    GoTo(7);
    ExpectMarked("\"z\"=\"\"\r\n");
    EXPECT_EQ(Reg().Document().Selected()->Text(), "B");
    SelectKey({u"HKEY_USERS"_s});
    ExpectMarked("[HKEY_USERS\\A]\r\n");
    GoTo(View().LineCount() - 1);
    ExpectMarked("[HKEY_USERS\\A\\B]\r\n");
    window_->FileClose();
  }
}

TEST_F(SourceBesideTree, GoesToALineOfTheSource) {
  const QAction* item = nullptr;
  for (const Holding holding : {Holding::ByRules, Holding::Whole}) {
    OpenWith(DocumentKind::Ini, holding, kIniText);
    ExpectShown(kIniText);
    item = global_.menus.Action(u"menu_SearchGoToLine"_s);
    EXPECT_TRUE(item->isEnabled());
    window_->GoToLine(7);
    ExpectMarked("z=\r\n");
    EXPECT_EQ(Ini().Tree().Selected()->Text(), "z=");
    EXPECT_EQ(window_->State().place->line, 7);
    window_->FileClose();
  }
  OpenWith(DocumentKind::Reg, Holding::ByRules, kRegText);
  ExpectShown(kRegText);
  window_->GoToLine(5);
  ExpectMarked("\"y\"=hex:01,02\r\n");
  window_->ViewSource();
  EXPECT_FALSE(item->isEnabled()) << "only the source has lines";
  window_->ViewSource();
}

TEST_F(SourceBesideTree, NoMarkStaysOnLinesThatMoved) {
  OpenWith(DocumentKind::Ini, Holding::Whole, kIniText);
  ExpectShown(kIniText);
  Select(Ini(), {u"A"_s, u"y=2"_s});
  ExpectMarked("y=2\r\n");
  GoTo(3);
  QTest::keyClick(&View(), Qt::Key_Return);
  Saved();
  Select(Ini(), {u"B"_s});
  ExpectMarked("[B]\r\n");
  const auto next = [&](long from) {
    return View().SendScintilla(QsciScintillaBase::SCI_MARKERNEXT, static_cast<unsigned long>(from), 1L);
  };
  EXPECT_EQ(next(0), View().Marked().front().first);
  EXPECT_EQ(next(next(0) + 1), -1);
}

TEST_F(SourceBesideTree, OnlyALongLineIsPlain) {
  std::string text = "[A]\r\nx=" + std::string(300'000, 'y') + "\r\n";
  for (int line = 0; line < 100; ++line) text += "z=1\r\n";
  OpenWith(DocumentKind::Ini, Holding::Whole, text);
  ExpectShown(text);
  const auto styled_end = [&] { return View().SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED); };
  WaitFor([&] { return View().viewport()->repaint(), styled_end() == View().End(); });
  GoTo(View().LineCount() - 1);
  const auto last_key = static_cast<unsigned long>(View().End() - 5);
  WaitFor([&] {
    View().viewport()->repaint();
    return View().SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, last_key) == static_cast<long>(SourceStyle::Name);
  });
}

TEST_F(SourceBesideTree, WhereItIsAndHowLargeIsRemembered) {
  const auto splitter = [this] { return window_->findChild<QSplitter*>(u"source_splitter"_s); };
  const auto is_checked = [this](const char* item) {
    return global_.menus.Action(QLatin1StringView(item))->isChecked();
  };
  OpenWith(DocumentKind::Ini, Holding::Whole, kIniText);
  EXPECT_EQ(registry_.ReadValue(SettingsRoot, u"Show Source"_s), u"1");
  EXPECT_TRUE(is_checked("menu_ViewSource"));
  EXPECT_EQ(splitter()->orientation(), Qt::Vertical);
  window_->ViewSourceBeside();
  EXPECT_EQ(splitter()->orientation(), Qt::Horizontal);
  EXPECT_TRUE(is_checked("menu_ViewSourceBeside"));
  registry_.WriteValue(SettingsRoot, u"Source Width"_s, u"30000"_s);
  window_->FileClose();
  OpenWith(DocumentKind::Reg, Holding::Whole, kRegText);
  WaitFor([&] { return View().isVisible() && splitter()->width() > 200; });
  EXPECT_LE(View().width(), splitter()->width() * 3 / 4) << "the tree keeps a quarter";
  EXPECT_GE(View().width(), splitter()->width() / 2);
  EXPECT_EQ(splitter()->orientation(), Qt::Horizontal);
  ExpectShown(kRegText);
  QTest::keyClick(&View(), Qt::Key_Tab);
  EXPECT_FALSE(View().hasFocus());
  OpenPathList(global_, File(u"b.ini"_s, kIniText));
  auto& other = dynamic_cast<TreeDocumentWindow&>(*global_.area.ActiveDocument());
  EXPECT_NE(other.findChild<SourceView*>(), nullptr);
  const QPointer<SourceView> gone = &View();
  other.ViewSource();
  EXPECT_TRUE(gone) << "a press in it may be going on";
  EXPECT_EQ(window_->findChild<SourceView*>(), nullptr) << "in all windows";
  global_.area.Activate(*window_);
  EXPECT_FALSE(is_checked("menu_ViewSource"));
  Settings next;
  next.ReadFrameGroup(registry_);
  EXPECT_TRUE(!next.show_source && next.source_beside);
}

TEST_F(SourceBesideTree, WhatIsTypedIsReadAfterAPause) {
  const struct {
    DocumentKind kind;
    std::string text, line, typed, now;
  } cases[] = {{DocumentKind::Ini, kIniText, "y=2", "\nw=\"3\"", "y=2\r\nw=\"3\""},
               {DocumentKind::Reg, kRegText, "\"x\"=\"1\"", "2", "\"x\"=\"12\""},
               {DocumentKind::Reg, kRegText, "[HKEY_USERS\\A\\B]", "\n@=\"n\"", "[HKEY_USERS\\A\\B]\r\n@=\"n\""}};
  for (const auto& [kind, text, line, typed, now] : cases) {
    SCOPED_TRACE(line);
    OpenWith(kind, Holding::Whole, text);
    ExpectShown(text);
    const auto at = static_cast<PadPosition>(text.find(line));
    const bool is_before_last = line.ends_with('"');
    GoTo(View().LineAt(at));
    View().Select(at + static_cast<PadPosition>(line.size()) - (is_before_last ? 1 : 0),
                  at + static_cast<PadPosition>(line.size()) - (is_before_last ? 1 : 0));
    const PadPosition caret = View().SelectionEnd();
    QTest::keyClicks(&View(), QString::fromStdString(typed).replace(u'\n', u'\r'));
    EXPECT_TRUE(View().IsTyped());
    EXPECT_EQ(window_->Content(), text) << "not before a pause";
    WaitFor([&] { return !View().IsTyped(); });
    std::string expected = text;
    expected.replace(static_cast<std::size_t>(at), line.size(), now);
    EXPECT_EQ(window_->Content(), expected);
    ExpectShown(expected);
    EXPECT_TRUE(window_->File().IsChanged());
    EXPECT_GT(View().SelectionEnd(), caret) << "the caret stays";
    EXPECT_TRUE(View().hasFocus());
    const std::string now_lines = now + "\r\n";
    ExpectMarked(now_lines.substr(now_lines.rfind('\n', now_lines.size() - 2) + 1));
    EXPECT_EQ(Saved(), expected);
    window_->EditUndo();
    ExpectShown(text);
    EXPECT_EQ(window_->Content(), text) << "one step";
    window_->EditRedo();
    ExpectShown(expected);
    EXPECT_FALSE(window_->File().IsChanged());
    window_->FileClose();
  }
}

TEST_F(SourceBesideTree, CtrlZTakesBackWhatIsTypedFirst) {
  OpenWith(DocumentKind::Reg, Holding::Whole, kRegText);
  ExpectShown(kRegText);
  GoTo(2);
  QTest::keyClick(&View(), Qt::Key_X);
  QTest::keyClick(&View(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Shown(), kRegText);
  QTest::keyClick(&View(), Qt::Key_X);
  EXPECT_EQ(Saved(), std::string(kRegText).insert(12, "x")) << "a save reads it first";
  EXPECT_FALSE(View().CanUndo());
  QTest::keyClick(&View(), Qt::Key_Z, Qt::ControlModifier);
  ExpectShown(kRegText);
  QTest::keyClick(&View(), Qt::Key_Y);
  EXPECT_EQ(Shown(), std::string(kRegText).insert(12, "y")) << "the caret is where it was";
  OpenWith(DocumentKind::Ini, Holding::ByRules, kIniText);
  ExpectShown(kIniText);
  GoTo(1);
  QTest::keyClick(&View(), Qt::Key_X);
  EXPECT_EQ(Shown(), kIniText);
}

TEST_F(SourceBesideTree, TheEditMenuIsAboutWhatHasTheFocus) {
  for (const DocumentKind kind : {DocumentKind::Ini, DocumentKind::Reg}) {
    const bool is_ini = kind == DocumentKind::Ini;
    const std::string text = is_ini ? kIniText : kRegText;
    OpenWith(kind, Holding::Whole, text);
    ExpectShown(text);
    GoTo(2);
    const auto choose = [&](const char* ini, const char* reg) {
      QAction* action = global_.menus.Action(QLatin1StringView(is_ini ? ini : reg));
      EXPECT_TRUE(action->isEnabled());
      action->trigger();
    };
    View().Select(1, 3);
    choose("menu_EditCut", "menu_EditRegCut");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), text.substr(1, 2));
    choose("menu_EditPaste", "menu_EditRegPaste");
    choose("menu_EditPaste", "menu_EditRegPaste");
    QFocusEvent opens_menu(QEvent::FocusOut, Qt::PopupFocusReason);
    QCoreApplication::sendEvent(&View(), &opens_menu);
    choose("menu_EditUndo", "menu_EditRegUndo");
    EXPECT_EQ(window_->Content(), text) << "what was typed was read, and is undone";
    window_->findChild<QWidget*>(u"TV"_s)->setFocus();
    choose("menu_EditCopy", "menu_EditRegCopy");
    EXPECT_NE(QGuiApplication::clipboard()->text().toStdString(), text.substr(1, 2));
    window_->FileClose();
  }
}

TEST_F(SourceBesideTree, TheStatusLineSaysWhyALineIsNotUnderstood) {
  OpenWith(DocumentKind::Ini, Holding::Whole, "[A]\r\nx=1\r\nwhat\r\n");
  ExpectShown("[A]\r\nx=1\r\nwhat\r\n");
  GoTo(2);
  WaitFor([&] { return window_->State().fault.contains(u"\"=\""_s); });
  EXPECT_EQ(View().accessibleDescription(), window_->State().fault);
  global_.status.ShowNow();
  auto* path = frame_->findChild<QWidget*>(u"status_path"_s);
  EXPECT_TRUE(path->accessibleName().contains(window_->State().fault));
  path->setFocus();
  EXPECT_FALSE(window_->State().fault.isEmpty()) << "who goes there by keys still reads it";
  window_->findChild<QWidget*>(u"TV"_s)->setFocus();
  EXPECT_EQ(window_->State().fault, u"");
}

TEST_F(SourceBesideTree, WhatIsNotUnderstoodIsUnderlined) {
  const struct {
    const char* line;
    DocumentKind kind;
    bool is_fault;
  } cases[] = {{"a=b", DocumentKind::Ini, false},
               {"[a", DocumentKind::Ini, true},
               {"[a]", DocumentKind::Ini, false},
               {"no value", DocumentKind::Ini, true},
               {" # x", DocumentKind::Ini, false},
               {"[HKEY_USERS\\A", DocumentKind::Reg, true},
               {"\"a\"=1", DocumentKind::Reg, true},
               {"\"a\"=\"b\" ; c", DocumentKind::Reg, false},
               {"\"a\"=hex(2):00", DocumentKind::Reg, true},
               {"\"a\"=hex:00,\\\r\n ; c\r\n  01", DocumentKind::Reg, false},
               {"[-HKEY_USERS\\A]", DocumentKind::Reg, false},
               {"what", DocumentKind::Reg, true}};
  for (const auto& [line, kind, is_fault] : cases) {
    SCOPED_TRACE(line);
    const bool is_ini = kind == DocumentKind::Ini;
    const std::string before = is_ini ? "[S]\r\n" : "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n";
    const std::string text = before + line + "\r\n";
    OpenWith(kind, Holding::Whole, text);
    ExpectShown(text);
    View().repaint();
    const auto at = static_cast<PadPosition>(before.size());
    EXPECT_EQ(!View().FaultAt(View().LineAt(at)).isEmpty(), is_fault);
    EXPECT_EQ(View().SendScintilla(QsciScintillaBase::SCI_INDICATORVALUEAT, QsciScintillaBase::INDIC_CONTAINER,
                                   static_cast<long>(at)) != 0,
              is_fault);
    EXPECT_EQ(Saved(), text);
    window_->FileClose();
  }
}

}  // namespace
}  // namespace tme
