#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMdiSubWindow>

#include "RegWindow.h"
#include "shell/GlobalMenus.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(RegWindow, CtrlPlusMinusAndZeroZoomTreeAndList) {
  Open(kFile);
  QTreeView* tree = View(u"TV"_s);
  QTreeView* list = View(u"LV"_s);
  tree->setCurrentIndex(tree->model()->index(0, 0));
  tree->collapse(tree->currentIndex());
  const double usual = tree->fontInfo().pointSizeF();
  if (usual <= 0) GTEST_SKIP() << "no fonts here";
  for (int time = 0; time < 3; ++time) QTest::keyClick(list, Qt::Key_Plus, Qt::ControlModifier | Qt::KeypadModifier);
  QTest::keyClick(tree, Qt::Key_Equal, Qt::ControlModifier);
  EXPECT_NEAR(tree->fontInfo().pointSizeF(), usual * 1.46, 0.5);
  EXPECT_EQ(list->fontInfo().pointSizeF(), tree->fontInfo().pointSizeF());
  EXPECT_GT(list->iconSize().width(), 16);
  QTest::keyClick(tree, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_LT(list->fontInfo().pointSizeF(), usual * 1.4);
  QTest::keyClick(tree, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(list->fontInfo().pointSizeF(), usual);
  EXPECT_FALSE(list->iconSize().isValid());
  EXPECT_FALSE(tree->isExpanded(tree->currentIndex())) << "plus opens keys, but not with Ctrl";
  QTest::keyClick(tree, Qt::Key_Space, Qt::ControlModifier);
  EXPECT_TRUE(tree->selectionModel()->isSelected(tree->currentIndex()));
}

TEST_F(RegWindow, ShowsKeysAndValuesAndSavesBothLayouts) {
  Open(kFile);
  EXPECT_EQ(Reg().windowTitle(), u"a.reg");
  EXPECT_EQ(Notice(), u"Saved otherwise: 1 default value (@), which gets the name \"[default]\"."_s);
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  EXPECT_EQ(Rows(), u"[default]|REG_SZ|dft\ns|REG_SZ|a\\\\b\nn|DWORD|0000000a\nh|HEX|01,02");
  EXPECT_EQ(Reg().findChild<QLabel*>(u"lbl_location"_s)->text(), u"HKEY_CURRENT_USER\\Alpha");
  const std::string alpha =
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Alpha]\r\n\"[default]\"=\"dft\"\r\n\"s\"=\"a\\\\b\"\r\n"
      "\"n\"=dword:0000000a\r\n\"h\"=hex:01,02\r\n\r\n";
  Reg().FileSaveExpanded();
  EXPECT_EQ(BytesOf(InFolder(u"a.reg"_s)), alpha + "[HKEY_CURRENT_USER\\Alpha\\Beta]\r\n\r\n");
  Reg().FileSaveRegular();
  EXPECT_EQ(BytesOf(InFolder(u"a.reg"_s)), alpha);

  common_dialog_.ExpectSave({});
  Reg().FileSaveAsExpanded();
  EXPECT_EQ(Reg().File().Path(), InFolder(u"a.reg"_s));
  common_dialog_.ExpectSave(InFolder(u"b.reg"_s));
  Reg().FileSaveAsRegular();
  EXPECT_EQ(common_dialog_.shown.back().title, u"Save Registry File");
  EXPECT_EQ(common_dialog_.shown.back().filter, u"Registry File|*.REG");
  EXPECT_EQ(Reg().windowTitle(), u"b.reg");
  EXPECT_EQ(BytesOf(InFolder(u"b.reg"_s)), alpha);
}

TEST_F(RegWindow, AddsKeysAndValues) {
  Start();
  NewDocument(global_, DocumentKind::Reg);
  dialogs_.ExpectMsgBox(
      u"You can not add values to this section of the registry. You can only add values to the hives or the branches."_s,
      u"Can't Add Value"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::None);
  Reg().EditNewString();
  const auto check = [](QWidget& dialog) {
    auto* users = dialog.findChild<QCheckBox*>(u"cb_HKEY_USERS"_s);
    EXPECT_TRUE(users->isEnabled());
    users->click();
    dialog.findChild<QPushButton*>(u"cmd_OK"_s)->click();
  };
  OnDialog(u"form_AddHK"_s, check);
  Reg().EditNewKey();
  OnDialog(u"form_AddHK"_s, [](QWidget& dialog) {
    EXPECT_FALSE(dialog.findChild<QCheckBox*>(u"cb_HKEY_USERS"_s)->isEnabled());
    dialog.close();
  });
  Reg().EditNewKey();
  SelectKey({u"HKEY_USERS"_s});
  for (const char* name : {" Run ", "run", "Run"}) {
    dialogs_.ExpectInputBox(u"Enter Desired Branch Name:"_s, u"Add Branch / Key"_s, {}, QString::fromLatin1(name));
    Reg().EditNewKey();
  }
  EXPECT_EQ(Reg().Document().NodeCount(), 4U);
  EXPECT_EQ(Reg().windowTitle(), u"New Registry File [CHANGED]");

  SelectKey({u"HKEY_USERS"_s, u"Run"_s});
  OnDialog(u"form_REGEdit"_s, Fill(u" v "_s, u" one\ntwo "_s, u"cmd_OK"_s));
  Reg().EditNewString();
  OnDialog(u"form_REGEdit"_s, Fill(u"never"_s, u"1"_s, u"cmd_Cancel"_s));
  Reg().EditNewDword();
  dialogs_.ExpectMsgBox(u"This value already exists in this key.  Please edit the existing value instead."_s,
                        u"Already Exists"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::None);
  OnDialog(u"form_REGEdit"_s, Fill(u"v"_s, u"00"_s, u"cmd_OK"_s));
  Reg().EditNewBinary();
  OnDialog(u"form_REGEdit"_s, Fill(u"b"_s, u"0a,0b"_s, u"cmd_OK"_s));
  Reg().EditNewBinary();
  EXPECT_EQ(Rows(), u"v|REG_SZ|onetwo\nb|HEX|0a,0b");
}

TEST_F(RegWindow, ModifiesRenamesAndDeletes) {
  Open("REGEDIT4\r\n[HKEY_USERS\\Run]\r\n\"v\"=\"onetwo\"\r\n\"b\"=hex:0a,0b\r\n\r\n[HKEY_USERS\\run]\r\n\r\n");
  SelectKey({u"HKEY_USERS"_s, u"Run"_s});
  Reg().EditModify();  // the tree has the focus: nothing
  SelectValue(1);
  EXPECT_TRUE(global_.menus.Action(u"menu_EditModify"_s)->isEnabled());
  OnDialog(u"form_REGEdit"_s, [](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), u"Edit Binary Value");
    EXPECT_TRUE(dialog.findChild<QPlainTextEdit*>()->font().fixedPitch());
    Fill({}, u"ff"_s, u"cmd_OK"_s)(dialog);
  });
  Reg().EditModify();
  OnDialog(u"form_REGEdit"_s, Fill({}, u"CANCEL"_s, u"cmd_OK"_s));
  Reg().EditModify();
  EXPECT_EQ(Rows(), u"v|REG_SZ|onetwo\nb|HEX|ff");
  SelectValue(0);
  ExpectDeletion(u"this value?"_s, MsgAnswer::Yes);
  Reg().EditDelete();
  EXPECT_EQ(Rows(), u"b|HEX|ff");
  SelectKey({u"HKEY_USERS"_s, u"run"_s});
  SelectKey({u"HKEY_USERS"_s, u"Run"_s});
  EXPECT_EQ(Rows(), u"||\nb|HEX|ff") << "shown again, the deleted record is an empty row";

  dialogs_.ExpectInputBox(u"Rename this Key"_s, u"Branch Rename"_s, u"Run"_s, u"run"_s);
  Reg().EditRename();
  const QString branch =
      u"this branch, all branches under it, and all values associated with this branch and all branches under it?"_s;
  ExpectDeletion(branch, MsgAnswer::No);
  Reg().EditDelete();
  ExpectDeletion(branch, MsgAnswer::Yes);
  Reg().EditDelete();
  EXPECT_EQ(Reg().Document().NodeCount(), 3U);
  SelectKey({});
  ExpectDeletion(branch, MsgAnswer::Yes);
  Reg().EditDelete();
  EXPECT_EQ(Reg().Document().NodeCount(), 3U) << "the root stays";
}

TEST_F(RegWindow, ExpandsADeepTreeOnlySoFar) {
  std::string path = "HKEY_USERS";
  for (int level = 0; level < 100'000; ++level) path += "\\k";
  Open("REGEDIT4\r\n[" + path + "]\r\n\r\n");
  SelectKey({});
  QTest::keyClick(View(u"TV"_s), Qt::Key_Asterisk);
  EXPECT_TRUE(View(u"TV"_s)->isExpanded(View(u"TV"_s)->model()->index(0, 0)));
}

TEST_F(RegWindow, EditsThatShareANameAreSaid) {
  Open("REGEDIT4\r\n[HKEY_USERS\\A\\S]\r\n\"x\"=\"1\"\r\n[HKEY_USERS\\B]\r\n\"y\"=\"1\"\r\n\r\n");
  EXPECT_EQ(Notice(), u"");
  SelectKey({u"HKEY_USERS"_s, u"B"_s});
  dialogs_.ExpectInputBox(u"Enter Desired Branch Name:"_s, u"Add Branch / Key"_s, {}, u"S"_s);
  Reg().EditNewKey();
  EXPECT_EQ(Notice(), u"Other keys are named \"S\" too: saving writes the values of all of them under each.");
}

TEST_F(RegWindow, ColumnsComeFromTheSettingsAtEachResizeAndAllAreInSightWithout) {
  Open(kFile);
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  EXPECT_EQ(Reg().findChild<QLabel*>(u"lbl_location"_s)->accessibleName(), u"HKEY_CURRENT_USER\\Alpha");
  const auto width = [this](int column) { return View(u"LV"_s)->columnWidth(column); };
  for (const QSize size : {QSize(420, 300), QSize(900, 500)}) {
    Reg().SubWindow()->resize(size);
    QApplication::processEvents();
    EXPECT_EQ(width(0) + width(1) + width(2), View(u"LV"_s)->viewport()->width());
    EXPECT_GE(width(2), width(1));
  }
  EXPECT_EQ(registry_.ReadValue(SettingsRoot + u"\\REG Editor"_s, u"LVC3"_s), u"") << "nobody set them";
  View(u"LV"_s)->setColumnWidth(2, 321);
  NewDocument(global_, DocumentKind::Reg);
  auto* other = global_.documents.At(DocumentKind::Reg, 1)->findChild<QTreeView*>(u"LV"_s);
  EXPECT_EQ(other->columnWidth(2), 321);
  other->setColumnWidth(1, 111);
  EXPECT_NE(width(1), 111);
  Reg().SubWindow()->resize(800, 400);
  QApplication::processEvents();
  EXPECT_EQ(width(1), 111);
  EXPECT_EQ(width(2), 321);
}
