#include "windows/reg/form_REG.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "Editor.h"
#include "shell/AutoSave.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr const char* kFile =
    "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Alpha]\r\n@=\"dft\"\r\n\"s\"=\"a\\\\b\"\r\n\"n\"=dword:0000000a\r\n"
    "\"h\"=hex:01,\\\r\n  02\r\n\r\n[HKEY_CURRENT_USER\\Alpha\\Beta]\r\n\r\n";

class RegWindow : public Editor {
 protected:
  form_REG& Reg() { return dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 0)); }
  void Open(const std::string& bytes) {
    Start();
    OpenPathList(global_, File(u"a.reg"_s, bytes));
  }
  QTreeView* View(const QString& name) { return Reg().findChild<QTreeView*>(name); }
  QString Notice() { return Reg().findChild<NoticeBar*>()->Text(); }

  void SelectKey(const QStringList& path) {
    const QAbstractItemModel* model = View(u"TV"_s)->model();
    QModelIndex index = model->index(0, 0);
    for (const QString& text : path)
      for (int row = 0; row < model->rowCount(index); ++row)
        if (model->index(row, 0, index).data().toString() == text) {
          index = model->index(row, 0, index);
          break;
        }
    View(u"TV"_s)->setCurrentIndex(index);
    QTest::keyClick(View(u"TV"_s), Qt::Key_Shift);
  }
  void SelectValue(int row) {
    View(u"LV"_s)->setCurrentIndex(View(u"LV"_s)->model()->index(row, 0));
    QTest::keyClick(View(u"LV"_s), Qt::Key_Shift);
  }
  /// The list as it shows, a row a line.
  QString Rows() {
    const QAbstractItemModel* model = View(u"LV"_s)->model();
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row)
      rows += QStringList{model->index(row, 0).data().toString(), model->index(row, 1).data().toString(),
                          model->index(row, 2).data().toString()}
                  .join(u'|');
    return rows.join(u'\n');
  }
  static std::function<void(QWidget&)> Fill(const QString& name, const QString& data, const QString& button) {
    return [=](QWidget& dialog) {
      if (!name.isEmpty()) dialog.findChild<QLineEdit*>(u"txt_Name"_s)->setText(name);
      dialog.findChild<QPlainTextEdit*>(u"txt_Data"_s)->setPlainText(data);
      QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    };
  }
  void ExpectDeletion(const QString& what, MsgAnswer answer) {
    dialogs_.ExpectMsgBox(u"Are you sure you want to permanently delete "_s + what, u"Deletion Confirmation"_s,
                          MsgButtons::YesNo, answer, MsgIcon::Question);
  }
};

}  // namespace

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

TEST_F(RegWindow, AddsModifiesRenamesAndDeletes) {
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

TEST_F(RegWindow, AsksAboutHeaderAndSizeAndLogsWhatFailed) {
  const auto ask = [this](const QString& text, const QString& title, MsgAnswer answer, MsgIcon icon) {
    dialogs_.ExpectMsgBox(text, title, MsgButtons::YesNo, answer, icon);
  };
  const QString header =
      u"This file does not have the correct header definitions required for registry files.  Do you wish to attemp to "
      "open this file anyway?"_s;
  ask(header, u"Error in File Type"_s, MsgAnswer::No, MsgIcon::Question);
  Open("regedit4\r\n");
  EXPECT_EQ(Reg().Tag(), u"");

  ask(header, u"Error in File Type"_s, MsgAnswer::Yes, MsgIcon::Question);
  const std::string text = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n\"x\"=\"\xE9\"\r\n\r\n";
  std::string utf16 = "\xFF\xFE";
  for (const char c : text) utf16.append(1, c).append(1, '\0');
  OpenPathList(global_, File(u"five.reg"_s, utf16));
  SelectKey({u"HKEY_USERS"_s, u"A"_s});
  EXPECT_EQ(Rows(), u"x|REG_SZ|\u00E9");
  Reg().FileClose();

  std::string large = "REGEDIT4\r\n[HKEY_USERS\\A]\r\n";
  for (int line = 0; line < 600; ++line) large += "\"v\"=\"1\"\r\n";
  ask(u"This file is very large, and processing could take a while. Do you wish to continue?"_s,
      u"Large Registry File"_s, MsgAnswer::No, MsgIcon::None);
  dialogs_.while_asking = [this] { EXPECT_FALSE(Reg().IsModified()) << "a half-read file is nothing to rescue"; };
  OpenPathList(global_, File(u"large.reg"_s, large));
  dialogs_.while_asking = [] {};
  EXPECT_EQ(Reg().Document().NodeCount(), 1U);
  EXPECT_TRUE(View(u"TV"_s)->isVisible());
  EXPECT_EQ(Notice(), u"Nothing of the file was read. A save would put an empty document in its place.");
  Reg().FileSaveRegular();
  EXPECT_EQ(
      Notice(),
      u"The save left out, or wrote in another form: all that the file held. File History has the file as it was.");
  EXPECT_EQ(history_.contents.Read(history_.versions.List(InFolder(u"large.reg"_s))[0].digest), large);
  Reg().FileClose();

  // Whoever built the tests may be another one than who runs them.
  const bool is_ours = QFileInfo(shell_utilities_.ProgramFolder()).isWritable();
  const QString log =
      (is_ours ? shell_utilities_.ProgramFolder() : shell_utilities_.UserDataFolder()) + u"/REG_ERR.TME"_s;
  const QString shown_log = QDir::toNativeSeparators(log);
  dialogs_.ExpectMsgBox(u"Errors were reported during inport.  Please see "_s + shown_log + u"  for details."_s,
                        u"Errors:"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Information);
  OpenPathList(global_, File(u"bad.reg"_s, "REGEDIT4\r\n[HKEY_USERS\\A]\r\n\"bad\"\r\n; c\r\n\"k\"=\"v\"\r\n"));
  EXPECT_EQ(BytesOf(log), "The following entries could not be processed:\r\n\r\nA: \"bad\"\r\r\n");
  EXPECT_EQ(Notice(), u"Not taken: 1 line that failed, 1 comment, the last line, which needs an empty one after it.");
  Reg().FileClose();

  OpenPathList(global_, File(u"hive.reg"_s, "REGEDIT4\r\n[HKEY_USERS\\A]\r\n[HKLM\\A]\r\n\"k\"=\"v\"\r\n"));
  EXPECT_FALSE(View(u"TV"_s)->isVisible()) << "kept: the import just stops";
  EXPECT_EQ(Reg().findChild<QLabel*>(u"lbl_location"_s)->text(), u"Importing Data:");
  EXPECT_TRUE(Notice().startsWith(u"The file ended early at line 3: its key belongs to no known hive"));
  OpenPathList(global_, File(u"minus.reg"_s, "REGEDIT4\r\n[HKEY_USERS\\A]\r\n[-HKEY_USERS\\B]\r\n\r\n"));
  EXPECT_TRUE(global_.documents.At(DocumentKind::Reg, 1)
                  ->findChild<NoticeBar*>()
                  ->Text()
                  .startsWith(u"The file ended early at line 3: it deletes a key"));
  const QList<QProgressBar*> bars = Reg().findChildren<QProgressBar*>();
  EXPECT_FALSE(bars[0]->isHidden());
  Reg().FileClose();
  for (const QProgressBar* bar : bars) EXPECT_TRUE(bar->isHidden()) << "the next document has none of it";
}

TEST_F(RegWindow, SharedNamesAreSaidAndOnlyAnEnormousFileIsAskedAbout) {
  std::string text = "REGEDIT4\r\n";
  for (int key = 0; key < 230; ++key)
    text +=
        "[HKEY_USERS\\" + std::to_string(key) + "\\Same]\r\n\"value of a length\"=\"" + std::string(40, 'x') + "\"\r\n";
  Open(text + "\r\n");
  EXPECT_EQ(Notice(), u"230 keys share a name with another key: saving writes the values of all of them under each.");
  Reg().FileSaveRegular();
  EXPECT_GT(BytesOf(InFolder(u"a.reg"_s)).size(), 230U * 230 * 60) << "more than a hundredfold, and unasked";

  text = "REGEDIT4\r\n";
  const std::string data(80'000, 'x');
  for (int key = 0; key < 130; ++key)
    text += "[HKEY_USERS\\" + std::to_string(key) + "\\Same]\r\n\"v\"=\"" + data + "\"\r\n";
  OpenPathList(global_, File(u"b.reg"_s, text + "\r\n"));
  auto& large = dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 1));
  const QString size = QLocale().formattedDataSize(130LL * 130 * (80'000 + 8) + 4000);
  const auto ask = [&] {
    dialogs_.ExpectMsgBox(
        u"So many keys share their names that the file would have "_s + size + u".  Save it nevertheless?"_s,
        u"Tamarind Editor"_s, MsgButtons::YesNo, MsgAnswer::No, MsgIcon::Question);
  };
  ask();
  large.FileSaveRegular();
  EXPECT_EQ(BytesOf(InFolder(u"b.reg"_s)), text + "\r\n");
  dialogs_.ExpectMsgBox(
      u"So many keys share their names that the printout would have "_s + size + u".  That is too much to print."_s,
      u"Tamarind Editor"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Warning);
  QPrinter printer;
  large.PrintDoc(printer);

  auto* keys = large.findChild<QTreeView*>(u"TV"_s);
  keys->setCurrentIndex(keys->model()->index(0, 0, keys->model()->index(0, 0)));
  dialogs_.ExpectInputBox(u"Enter Desired Branch Name:"_s, u"Add Branch / Key"_s, {}, u"new"_s);
  large.EditNewKey();
  frame_->Saver().SetAutoSaveTimer(global_.settings.auto_save_period = 1);
  auto* timer = frame_->Saver().findChild<QTimer*>(u"AutoSaveTimer"_s);
  QTimerEvent minute(timer->timerId());
  QApplication::sendEvent(timer, &minute);
  EXPECT_TRUE(large.findChild<NoticeBar*>()->Text().contains(u"AutoSave passed over this document"));

  // Answered No while leaving, the document goes into the history, and nothing asks again.
  dialogs_.ExpectMsgBox(u"Save this file?\r"_s + InFolder(u"b.reg"_s), u"Document Changed"_s, MsgButtons::YesNoCancel,
                        MsgAnswer::Yes);
  ask();
  frame_->close();
  EXPECT_EQ(history_.versions.List(InFolder(u"b.reg"_s)).value(0).reason, KeptReason::NotSaved);
}

TEST_F(RegWindow, ASaveSaysWhatItLeftOutAndKeepsIt) {
  Open(
      "REGEDIT4\r\n[HKEY_USERS\\A]\r\n\"x\"=-\r\n@=\"d\"\r\n[HKEY_USERS\\B\\C]\r\n[HKEY_USERS\\]\r\n\"h\"="
      "\"1\"\r\n\r\n");
  const QString otherwise =
      u"1 default value (@), which gets the name \"[default]\", 1 deletion of a value (=-), which becomes the text \"-\""_s;
  EXPECT_EQ(Notice(),
            u"Saved otherwise: "_s + otherwise +
                u". A save does not write: 1 value that stands directly under the file, a hive or such a key."_s);
  SelectKey({u"HKEY_USERS"_s});
  SelectValue(0);
  OnDialog(u"form_REGEdit"_s, Fill({}, u"2"_s, u"cmd_OK"_s));
  Reg().EditModify();
  EXPECT_TRUE(Notice().endsWith(u"What stands directly under the file or a hive is not saved."));
  Reg().FileSaveRegular();
  EXPECT_EQ(Notice(),
            u"The save left out, or wrote in another form: "_s + otherwise +
                u". File History has the file as it was. Not written: 2 keys without values, 1 value that stands "
                "directly under the file, a hive or such a key. File History has the whole document."_s);
  const QString path = InFolder(u"a.reg"_s);
  ASSERT_EQ(history_.versions.List(path).size(), 2);
  EXPECT_NE(history_.contents.Read(history_.versions.List(path)[0].digest)->find("\"h\"=\"2\""), std::string::npos);
  Reg().FileSaveRegular();
  EXPECT_EQ(history_.versions.List(path).size(), 2) << "what is there already is not kept again";
  for (QPushButton* button : Reg().findChildren<QPushButton*>(u"notice_action"_s))
    if (button->text() == u"Save Expanded") return button->click();
  ADD_FAILURE() << "no way to the keys";
}

TEST_F(RegWindow, ARenamedRootKeepsItsTextAndWhatItsNameDropsIsKept) {
  Open("REGEDIT4\r\n[HKEY_USERS\\Alpha]\r\n\"x\"=\"1\"\r\n\r\n");
  SelectKey({});
  dialogs_.ExpectInputBox(u"Rename this Key"_s, u"Branch Rename"_s, u"a.reg"_s, u"Alpha"_s);
  Reg().EditRename();
  Reg().FileSaveExpanded();
  EXPECT_EQ(BytesOf(InFolder(u"a.reg"_s)), "REGEDIT4\r\n\r\n");
  EXPECT_TRUE(Notice().contains(u"Not written: 1 key that has the name of the tree's root, 1 value"))
      << Notice().toStdString();
  EXPECT_NE(history_.contents.Read(history_.versions.List(InFolder(u"a.reg"_s))[0].digest)->find("\"x\"=\"1\""),
            std::string::npos);
  EXPECT_EQ(Reg().Document().Root()->Text(), "Alpha");

  NewDocument(global_, DocumentKind::Reg);
  auto& fresh = dynamic_cast<form_REG&>(*global_.documents.At(DocumentKind::Reg, 1));
  common_dialog_.ExpectSave(InFolder(u"n.reg"_s));
  fresh.FileSaveRegular();
  EXPECT_EQ(fresh.Document().Root()->Text(), "n.reg") << "a name that nobody gave follows the file";
}

TEST_F(RegWindow, EditsThatShareANameAreSaid) {
  Open("REGEDIT4\r\n[HKEY_USERS\\A\\S]\r\n\"x\"=\"1\"\r\n[HKEY_USERS\\B]\r\n\"y\"=\"1\"\r\n\r\n");
  EXPECT_EQ(Notice(), u"");
  SelectKey({u"HKEY_USERS"_s, u"B"_s});
  dialogs_.ExpectInputBox(u"Enter Desired Branch Name:"_s, u"Add Branch / Key"_s, {}, u"S"_s);
  Reg().EditNewKey();
  EXPECT_EQ(Notice(), u"Other keys are named \"S\" too: saving writes the values of all of them under each.");
}

TEST_F(RegWindow, PrintsExpanded) {
  Open(kFile);
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s});
  SelectValue(0);
  OnDialog(u"form_REGEdit"_s, Fill({}, u"printed"_s, u"cmd_OK"_s));
  Reg().EditModify();
  EXPECT_EQ(Reg().windowTitle(), u"a.reg [CHANGED]");
  QPrinter printer;
  printer.setOutputFileName(InFolder(u"out.pdf"_s));
  Reg().PrintDoc(printer);
  EXPECT_EQ(Reg().windowTitle(), u"a.reg") << "counts as unchanged; intended";
  EXPECT_EQ(Reg().File().Path(), InFolder(u"a.reg"_s));
  if (const QString pdftotext = QStandardPaths::findExecutable(u"pdftotext"_s); !pdftotext.isEmpty()) {
    QProcess reader;
    reader.start(pdftotext, {u"-layout"_s, InFolder(u"out.pdf"_s), u"-"_s});
    ASSERT_TRUE(reader.waitForFinished(-1));
    const QString text = QString::fromUtf8(reader.readAllStandardOutput());
    EXPECT_TRUE(text.contains(u"[HKEY_CURRENT_USER\\Alpha\\Beta]"));
    EXPECT_TRUE(text.contains(u"printed"));
  }
  EXPECT_EQ(BytesOf(InFolder(u"a.reg"_s)), kFile);
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
