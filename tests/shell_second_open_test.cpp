#include <QAction>
#include <QApplication>
#include <QDir>
#include <QHelpEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolTip>
#include <QTreeView>
#include <filesystem>

#include "Editor.h"
#include "shell/DocumentArea.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"
#include "shell/PlainText.h"
#include "system/FilePath.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

QString Notice(const DocumentWindow& window) { return window.findChild<NoticeBar*>()->Text(); }

}  // namespace

TEST_F(Editor, AFileThatIsOpenComesToTheFrontInsteadOfASecondTime) {
  const QString path = File(u"a.ini"_s, kIni), link = InFolder(u"link.ini"_s);
  std::filesystem::create_hard_link(FilePath(path), FilePath(link));
  Start({path, File(u"b.ini"_s, kIni)});
  dialogs_.ExpectInputBox(u"Enter the name for the new section."_s, u"Add New Section"_s, {}, u"New"_s);
  Ini(0).AddSection();
  const std::string edited = Dump(Ini(0).Tree());
  Ini(0).SubWindow()->showMinimized();
  global_.area.Activate(Ini(1));

  OpenPathList(global_, path);
  EXPECT_EQ(global_.area.ActiveDocument(), &Ini(0));
  EXPECT_FALSE(Ini(0).SubWindow()->isMinimized());
  EXPECT_EQ(Dump(Ini(0).Tree()), edited) << "it stays as it is";
  EXPECT_EQ(Notice(Ini(0)), u"The file is open already: this is its document.");
  EXPECT_EQ(Notice(Ini(1)), u"");
  OpenFileByName(global_, link);
  EXPECT_TRUE(Notice(Ini(0)).endsWith(link + u" is this very file, which is open already."_s));
  EXPECT_EQ(Ini(2).Tag(), u"");

  Ini(0).findChild<QPushButton*>(u"notice_action"_s)->click();
  EXPECT_EQ(Ini(2).File().Path(), link) << "wanted";
  EXPECT_EQ(Notice(Ini(2)), u"The file is open in another document as well: the later save counts.");

  registry_.WriteValue(SettingsRoot, u"Default Open Type"_s, u"0"_s);
  common_dialog_.ExpectOpen({path}, 3);
  OpenFileDialog(global_);
  DocumentWindow& text = *global_.documents.At(DocumentKind::Txt, 0);
  EXPECT_EQ(text.File().Path(), path) << "another view of the file";
  EXPECT_EQ(Notice(text), Notice(Ini(2)));
}

TEST_F(Editor, FilesOfOneNameAreToldApart) {
  QDir(folder_.path()).mkdir(u"one&two"_s);
  const QString first = File(u"a.ini"_s, kIni), second = File(u"one&two/a.ini"_s, kIni);
  Start({first, QDir::toNativeSeparators(second), File(u"b.ini"_s, kIni)});
  QMenu* menu = global_.menus.Menu(u"md_menu_window"_s);
  emit menu->aboutToShow();
  const QList<QAction*> items = menu->actions().last(3);
  EXPECT_TRUE(items[1]->text().startsWith(u"&2 a.ini - "_s) && items[1]->text().endsWith(u"one&&two"_s));
  EXPECT_EQ(items[2]->text(), u"&3 b.ini");
  EXPECT_EQ(items[0]->toolTip(), TipText(first));
  EXPECT_TRUE(items[1]->toolTip().contains(u"one&amp;two"_s));

  QMdiSubWindow* child = Ini(0).SubWindow();
  global_.area.Activate(Ini(0));
  const auto tip_at = [&](const QPoint& point) {
    QHelpEvent help(QEvent::ToolTip, point, child->mapToGlobal(point));
    QApplication::sendEvent(child, &help);
    return QToolTip::text();
  };
  EXPECT_EQ(tip_at({child->width() / 3, child->height() / 2}), u"");
  EXPECT_EQ(tip_at({child->width() / 3, 8}), TipText(first));
}

TEST_F(Editor, AMaximisedDocumentHasItsKeysBackOnceTheNextOneIsClosed) {
  Start({File(u"a.reg"_s, "REGEDIT4\n\n[HKEY_USERS\\k]\n\"a\"=\"1\"\n")});
  DocumentWindow& registry = *global_.documents.At(DocumentKind::Reg, 0);
  registry.SubWindow()->showMaximized();
  auto* tree = registry.findChild<QTreeView*>(u"TV"_s);
  tree->setFocus();
  ASSERT_TRUE(tree->hasFocus());
  OpenPathList(global_, File(u"b.ini"_s, kIni));
  QTest::qWait(1);
  Ini(0).FileClose();
  QTest::qWait(1);
  EXPECT_EQ(QApplication::focusWidget(), tree);
}

TEST_F(Editor, ANewDocumentBesideAMaximisedOneIsMaximised) {
  Start({File(u"a.ini"_s, kIni)});
  NewDocument(global_, DocumentKind::Ini);
  EXPECT_FALSE(Ini(1).SubWindow()->isMaximized());
  Ini(1).SubWindow()->showMaximized();
  NewDocument(global_, DocumentKind::Txt);
  const DocumentWindow& text = *global_.documents.At(DocumentKind::Txt, 0);
  EXPECT_TRUE(text.SubWindow()->isMaximized());
  EXPECT_EQ(global_.area.ActiveDocument(), &text);
}
