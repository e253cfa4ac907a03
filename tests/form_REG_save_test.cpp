#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLocale>
#include <QProcess>
#include <QProgressBar>
#include <QStandardPaths>
#include <QTimer>

#include "RegWindow.h"
#include "shell/AutoSave.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(RegWindow, AsksAboutHeaderAndSize) {
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
}

TEST_F(RegWindow, LogsWhatFailedAndSaysWhereItEnded) {
  Start();
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
