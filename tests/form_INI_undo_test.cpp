// Undo and redo in the windows of trees.
#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>
#include <QTest>
#include <QTreeView>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Editor.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"
#include "shell/Settings.h"
#include "windows/reg/form_REG.h"

using namespace tme;
using namespace Qt::StringLiterals;

class WindowUndo : public Editor {
 protected:
  form_INI& Open(const std::string& bytes, bool whole = false) {
    if (!frame_->isVisible()) Start();
    global_.settings.ini_whole = whole;
    OpenPathList(global_, File(u"u.ini"_s, bytes));
    Ini().setFocus();
    return Ini();
  }
  static QTreeView& ViewOf(form_INI& window) { return *window.findChild<QTreeView*>(); }
  static void Press(QWidget& where, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
    QTest::keyClick(&where, key, modifiers);
  }
  /// The caption of an item; empty where it is greyed.
  QString Offered(const char* item) const {
    const QAction* action = global_.menus.Action(QLatin1StringView(item));
    return action->isEnabled() ? action->text() : QString();
  }
};

TEST_F(WindowUndo, EachCommandIsOneStepThatTheMenuNames) {
  for (const bool whole : {false, true}) {
    form_INI& window = Open("[A]\r\nk=1\r\nx=1\r\n\r\n[B]\r\nk=2\r\n\r\n", whole);
    QTreeView& view = ViewOf(window);
    EXPECT_EQ(Offered("menu_EditUndo") + Offered("menu_EditRedo"), u"") << "reading the file is no step";
    const auto select = [&](const QStringList& path) { return [&window, path] { Select(window, path); }; };
    const struct {
      const char* caption;
      std::function<void()> select, run;
    } commands[] = {
        {"&Undo Add Section", select({}),
         [&] {
           dialogs_.ExpectInputBox(u"Enter the name for the new section."_s, u"Add New Section"_s, {}, u"C"_s);
           window.AddSection();
         }},
        {"&Undo Rename", select({u"B"_s}),
         [&] {
           dialogs_.ExpectInputBox(u"New name for this section"_s, u"Section Name Change"_s, u"B"_s, u"Z"_s);
           Press(view, Qt::Key_Return, Qt::NoModifier);
         }},
        {"&Undo Cut", select({u"A"_s}), [&] { Press(view, Qt::Key_X); }},
        {"&Undo Paste", select({}), [&] { Press(view, Qt::Key_V); }},
        {"&Undo Delete from All Sections", select({u"A"_s, u"k=1"_s}), [&] { window.DeleteAllNodes(); }},
        {"&Undo Delete Entry", select({u"A"_s, u"x=1"_s}),
         [&] {
           dialogs_.ExpectMsgBox(u"Are you sure you want to delete Key / Value x=1?"_s, u"Deletion Confirmation"_s,
                                 MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
           Press(view, Qt::Key_Delete, Qt::NoModifier);
         }},
        {"&Undo Cut", select({}), [&] { window.EditCut(); }},
    };
    std::vector<std::string> before, after;
    for (const auto& command : commands) {
      command.select();
      before.push_back(Dump(window.Tree()));
      command.run();
      after.push_back(Dump(window.Tree()));
      EXPECT_EQ(Offered("menu_EditUndo"), QLatin1StringView(command.caption));
    }
    EXPECT_EQ(window.Content(), "");
    for (std::size_t at = before.size(); at-- > 0;) {
      Press(view, Qt::Key_Z);
      EXPECT_EQ(Dump(window.Tree()), before[at]) << "with what was selected";
      EXPECT_EQ(view.currentIndex().data().toString().toStdString(), window.Tree().Selected()->Text());
      EXPECT_TRUE(view.hasFocus());
    }
    EXPECT_EQ(Offered("menu_EditUndo"), u"");
    EXPECT_EQ(Offered("menu_EditRedo"), u"R&edo Add Section");
    EXPECT_EQ(window.windowTitle(), u"u.ini") << "back at the file";
    EXPECT_FALSE(window.IsModified());
    for (std::size_t at = 0; at < after.size(); ++at) {
      at % 2 == 0 ? Press(view, Qt::Key_Y) : Press(view, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
      EXPECT_EQ(Dump(window.Tree()), after[at]);
    }
    EXPECT_EQ(Offered("menu_EditRedo"), u"");
    Press(view, Qt::Key_Z);
    window.SaveFile();
    window.FileClose();
  }
}

TEST_F(WindowUndo, TheMarkerGoesAtTheSavedState) {
  form_INI& window = Open("[A]\r\nx=1\r\n\r\n");
  const auto add = [&](const QString& name) {
    dialogs_.ExpectInputBox(u"Enter the name for the new section."_s, u"Add New Section"_s, {}, name);
    window.AddSection();
  };
  add(u"B"_s);
  window.SaveFile();
  add(u"C"_s);
  EXPECT_EQ(window.windowTitle(), u"u.ini [CHANGED]");
  window.EditUndo();
  EXPECT_EQ(window.windowTitle(), u"u.ini");
  EXPECT_FALSE(window.IsModified());
  window.EditUndo();
  EXPECT_EQ(window.windowTitle(), u"u.ini [CHANGED]") << "before the save";
  EXPECT_TRUE(window.IsModified());
  window.EditRedo();
  EXPECT_EQ(window.windowTitle(), u"u.ini");
  // What marks nothing is undone all the same.
  QGuiApplication::clipboard()->setText(u"[P]\r\n"_s);
  window.EditPaste();
  EXPECT_EQ(window.windowTitle(), u"u.ini");
  EXPECT_TRUE(window.IsModified());
  add(u"D"_s);
  window.EditUndo();
  EXPECT_EQ(window.windowTitle(), u"u.ini") << "as it was left";
  window.EditUndo();
  EXPECT_FALSE(window.IsModified());
  window.EditRedo();
  EXPECT_EQ(window.windowTitle(), u"u.ini");
  // Another way of holding begins anew.
  dialogs_.ExpectChoice({}, u"Document Changed"_s, {u"&Save"_s, u"&Don't Save"_s, u"Cancel"_s}, 1);
  window.WholeFile();
  EXPECT_EQ(Offered("menu_EditUndo") + Offered("menu_EditRedo"), u"");
}

TEST_F(WindowUndo, WhatWasInSightComesBack) {
  std::string text;
  for (int section = 0; section < 60; ++section) {
    text += "[s" + std::to_string(section) + "]\r\n";
    for (int entry = 0; entry < 5; ++entry) text += "k" + std::to_string(entry) + "=v\r\n";
  }
  form_INI& window = Open(text, true);
  QTreeView& view = ViewOf(window);
  window.ExpandAll();
  Select(window, {u"s50"_s});
  const int scrolled = view.verticalScrollBar()->value();
  ASSERT_GT(scrolled, 0);
  Press(view, Qt::Key_X);
  Select(window, {u"s0"_s});
  Press(view, Qt::Key_Home, Qt::NoModifier);
  window.EditUndo();
  EXPECT_EQ(view.verticalScrollBar()->value(), scrolled);
  EXPECT_TRUE(view.isExpanded(view.currentIndex()));
  EXPECT_EQ(view.currentIndex().data().toString(), u"s50");
}

TEST_F(WindowUndo, ARegistryWindowHasTheSame) {
  Start();
  OpenPathList(global_, File(u"u.reg"_s, "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"1\"\r\n\r\n"));
  auto& window = dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 0));
  const auto& document = std::as_const(window).Document();
  EXPECT_EQ(Offered("menu_EditRegUndo"), u"");
  dialogs_.ExpectInputBox(u"Enter Desired Branch Name:"_s, u"Add Branch / Key"_s, {}, u"B"_s);
  window.Document().Select(document.Root()->Child(0));
  const std::size_t nodes = document.NodeCount();
  window.EditNewKey();
  EXPECT_EQ(Offered("menu_EditRegUndo"), u"&Undo Add Key");
  EXPECT_EQ(window.windowTitle(), u"u.reg [CHANGED]");
  window.EditUndo();
  EXPECT_EQ(document.NodeCount(), nodes);
  EXPECT_EQ(window.windowTitle(), u"u.reg");
  window.EditRedo();
  EXPECT_EQ(document.NodeCount(), nodes + 1);
}
