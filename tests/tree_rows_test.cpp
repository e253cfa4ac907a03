#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>

#include "RegWindow.h"
#include "shell/GlobalMenus.h"
#include "shell/Settings.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class TreeRows : public RegWindow {
 protected:
  static constexpr const char* kReg =
      "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n\r\n; about B\r\n[HKEY_USERS\\A\\B]\r\n"
      "\"ten\"=dword:0000000a\r\n\"Two\"=dword:00000002\r\n\"text\"=\"%PATH%\"\r\n\"odd\"=hex(4):01\r\n\"gone\"=-"
      "\r\n\r\n"
      "[HKEY_USERS\\C]\r\n\"v\"=\"1\"\r\n";

  form_INI& OpenIni(const std::string& bytes, Holding holding) {
    if (!frame_->isVisible()) Start();
    global_.settings.ini_whole = holding == Holding::Whole;
    OpenPathList(global_, File(u"w.ini"_s, bytes));
    return Ini();
  }
  void OpenReg(const std::string& bytes, Holding holding = Holding::Whole) {
    Start();
    global_.settings.reg_whole = holding == Holding::Whole;
    OpenPathList(global_, File(u"a.reg"_s, bytes));
  }
  static QTreeView* Tree(QWidget& window) { return window.findChild<QTreeView*>(u"TV"_s); }
  static QString Current(QWidget& window) { return Tree(window)->currentIndex().data().toString(); }
  static QString Copied() { return QGuiApplication::clipboard()->text(); }
};

}  // namespace

TEST_F(TreeRows, AreRenamedInPlaceWhereTheFileIsHeldWhole) {
  form_INI& window = OpenIni("; c\n[s] ; t\n a = 1\n", Holding::Whole);
  Select(window, {u"s"_s, u"a = 1"_s});
  QAction* rename = global_.menus.Action(u"menu_EditLineRename"_s);
  rename->trigger();
  ASSERT_NE(RowBox(window), nullptr);
  EXPECT_EQ(RowBox(window)->selectedText(), u"a") << "its name";
  QTest::keyClicks(RowBox(window), u"b"_s);
  QTest::keyClick(RowBox(window), Qt::Key_Return);
  Select(window, {u"s"_s});
  rename->trigger();
  TypeInRow(window, u"x];"_s);
  EXPECT_EQ(window.Content(), "; c\n[s] ; t\n b = 1\n");
  ASSERT_NE(RowBox(window), nullptr) << "what is refused goes on being edited";
  EXPECT_FALSE(RowBox(window)->accessibleDescription().isEmpty());
  QTest::keyClicks(RowBox(window), u"y"_s);
  EXPECT_EQ(RowBox(window)->accessibleDescription(), u"");
  QTest::keyClick(RowBox(window), Qt::Key_Escape);
  EXPECT_EQ(RowBox(window), nullptr);
  EXPECT_EQ(Current(window), u"s");
  rename->trigger();
  TypeInRow(window, u"u"_s);
  EXPECT_EQ(window.Content(), "; c\n[u] ; t\n b = 1\n");

  Select(window, {u"; c"_s});
  dialogs_.ExpectInputBox(u"Alter the comment:"_s, u"Comments"_s, u"; c"_s, u"; d"_s);
  const QPoint at = Tree(window)->visualRect(Tree(window)->currentIndex()).center();
  QTest::mouseClick(Tree(window)->viewport(), Qt::LeftButton, {}, at);
  QTest::mouseDClick(Tree(window)->viewport(), Qt::LeftButton, {}, at);
  EXPECT_EQ(window.Content(), "; d\n[u] ; t\n b = 1\n");
}

TEST_F(TreeRows, AreTakenAsTheyAreTypedBeforeASaveAndAClose) {
  form_INI& window = OpenIni("[s]\na = 1\n", Holding::Whole);
  Select(window, {u"s"_s, u"a = 1"_s});
  const auto type = [&](const QString& name) {
    global_.menus.Action(u"menu_EditLineRename"_s)->trigger();
    QTest::keyClicks(RowBox(window), name);
  };
  type(u"b"_s);
  window.SaveFile();
  EXPECT_EQ(BytesOf(InFolder(u"w.ini"_s)), "[s]\nb = 1\n");
  type(u"c"_s);
  dialogs_.ExpectMsgBox(u"Save this file?\r"_s + InFolder(u"w.ini"_s), u"Document Changed"_s, MsgButtons::YesNoCancel,
                        MsgAnswer::Yes);
  window.FileClose();
  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(BytesOf(InFolder(u"w.ini"_s)), "[s]\nc = 1\n");
}

TEST_F(TreeRows, OfRegistryFilesAreRenamedInPlace) {
  OpenReg(kReg);
  EXPECT_EQ(Reg().Document().Selected()->KeyPath(), "HKEY_USERS\\A\\B") << "the first key with values";
  EXPECT_TRUE(View(u"TV"_s)->isExpanded(View(u"TV"_s)->currentIndex().parent()));
  Reg().EditRename();
  TypeInRow(Reg(), u"x\\y"_s);
  EXPECT_EQ(RowBox(Reg())->accessibleDescription(), u"The name of a key has no backslash.");
  TypeInRow(Reg(), u"Z"_s);
  EXPECT_EQ(Reg().Document().Selected()->KeyPath(), "HKEY_USERS\\A\\Z");
  SelectValue(1);
  Reg().EditRename();
  TypeInRow(Reg(), u"TEN"_s);
  EXPECT_EQ(RowBox(Reg())->accessibleDescription(), u"This key has a value of this name already.");
  TypeInRow(Reg(), u"2"_s);
  EXPECT_TRUE(Rows().startsWith(u"ten|REG_DWORD|0x0000000a (10)\n2|REG_DWORD|0x00000002 (2)\n"));
  Reg().ShowComments();
  SelectKey({u"HKEY_USERS"_s, u"A"_s, u"Z"_s, u"; about B"_s});
  Reg().EditRename();
  TypeInRow(Reg(), u"about"_s);
  EXPECT_EQ(RowBox(Reg())->accessibleDescription(), u"A comment begins with a semicolon.");
  TypeInRow(Reg(), u"; about Z"_s);
  EXPECT_NE(Reg().Content().find("; about Z\r\n[HKEY_USERS\\A\\Z]"), std::string::npos);
}

TEST_F(TreeRows, AreCopiedInOtherForms) {
  OpenReg(kReg);
  Reg().CopyKeyPath();
  EXPECT_EQ(Copied(), u"HKEY_USERS\\A\\B");
  SelectValue(0);
  QTest::keySequence(View(u"LV"_s), QKeySequence::SelectAll);
  Reg().CopyAsText();
  EXPECT_EQ(Copied(), Rows().replace(u'|', u'\t') + u'\n');
  Reg().CopyRegAdd();
  EXPECT_EQ(Copied(),
            u"reg add \"HKEY_USERS\\A\\B\" /v \"ten\" /t REG_DWORD /d 0x0000000a /f\r\n"
            u"reg add \"HKEY_USERS\\A\\B\" /v \"Two\" /t REG_DWORD /d 0x00000002 /f\r\n"
            u"reg add \"HKEY_USERS\\A\\B\" /v \"text\" /t REG_SZ /d ^\"^%PATH^%^\" /f\r\n"
            u"rem HKEY_USERS\\A\\B \"odd\"=hex(4):01\r\n"
            u"reg delete \"HKEY_USERS\\A\\B\" /v \"gone\" /f\r\n");
  EXPECT_EQ(Notice(), u"1 value cannot be said by a reg add line, and is a comment there.");
  SelectKey({});
  Reg().ExpandAll();
  QTest::keySequence(View(u"TV"_s), QKeySequence::SelectAll);
  Reg().CopyAsText();
  EXPECT_EQ(Copied(), u"a.reg\n\tHKEY_USERS\n\t\tA\n\t\t\tB\n\t\tC\n");
  Reg().CopyKeyPath();
  EXPECT_TRUE(Copied().endsWith(u"\nHKEY_USERS\\A\\B\nHKEY_USERS\\C"));
  Reg().CopyRegAdd();
  EXPECT_TRUE(Copied().endsWith(u"reg add \"HKEY_USERS\\A\\B\" /f\r\nreg add \"HKEY_USERS\\C\" /f\r\n"));
}

TEST_F(TreeRows, ByTheRulesAreCopiedInOtherForms) {
  OpenReg("REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n@=\"a\\\\b\"\r\n\"h\"=hex:01,02\r\n\"n\"=dword:0000001a\r\n\r\n",
          Holding::ByRules);
  EXPECT_EQ(Current(Reg()), u"a.reg") << "the root, as ever";
  SelectKey({u"HKEY_USERS"_s, u"A"_s});
  const char* lines[] = {"/ve /t REG_SZ /d \"a\\b\"", "/v \"h\" /t REG_BINARY /d 0102",
                         "/v \"n\" /t REG_DWORD /d 0x0000001a"};
  for (int row = 0; row < 3; ++row) {
    SelectValue(row);
    Reg().CopyRegAdd();
    EXPECT_EQ(Copied(), u"reg add \"HKEY_USERS\\A\" "_s + QLatin1StringView(lines[row]) + u" /f\r\n"_s);
  }
}

TEST_F(TreeRows, OfTheListSortByAColumnAndStaySelected) {
  OpenReg(kReg);
  SelectValue(1);
  QHeaderView* header = View(u"LV"_s)->header();
  const auto click = [&](int column) {
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      {header->sectionViewportPosition(column) + 9, header->height() / 2});
    QString names;
    for (const QString& row : Rows().split(u'\n')) names += row.section(u'|', 0, 0) + u' ';
    return names;
  };
  EXPECT_EQ(click(2), u"Two ten text odd gone ");
  EXPECT_EQ(View(u"LV"_s)->currentIndex().data().toString(), u"Two");
  EXPECT_EQ(click(2), u"gone odd text ten Two ");
  EXPECT_TRUE(header->isSortIndicatorShown());
  ExpectDeletion(u"this value?"_s, MsgAnswer::Yes);
  Reg().EditDelete();
  EXPECT_EQ(Rows().section(u'\n', 3), u"ten|REG_DWORD|0x0000000a (10)");
  EXPECT_EQ(click(2), u"ten text odd gone ");
  EXPECT_EQ(click(0), u"gone odd ten text ");
  SelectKey({u"HKEY_USERS"_s, u"C"_s});
  SelectKey({u"HKEY_USERS"_s, u"A"_s, u"B"_s});
  EXPECT_TRUE(Rows().startsWith(u"gone|"));
}

TEST_F(TreeRows, AreReachedByKeysAndLeaveACollapsedSelection) {
  form_INI& window = OpenIni("; c\nk=1\n[a]\nx=1\n[b]\ny=1\nz=1\n", Holding::Whole);
  QTreeView* tree = Tree(window);
  window.ExpandAll();
  const struct {
    Qt::Key key;
    const char* rows;  ///< where it leads to, step by step
  } ways[] = {{Qt::Key_Down, "a b b"}, {Qt::Key_Up, "a w.ini w.ini"}};
  for (const auto& [key, rows] : ways)
    for (const QString& row : QString::fromLatin1(rows).split(u' ')) {
      QTest::keyClick(tree, key, Qt::ControlModifier);
      EXPECT_EQ(Current(window), row);
    }
  Select(window, {u"b"_s, u"y=1"_s});
  QTest::keyClick(tree, Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(Current(window), u"b");
  QTest::keyClick(tree, Qt::Key_End);
  EXPECT_EQ(Current(window), u"z=1");
  QTest::keyClick(tree, Qt::Key_Home);
  EXPECT_EQ(Current(window), u"w.ini");
  QTest::keyClick(tree, Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(tree->selectionModel()->selectedIndexes(), QModelIndexList{tree->currentIndex()}) << "one row alone";
  EXPECT_EQ(Current(window), u"z=1");
  const auto click = [&](const QStringList& path, Qt::KeyboardModifiers modifiers) {
    const QModelIndex before = tree->currentIndex();
    Select(window, path);
    const QPoint at = tree->visualRect(tree->currentIndex()).center();
    tree->setCurrentIndex(before);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, modifiers, at);
  };
  click({u"b"_s, u"y=1"_s}, {});
  QTest::keyClick(tree, Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(tree->selectionModel()->selectedRows().size(), 2);
  window.CopyAsText();
  EXPECT_EQ(Copied(), u"y=1\nz=1\n");
  tree->collapse(tree->currentIndex().parent());
  EXPECT_EQ(tree->selectionModel()->selectedRows().size(), 1) << "what nobody sees is not cut along";
  click({u"a"_s}, {});
  click({u"a"_s}, Qt::ControlModifier);
  EXPECT_EQ(tree->selectionModel()->selectedRows().size(), 1) << "commands go by what is selected";
}

TEST_F(TreeRows, HaveAContextMenuThatBeginsWithWhatADoubleClickDoes) {
  form_INI& window = OpenIni("[a]\nx=1\n", Holding::ByRules);
  Select(window, {u"a"_s});
  emit Tree(window)->customContextMenuRequested({1, 1});
  auto* menu = frame_->findChild<QMenu*>(u"context_menu"_s);
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->actions().first()->objectName(), u"menu_EditLine");
  EXPECT_EQ(menu->defaultAction(), menu->actions().first());
  EXPECT_FALSE(menu->defaultAction()->icon().isNull());
  menu->close();
  for (const auto kind : {DocumentKind::Ini, DocumentKind::Reg}) {
    NewDocument(global_, kind);
    for (const QString& name : {u"menu_Edit"_s, u"menu_EditReg"_s, u"menu_View"_s}) {
      QStringList keys;
      for (const QAction* action : global_.menus.Menu(name)->actions())
        if (const qsizetype at = action->text().indexOf(u'&'); at >= 0 && action->isVisible())
          keys += action->text().mid(at + 1, 1).toUpper();
      EXPECT_EQ(keys.removeDuplicates(), 0) << name.toStdString();
    }
  }
}
