#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QSet>

#include "Editor.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// Captions of what a menu shows.
QStringList Shown(const QList<QAction*>& actions) {
  QStringList captions;
  for (const QAction* action : actions)
    if (action->isVisible() && !action->isSeparator()) captions += action->text();
  return captions;
}

void ForEachShownItem(const QList<QAction*>& actions, const std::function<void(const QAction&)>& visit) {
  for (QAction* action : actions) {
    if (!action->isVisible() || action->isSeparator()) continue;
    if (action->menu())
      ForEachShownItem(action->menu()->actions(), visit);
    else
      visit(*action);
  }
}

}  // namespace

TEST_F(Editor, MenusShowWhatTheKindAnswers) {
  Start();
  const QStringList without_document{u"&File"_s, u"&Edit"_s, u"&Tools"_s, u"&Help"_s};
  EXPECT_EQ(Shown(frame_->menuBar()->actions()), without_document);
  EXPECT_EQ(Shown(global_.menus.Menu(u"md_Menu_File"_s)->actions()),
            (QStringList{u"&New"_s, u"&Open"_s, u"E&xit TME"_s}));
  const struct {
    const char* bar;
    int routed;
    DocumentKind kind;
  } kinds[] = {{"File Edit Search View Tools Window Help", 28, DocumentKind::Ini},
               {"File Edit Search View Tools Window Help", 26, DocumentKind::Reg},
               {"File Edit Search View Tools Window Help", 16, DocumentKind::Txt},
               {"File Edit Search Format Tools Window Help", 22, DocumentKind::Rtf}};
  for (const auto& expected : kinds) {
    SCOPED_TRACE(NameOf(expected.kind));
    const DocumentWindow* window = NewDocument(global_, expected.kind);
    EXPECT_EQ(Shown(frame_->menuBar()->actions()).join(u' ').remove(u'&'), QLatin1StringView(expected.bar));
    QSet<QKeySequence> shortcuts;
    int routed = 0;
    ForEachShownItem(frame_->menuBar()->actions(), [&](const QAction& item) {
      EXPECT_FALSE(item.objectName().isEmpty()) << item.text().toStdString();
      if (!item.shortcut().isEmpty()) {
        EXPECT_FALSE(shortcuts.contains(item.shortcut())) << item.text().toStdString();
        shortcuts.insert(item.shortcut());
      }
      const QByteArray command = GlobalMenus::CommandOf(item.objectName(), expected.kind);
      if (command.isEmpty()) return;
      ++routed;
      EXPECT_GE(window->metaObject()->indexOfMethod(command + "()"), 0) << command.toStdString();
    });
    EXPECT_EQ(routed, expected.routed);
  }
  global_.documents.ForEachOpen([](DocumentWindow& window) { window.FileClose(); });
  EXPECT_EQ(Shown(frame_->menuBar()->actions()), without_document);
  EXPECT_FALSE(global_.menus.Action(u"ASDF"_s)->isVisible());
}

TEST_F(Editor, CommandsGoToTheActiveDocumentByName) {
  Start();
  form_INI& first = NewIni("[A]\nx=1\n[B]\n");
  form_INI& second = NewIni("[C]\n");
  first.Form_Activate();
  Select(first, {u"B"_s});
  GlobalMenus& menus = global_.menus;
  EXPECT_FALSE(menus.Action(u"menu_EditDeleteValue"_s)->isEnabled());
  dialogs_.ExpectMsgBox(u"Are you sure you want to delete Section B?"_s, u"Deletion Confirmation"_s, MsgButtons::YesNo,
                        MsgAnswer::Yes, MsgIcon::Question);
  menus.Action(u"menu_SectionsDelete"_s)->trigger();
  EXPECT_EQ(Dump(first.Tree()), "New INI File\n >A\n  x=1\n");
  EXPECT_EQ(second.windowTitle(), u"New INI File");
  Select(first, {u"A"_s, u"x=1"_s});
  EXPECT_TRUE(menus.Action(u"menu_EditRemovefromAll"_s)->isEnabled());

  dialogs_.ExpectMsgBox(u"This document does not support the command \"FormatBold\"."_s, u"Tamarind Editor"_s);
  EXPECT_FALSE(SendCommand(global_, first, "FormatBold"));

  common_dialog_.ExpectPrinter({});
  menus.Action(u"menu_FilePrint"_s)->trigger();
  EXPECT_EQ(common_dialog_.shown.back().flags, 264);
  EXPECT_EQ(Dump(first.Tree()), "New INI File\n A\n  >x=1\n") << "cancelled: nothing was sent";
  common_dialog_.print_obstacle = u"No printer."_s;
  dialogs_.ExpectMsgBox(u"No printer."_s, u"Tamarind Editor"_s);
  menus.Action(u"menu_FilePrint"_s)->trigger();
}
