#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QPrinter>

#include "RegWindow.h"
#include "shell/GlobalMenus.h"
#include "shell/LongWork.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class RegWholeWindow : public RegWindow {
 protected:
  static constexpr const char* kAllTypes =
      "Windows Registry Editor Version 5.00\r\n\r\n; top\r\n[HKEY_CURRENT_USER\\Alpha]\r\n@=\"d\\\\f\"\r\n"
      "\"t\"=\"a\\\"b\"\r\n\"n\"=dword:0000001a\r\n\"b\"=hex:01,02\r\n\"e\"=hex(2):25,00,00,00\r\n"
      "\"m\"=hex(7):61,00,00,00,62,00,00,00,\\\r\n  00,00\r\n\"q\"=hex(b):01,00,00,00,00,00,00,00\r\n"
      "\"odd\"=hex(2):25\r\n\"z\"=hex(0):\r\n\"u\"=hex(ffff0012):07\r\n\"gone\"=-\r\n; about Beta\r\n\r\n"
      "[hkey_current_user\\alpha\\Beta\\Deep]\r\nwhat is this\r\n\r\n[-HKEY_CURRENT_USER\\Old]\r\n";

  void OpenWhole(const std::string& bytes, int slot = 0) {
    Start();
    global_.settings.reg_whole = true;
    OpenPathList(global_, File(slot == 0 ? u"a.reg"_s : u"b.reg"_s, bytes));
  }
  std::string Saved() {
    Reg().FileSaveRegular();
    return BytesOf(InFolder(u"a.reg"_s));
  }
  void SelectRows(const QList<int>& rows) {
    SelectValue(rows[0]);
    for (const int row : rows)
      View(u"LV"_s)->selectionModel()->select(View(u"LV"_s)->model()->index(row, 0),
                                              QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  /// Fills a form_REGName.
  static void NameIs(const QString& name) {
    OnDialog(u"form_REGName"_s, [name](QWidget& dialog) {
      dialog.findChild<QLineEdit*>(u"txt_Name"_s)->setText(name);
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
  }
  /// Types a text into a form_REGValue.
  static void ValueIs(const QString& name, const QString& text) {
    OnDialog(u"form_REGValue"_s, [=](QWidget& dialog) {
      if (!name.isNull()) {
        auto* box = dialog.findChild<QLineEdit*>(u"txt_Name"_s);
        box->selectAll();
        QTest::keyClicks(box, name);
      }
      dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s)->setPlainText(text);
      QTest::mouseClick(dialog.findChild<QPushButton*>(u"cmd_OK"_s), Qt::LeftButton);
    });
  }
  QStringList Children(const QStringList& path) {
    SelectKey(path);
    const QModelIndex index = View(u"TV"_s)->currentIndex();
    QStringList names;
    for (int row = 0; row < index.model()->rowCount(index); ++row) {
      const QModelIndex child = index.model()->index(row, 0, index);
      const QString read = child.data(Qt::AccessibleTextRole).toString();
      names += read.isEmpty() ? child.data().toString() : read;
    }
    return names;
  }
  static std::string Replaced(std::string text, const std::string& part, const std::string& with) {
    return text.replace(text.find(part), part.size(), with);
  }
};

}  // namespace

TEST_F(RegWholeWindow, ShowsAllTypesDecodedAndSavesTheSameBytes) {
  OpenWhole(kAllTypes);
  EXPECT_EQ(Notice(), u"1 line is not understood and stays as it is: line 20.");
  EXPECT_EQ(Reg().windowTitle(), u"a.reg");
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  EXPECT_EQ(Rows(),
            u"(Default)|REG_SZ|d\\f\nt|REG_SZ|a\"b\nn|REG_DWORD|0x0000001a (26)\nb|REG_BINARY|01 02\n"
            "e|REG_EXPAND_SZ|%\nm|REG_MULTI_SZ|a b\nq|REG_QWORD|0x0000000000000001 (1)\nodd|REG_EXPAND_SZ|25\n"
            "z|REG_NONE|\nu|REG_0xffff0012|07\ngone|Deletion|(deleted when the file is imported)");
  const QModelIndex gone = View(u"LV"_s)->model()->index(10, 0);
  EXPECT_TRUE(gone.data(Qt::FontRole).value<QFont>().strikeOut());
  EXPECT_EQ(gone.data(Qt::AccessibleTextRole).toString(), u"gone (deletion)");
  EXPECT_EQ(Children({u"HKEY_CURRENT_USER"_s}), (QStringList{u"Alpha"_s, u"Old (deletion)"_s}));
  EXPECT_EQ(Children({u"HKEY_CURRENT_USER"_s, u"Alpha"_s}), (QStringList{u"Beta"_s}));
  Reg().ShowComments();
  EXPECT_EQ(Children({u"HKEY_CURRENT_USER"_s, u"Alpha"_s}), (QStringList{u"; top"_s, u"; about Beta"_s, u"Beta"_s}));
  EXPECT_TRUE(global_.menus.Action(u"menu_ViewShowComments"_s)->isChecked());
  Reg().ShowComments();
  EXPECT_EQ(Saved(), kAllTypes);
  EXPECT_EQ(Notice(), u"1 line is not understood and stays as it is: line 20.");
  Reg().FileSaveExpanded();
  EXPECT_EQ(BytesOf(InFolder(u"a.reg"_s)),
            Replaced(kAllTypes, "[hkey_current_user", "[HKEY_CURRENT_USER\\Alpha\\Beta]\r\n\r\n[hkey_current_user"));
}

TEST_F(RegWholeWindow, AnEditChangesItsLinesAlone) {
  OpenWhole(kAllTypes);
  std::string expected = kAllTypes;
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  SelectValue(1);
  OnDialog(u"form_REGValue"_s, [](QWidget& dialog) {
    EXPECT_EQ(dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s)->toPlainText(), u"a\"b");
    dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s)->setPlainText(u"CANCEL"_s);
    QTest::keyClick(dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s), Qt::Key_Return);
  });
  Reg().EditModify();
  expected = Replaced(expected, "\"a\\\"b\"", "\"CANCEL\"");
  EXPECT_EQ(Saved(), expected);

  OnDialog(u"form_REGValue"_s, [](QWidget& dialog) {
    auto* name = dialog.findChild<QLineEdit*>(u"txt_Name"_s);
    EXPECT_EQ(name->text(), u"New Value #1");
    name->selectAll();
    QTest::keyClicks(name, u"GONE"_s);
    EXPECT_FALSE(dialog.findChild<QPushButton*>(u"cmd_OK"_s)->isEnabled());
    EXPECT_EQ(name->accessibleDescription(), u"This key has a value of this name already.");
    QTest::keyClicks(name, u"2"_s);
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  Reg().EditNewMultiString();
  expected =
      Replaced(expected, "\"gone\"=-\r\n; about Beta\r\n", "\"gone\"=-\r\n; about Beta\r\n\"GONE2\"=hex(7):00,00\r\n");
  EXPECT_EQ(Saved(), expected);
  EXPECT_EQ(View(u"LV"_s)->currentIndex().row(), 11);

  SelectRows({2, 3});
  ExpectDeletion(u"these 2 values?"_s, MsgAnswer::Yes);
  Reg().EditDelete();
  expected = Replaced(expected, "\"n\"=dword:0000001a\r\n\"b\"=hex:01,02\r\n", "");
  EXPECT_EQ(Saved(), expected);
  SelectValue(3);
  dialogs_.ExpectMsgBox(u"Are you sure you want to put a deletion in place of this value?"_s, u"Write a Deletion"_s,
                        MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
  Reg().EditWriteDeletion();
  expected = Replaced(expected, "hex(7):61,00,00,00,62,00,00,00,\\\r\n  00,00", "-");
  EXPECT_EQ(Saved(), expected);
  Reg().EditRename();
  TypeInRow(Reg(), u"M"_s);
  expected = Replaced(expected, "\"m\"=-", "\"M\"=-");
  QPrinter printer;
  printer.setOutputFileName(InFolder(u"out.pdf"_s));
  Reg().PrintDoc(printer);
  EXPECT_TRUE(Reg().IsModified()) << "nothing was saved";
  EXPECT_EQ(Saved(), expected);
  // A deletion stays one until it gets a type.
  OnDialog(u"form_REGValue"_s, [](QWidget& dialog) {
    EXPECT_EQ(dialog.findChild<QComboBox*>(u"cmb_Type"_s)->currentText(), u"Deletion");
    EXPECT_FALSE(dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s)->isVisible());
    QTest::keyClick(dialog.findChild<QComboBox*>(u"cmb_Type"_s), Qt::Key_Return);
  });
  Reg().EditModify();
  EXPECT_FALSE(Reg().IsModified());
  OnDialog(u"form_REGValue"_s, [](QWidget& dialog) {
    QTest::keyClick(dialog.findChild<QComboBox*>(u"cmb_Type"_s), Qt::Key_Down);
    QTest::keyClicks(dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s), u"back"_s);
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  Reg().EditModify();
  expected = Replaced(expected, "\"M\"=-", "\"M\"=\"back\"");
  EXPECT_EQ(Saved(), expected);
  OnDialog(u"form_REGValue"_s, [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
  Reg().EditModify();
  EXPECT_FALSE(Reg().IsModified()) << "the same again";
}

TEST_F(RegWholeWindow, KeysAreAddedRenamedAndDeleted) {
  OpenWhole(kAllTypes);
  std::string expected = kAllTypes;
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  OnDialog(u"form_REGName"_s, [](QWidget& dialog) {
    auto* name = dialog.findChild<QLineEdit*>(u"txt_Name"_s);
    name->setText(u"a\\b"_s);
    EXPECT_EQ(name->accessibleDescription(), u"The name of a key has no backslash.");
    name->setText(u"beta"_s);
    EXPECT_EQ(name->accessibleDescription(), u"There is a key of this name already.");
    EXPECT_FALSE(dialog.findChild<QPushButton*>(u"cmd_OK"_s)->isEnabled());
    name->setText(u"New"_s);
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  Reg().EditNewKey();
  expected = Replaced(expected, "this\r\n\r\n", "this\r\n\r\n[HKEY_CURRENT_USER\\Alpha\\New]\r\n\r\n");
  EXPECT_EQ(Saved(), expected);
  Reg().EditRename();
  TypeInRow(Reg(), u"Omega"_s);
  expected = Replaced(expected, "ER\\Alpha]", "ER\\Omega]");
  expected = Replaced(expected, "er\\alpha\\", "er\\Omega\\");
  expected = Replaced(expected, "ER\\Alpha\\New]", "ER\\Omega\\New]");
  EXPECT_EQ(Saved(), expected);
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Omega"_s, u"Beta"_s});
  dialogs_.ExpectMsgBox(
      u"Are you sure you want to put a deletion in place of this branch, all branches under it, and all values associated with this branch and all branches under it?"_s,
      u"Write a Deletion"_s, MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
  Reg().EditWriteDeletion();
  EXPECT_EQ(Children({u"HKEY_CURRENT_USER"_s, u"Omega"_s}), (QStringList{u"Beta (deletion)"_s, u"New"_s}));
  EXPECT_NE(Saved().find("[-HKEY_CURRENT_USER\\Omega\\Beta]\r\n"), std::string::npos);
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Old"_s});
  ExpectDeletion(u"this deletion?"_s, MsgAnswer::Yes);
  Reg().EditDelete();
  EXPECT_EQ(Children({u"HKEY_CURRENT_USER"_s}), (QStringList{u"Omega"_s}));
  Reg().ShowComments();
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Omega"_s, u"; top"_s});
  EXPECT_EQ(Reg().findChild<QLabel*>(u"lbl_location"_s)->text(), u"HKEY_CURRENT_USER\\Omega");
  NameIs(u"; new"_s);
  Reg().EditModify();
  EXPECT_TRUE(Saved().starts_with("Windows Registry Editor Version 5.00\r\n\r\n; new\r\n[HKEY"));
}

TEST_F(RegWholeWindow, CopiesBetweenKeysAndDocuments) {
  OpenWhole(kAllTypes);
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  SelectRows({1, 5});
  Reg().EditCopy();
  EXPECT_EQ(QApplication::clipboard()->text(),
            u"Windows Registry Editor Version "
            u"5.00\r\n\r\n\"t\"=\"a\\\"b\"\r\n\"m\"=hex(7):61,00,00,00,62,00,00,00,\\\r\n  00,00\r\n");
  Reg().EditPaste();
  EXPECT_TRUE(Rows().endsWith(u"t (2)|REG_SZ|a\"b\nm (2)|REG_MULTI_SZ|a b")) << Rows().toStdString();
  SelectRows({11});
  Reg().EditCut();
  EXPECT_TRUE(Rows().endsWith(u"imported)\nm (2)|REG_MULTI_SZ|a b"));

  // The other kind of file has its text in the code page.
  OpenPathList(global_, File(u"b.reg"_s, "REGEDIT4\n\n[HKEY_USERS\\K]\n\"x\"=\"1\"\n"));
  auto& four = dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 1));
  auto* tree = four.findChild<QTreeView*>(u"TV"_s);
  const auto select = [tree](std::initializer_list<int> rows) {
    QModelIndex index = tree->model()->index(0, 0);
    for (const int row : rows) index = tree->model()->index(row, 0, index);
    tree->setCurrentIndex(index);
    QTest::keyClick(tree, Qt::Key_Shift);
  };
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  Reg().EditCopy();
  EXPECT_TRUE(QApplication::clipboard()->text().startsWith(
      u"Windows Registry Editor Version 5.00\r\n\r\n; top\r\n[HKEY_CURRENT_USER\\Alpha]\r\n@="));
  select({0, 0});
  four.EditPaste();
  select({0});
  QApplication::clipboard()->setText(u"\"y\"=hex(2):41,00"_s);
  four.EditPaste();
  four.FileSaveRegular();
  const std::string saved = BytesOf(InFolder(u"b.reg"_s));
  for (const char* part : {"\n[HKEY_USERS\\K\\Alpha]\n@=\"d\\\\f\"\n", "\"m\"=hex(7):61,00,62,00,00\n", "\"gone\"=-\n",
                           "\"odd\"=hex(2):25\n", "\n[HKEY_USERS\\K\\Alpha\\Beta\\Deep]\n", "\"y\"=hex(2):41,00\n"})
    EXPECT_NE(saved.find(part), std::string::npos) << part << " in\n" << saved;
  EXPECT_EQ(saved.find('\r'), std::string::npos) << "lines end as in the document";
  // At the root, keys come where their paths say.
  select({});
  QApplication::clipboard()->setText(u"[HKEY_USERS\\k]\n\"X\"=\"2\"\nnone\n"_s);
  four.EditPaste();
  four.FileSaveRegular();
  EXPECT_NE(BytesOf(InFolder(u"b.reg"_s)).find("[HKEY_USERS\\K]\n\"X\"=\"2\"\nnone\n"), std::string::npos);
  QApplication::clipboard()->setText(u"; c\nnone\n"_s);
  four.EditPaste();
  const QString notice = four.findChild<NoticeBar*>()->Text();
  EXPECT_TRUE(notice.contains(u"1 line that came in is not understood and stays as it is."_s)) << notice.toStdString();
  EXPECT_TRUE(notice.contains(u"1 comment came in. View, Show Comments shows it."_s)) << notice.toStdString();
}

TEST_F(RegWholeWindow, BytesThatAreNoTextStay) {
  const std::string value = "\"\xC3\xA9\xFF\"=\"\xC3\xA9\xC3\xA9\xFE\"\r\n";
  const std::string start = "REGEDIT4\r\n\r\n; \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\r\n[HKEY_CURRENT_USER\\a]\r\n";
  OpenWhole(start + value);
  SelectKey({u"HKEY_CURRENT_USER"_s, u"a"_s});
  const auto modify = [&](const QString& more) {
    SelectValue(0);
    OnDialog(u"form_REGValue"_s, [&more](QWidget& dialog) {
      auto* text = dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s);
      text->moveCursor(QTextCursor::End);
      text->insertPlainText(more);
      QTest::mouseClick(dialog.findChild<QPushButton*>(u"cmd_OK"_s), Qt::LeftButton);
    });
    Reg().EditModify();
  };
  modify({});
  EXPECT_EQ(Reg().Content(), start + value);
  modify(u"!"_s);
  EXPECT_EQ(Reg().Content(), start + std::string(value).insert(value.size() - 3, "!"));
  SelectValue(0);
  Reg().EditCut();
  EXPECT_EQ(Reg().Content(), start);
  Reg().EditPaste();
  EXPECT_EQ(Reg().Content(), start + std::string(value).insert(value.size() - 3, "!"));
}

TEST_F(RegWholeWindow, MenusAndOldFilesAndTheWayBack) {
  Open(kFile);
  Reg().Form_Activate();
  const auto shown = [this](const QString& item) { return global_.menus.Action(item)->isVisible(); };
  const QStringList items{u"menu_EditRegCut"_s, u"menu_EditWriteDeletion"_s, u"menu_EditNewQword"_s,
                          u"menu_EditRegClipboard"_s, u"menu_ViewShowComments"_s};
  for (const QString& item : items) EXPECT_FALSE(shown(item)) << item.toStdString();
  Reg().WholeFile();
  for (const QString& item : items) EXPECT_TRUE(shown(item)) << item.toStdString();
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  EXPECT_TRUE(Rows().startsWith(u"(Default)|REG_SZ|dft\n"));
  QFocusEvent by_tab(QEvent::FocusIn, Qt::TabFocusReason);
  QApplication::sendEvent(View(u"LV"_s), &by_tab);
  EXPECT_TRUE(View(u"LV"_s)->selectionModel()->isRowSelected(0)) << "Enter has a row to open";
  Reg().WholeFile();
  for (const QString& item : items) EXPECT_FALSE(shown(item)) << item.toStdString();
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  EXPECT_TRUE(Rows().startsWith(u"[default]|REG_SZ|dft\n"));

  global_.settings.reg_whole = true;
  NewDocument(global_, DocumentKind::Reg);
  auto& fresh = dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 1));
  EXPECT_EQ(fresh.Content(), "REGEDIT4\r\n\r\n");
  OpenPathList(global_, File(u"old.reg"_s, "REGEDIT\r\nHKEY_CLASSES_ROOT\\.x = text\r\n"));
  auto& old = dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 2));
  auto* tree = old.findChild<QTreeView*>(u"TV"_s);
  tree->setCurrentIndex(tree->model()->index(0, 0, tree->model()->index(0, 0, tree->model()->index(0, 0))));
  auto* list = old.findChild<QTreeView*>(u"LV"_s);
  list->setCurrentIndex(list->model()->index(0, 0));
  QTest::keyClick(list, Qt::Key_Shift);
  EXPECT_FALSE(global_.menus.Action(u"menu_EditWriteDeletion"_s)->isEnabled());
  OnDialog(u"form_REGValue"_s, [](QWidget& dialog) {
    EXPECT_TRUE(dialog.findChild<QLineEdit*>(u"txt_Name"_s)->isReadOnly());
    EXPECT_FALSE(dialog.findChild<QComboBox*>(u"cmb_Type"_s)->isEnabled());
    dialog.findChild<QPlainTextEdit*>(u"txt_Text"_s)->setPlainText(u"other"_s);
    QTest::mouseClick(dialog.findChild<QPushButton*>(u"cmd_OK"_s), Qt::LeftButton);
  });
  old.EditModify();
  old.FileSaveRegular();
  EXPECT_EQ(BytesOf(InFolder(u"old.reg"_s)), "REGEDIT\r\nHKEY_CLASSES_ROOT\\.x = other\r\n");
}

TEST_F(RegWholeWindow, ALongReadCanBeCancelled) {
  std::string text = "REGEDIT4\r\n[HKEY_USERS\\A]\r\n";
  for (int line = 0; line < 50'000; ++line) text += "\"v\"=\"1\"\r\n";
  const int quiet_ms = std::exchange(LongWork::quiet_ms, 0);
  OnDialog(u"LongWorkProgress"_s, [](QWidget& box) { box.findChild<QPushButton*>()->click(); });
  OpenWhole(text);
  LongWork::quiet_ms = quiet_ms;
  EXPECT_FALSE(Reg().IsOpen());
  EXPECT_EQ(Reg().Document().NodeCount(), 1U);
}
