#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include "FailingSteps.h"
#include "KindsEditor.h"
#include "shell/AutoSave.h"
#include "shell/GlobalMenus.h"
#include "shell/LongWork.h"
#include "shell/OpenDispatch.h"
#include "shell/RecoverySnapshots.h"
#include "shell/StatusLine.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/TreeDocumentWindow.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// A file of which reading by the rules leaves something out, and another text of its kind.
struct WholeKind {
  DocumentKind kind;
  const char* name;
  std::string bytes;
  std::string other;
};
const WholeKind kWholeKinds[] = {
    {DocumentKind::Ini, "a.ini", "; 1\n; 2\n\n[B]\nx = 1\n[A] \xE9", "#\n[C]\n"},
    {DocumentKind::Reg, "a.reg", "REGEDIT4\n\n; 1\n[HKEY_USERS\\a]\n\"x\"=hex(2):41,\\\n  00\n@=-", "REGEDIT4\n\n;\n"},
};

class WholeFileTest : public KindsEditor {
 protected:
  TreeDocumentWindow& Tree(DocumentKind kind, int slot = 0) {
    return dynamic_cast<TreeDocumentWindow&>(Window(kind, slot));
  }
  TreeDocumentWindow& Open(const WholeKind& row) {
    if (!frame_->isVisible()) Start();
    path_ = File(QString::fromLatin1(row.name), row.bytes);
    OpenPathList(global_, path_);
    return Tree(row.kind);
  }
  void ExpectQuestion(int chosen) {
    dialogs_.ExpectChoice({}, u"Document Changed"_s, {u"&Save"_s, u"&Don't Save"_s, u"Cancel"_s}, chosen);
  }
  /// Presses a button of the window's notice; false when it is not there.
  static bool Press(const TreeDocumentWindow& window, const QString& caption) {
    for (QPushButton* button : window.findChildren<QPushButton*>(u"notice_action"_s))
      if (button->text() == caption && button->isVisible()) {
        button->click();
        return true;
      }
    return false;
  }
  QString ShownHolding() {
    global_.status.ShowNow();
    return frame_->findChild<QAbstractButton*>(u"status_holding"_s)->text();
  }
  bool IsChecked() const { return global_.menus.Action(u"menu_ViewWholeFile"_s)->isChecked(); }
  /// Chooses in the dialog of the other form.
  static void ChooseForm(const QStringList& choices) {
    OnDialog(u"SaveForm"_s, [=](QWidget& dialog) {
      for (const QString& choice : choices)
        for (QComboBox* box : dialog.findChildren<QComboBox*>())
          if (const int index = box->findText(choice); index >= 0) box->setCurrentIndex(index);
      dynamic_cast<QDialog&>(dialog).accept();
    });
  }

  QString path_;
};

}  // namespace

TEST_F(WholeFileTest, IsOneClickAwayAndBack) {
  for (const WholeKind& row : kWholeKinds) {
    TreeDocumentWindow& window = Open(row);
    const QString caption = window.windowTitle(), by_rules = Notice(window);
    EXPECT_NE(window.Content(), row.bytes);
    EXPECT_TRUE(ShownHolding() == u"by the rules" && !IsChecked());
    ASSERT_TRUE(Press(window, u"Show the Whole File"_s));
    EXPECT_EQ(window.GetHolding(), Holding::Whole);
    EXPECT_EQ(window.Content(), row.bytes);
    EXPECT_FALSE(window.IsModified());
    EXPECT_EQ(window.windowTitle(), caption);
    EXPECT_FALSE(Notice(window).contains(by_rules)) << "of the other reading";
    EXPECT_TRUE(ShownHolding() == u"whole" && IsChecked());
    EXPECT_TRUE(window.isAncestorOf(QApplication::focusWidget())) << "the pressed button is gone";
    for (const QString& button : {u"Show by the Rules"_s, u"Show the Whole File"_s}) ASSERT_TRUE(Press(window, button));
    window.SavePlain({});
    EXPECT_EQ(BytesOf(path_), row.bytes);
    global_.menus.Action(u"menu_ViewWholeFile"_s)->trigger();
    EXPECT_EQ(Notice(window), by_rules);
    EXPECT_EQ(ShownHolding(), u"by the rules");
    EXPECT_NE(global_.menus.Action(u"menu_mru1"_s)->text(), global_.menus.Action(u"menu_mru2"_s)->text());
    NewDocument(global_, DocumentKind::Txt);
    window.FileClose();
  }
}

TEST_F(WholeFileTest, AsksAboutChangesFirst) {
  enum Button { kSave, kDontSave, kCancel };
  for (const WholeKind& row : kWholeKinds)
    for (const Button button : {kCancel, kDontSave, kSave}) {
      const bool stays = button == kCancel;
      TreeDocumentWindow& window = Open(row);
      window.WholeFile();
      window.PutContent(row.other, Holding::Whole);
      if (button == kSave) File(QFileInfo(path_).fileName(), "another's");
      ExpectQuestion(button);
      window.WholeFile();
      EXPECT_EQ(window.GetHolding(), stays ? Holding::Whole : Holding::ByRules);
      EXPECT_TRUE(window.IsModified() == stays && window.File().IsChanged() == stays);
      EXPECT_EQ(Notice(window).contains(u"had been changed on the disk"_s), button == kSave);
      EXPECT_EQ(BytesOf(path_), button == kSave ? row.other : row.bytes);
      EXPECT_EQ(HistoryHolds(row.other), !stays);
      if (stays) {
        EXPECT_EQ(window.Content(), row.other);
        ExpectQuestion(kDontSave);
        window.WholeFile();
      }
      window.FileClose();
    }
  // A save that fails.
  FailingSteps full(1, {.lasts = Fault::Lasts::FromThenOn});
  for (const WholeKind& row : kWholeKinds) {
    TreeDocumentWindow& window = Open(row);
    window.WholeFile();
    window.PutContent(row.other, Holding::Whole);
    global_.file_steps = &full;
    dialogs_.AnswerAll(MsgAnswer::Ok);  // the question's first button is Save
    window.WholeFile();
    EXPECT_EQ(window.GetHolding(), Holding::Whole);
    EXPECT_EQ(window.Content(), row.other);
    EXPECT_TRUE(window.IsModified());
    EXPECT_EQ(BytesOf(path_), row.bytes);
  }
}

TEST_F(WholeFileTest, NewDocumentsFollowTheOptionAndChangeByTheirOwnText) {
  Start();
  for (const WholeKind& row : kWholeKinds) {
    global_.settings.ini_whole = global_.settings.reg_whole = true;
    TreeDocumentWindow& window = dynamic_cast<TreeDocumentWindow&>(*NewDocument(global_, row.kind));
    EXPECT_EQ(window.GetHolding(), Holding::Whole);
    EXPECT_FALSE(window.IsModified());
    window.WholeFile();
    window.WholeFile();
    EXPECT_FALSE(window.IsModified()) << "nothing to ask about";
    EXPECT_EQ(window.GetHolding(), Holding::Whole);
    window.PutContent(row.bytes, Holding::Whole);
    ExpectQuestion(1);
    window.WholeFile();
    EXPECT_EQ(window.GetHolding(), Holding::ByRules);
    EXPECT_TRUE(window.IsModified() && window.File().IsChanged()) << "it is in no file";
    EXPECT_TRUE(window.File().Path().isEmpty() && HistoryHolds(row.bytes));
    global_.settings.ini_whole = global_.settings.reg_whole = false;
    dialogs_.ExpectMsgBox(u"Save this file?\r"_s, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::No);
    window.FileClose();
    EXPECT_EQ(dynamic_cast<TreeDocumentWindow&>(*NewDocument(global_, row.kind)).GetHolding(), Holding::ByRules);
  }
}

TEST_F(WholeFileTest, KeptContentsComeBackAsTheyWereHeld) {
  for (const WholeKind& row : kWholeKinds) {
    TreeDocumentWindow& window = Open(row);
    window.WholeFile();
    window.PutContent(row.other, Holding::Whole);
    global_.snapshots.Poll(RecoverySnapshots::Clock::now() + std::chrono::hours(1));
    global_.snapshots.WaitForDisk();
    const KeptVersion snapshot = history_.snapshots.List().last();
    EXPECT_EQ(snapshot.origin.holding, Holding::Whole);
    Tree(row.kind, 1).ShowKept(snapshot.origin, *history_.contents.Read(snapshot.digest));
    EXPECT_EQ(Tree(row.kind, 1).GetHolding(), Holding::Whole);
    EXPECT_EQ(Tree(row.kind, 1).Content(), row.other);
    EXPECT_TRUE(Tree(row.kind, 1).IsModified());
    frame_->Saver().SaveAllDocuments();
    EXPECT_EQ(BytesOf(path_), row.other);
    // Records of before have no holding.
    Tree(row.kind, 2).ShowKept({row.kind, {}, u"a"_s}, row.bytes);
    EXPECT_EQ(Tree(row.kind, 2).GetHolding(), Holding::ByRules);
    dialogs_.AnswerAll(MsgAnswer::No);
    Tree(row.kind, 2).FileClose();
  }
}

TEST_F(WholeFileTest, ASaveLeavesNothingOut) {
  for (const WholeKind& row : kWholeKinds) {
    TreeDocumentWindow& window = Open(row);
    window.WholeFile();
    window.PutContent(row.bytes + "\n;", Holding::Whole);
    window.SavePlain({.caller = SaveRequest::Caller::AutoSave});
    EXPECT_EQ(BytesOf(path_), row.bytes + "\n;");
    EXPECT_EQ(Notice(window), u"");
    EXPECT_TRUE(HistoryHolds(row.bytes));
    EXPECT_TRUE(window.HoldsWholeFile());
  }
}

TEST_F(WholeFileTest, OddEncodingsStayAsTheyAre) {
  using namespace std::string_literals;
  Start();
  global_.settings.ini_whole = global_.settings.reg_whole = true;
  for (WholeKind row : kWholeKinds)
    for (const std::string& bytes : {"\xFE\xFF\0[\0A\0"s, "\xFF\xFE[\0\x00\xD8\n"s, "[\0A\0]\0\r\0\n\0x\0=\0\x02\0"s,
                                     "\xEF\xBB\xBF\0[\x80\xFF\r"s, "\xC3\xA9\xC3\xA9\xE9\n\r\n\x1A"s, ""s}) {
      row.bytes = bytes;
      TreeDocumentWindow& window = Open(row);
      EXPECT_EQ(window.Content(), bytes);
      window.SavePlain({});
      common_dialog_.ExpectSave(InFolder(u"copy."_s + QLatin1StringView(NameOf(row.kind))));
      dialogs_.AnswerAll(MsgAnswer::Yes);
      window.Save({.path = SaveRequest::Path::AskedAlways});
      EXPECT_EQ(BytesOf(path_), bytes);
      EXPECT_EQ(BytesOf(window.File().Path()), bytes);
      window.FileClose();
    }
}

TEST_F(WholeFileTest, AnotherFormIsAnotherFile) {
  const WholeKind& row = kWholeKinds[0];
  TreeDocumentWindow& window = Open(row);
  window.WholeFile();
  const QAction& item = *global_.menus.Action(u"menu_FileSaveForm"_s);
  EXPECT_TRUE(item.isVisible());
  const struct {
    QStringList form;
    std::string bytes;
  } rows[] = {{{u"UTF-8 with byte order mark"_s, u"CR LF, as on Windows"_s},
               "\xEF\xBB\xBF; 1\r\n; 2\r\n\r\n[B]\r\nx = 1\r\n[A] \xC3\xA9"},
              {{u"8-bit code page"_s, u"LF, as on Linux"_s}, row.bytes}};
  for (const auto& [form, bytes] : rows) {
    const std::string before = window.Content();
    ChooseForm(form);
    common_dialog_.ExpectSave({});
    window.SaveAsAnotherForm();
    EXPECT_EQ(window.Content(), before) << "cancelled";
    EXPECT_FALSE(window.IsModified());
    ChooseForm(form);
    common_dialog_.ExpectSave(InFolder(u"b.ini"_s));
    if (bytes == row.bytes)
      dialogs_.ExpectMsgBox(u"Overwrite existing file?"_s, u"File Exists"_s, MsgButtons::YesNoCancel, MsgAnswer::Yes);
    window.SaveAsAnotherForm();
    EXPECT_EQ(BytesOf(InFolder(u"b.ini"_s)), bytes);
    EXPECT_EQ(window.windowTitle(), u"b.ini");
    EXPECT_EQ(window.Content(), bytes);
    EXPECT_FALSE(window.IsModified());
    EXPECT_EQ(Notice(window), u"");
  }
  EXPECT_EQ(BytesOf(path_), row.bytes);
  window.WholeFile();
  EXPECT_FALSE(item.isVisible()) << "by the rules a file has one form";
}

TEST_F(WholeFileTest, WhatTheEncodingCannotHoldIsAskedAbout) {
  WholeKind row = kWholeKinds[0];
  row.bytes = "[A]\nb=\xE2\x82\xAC\nc=\xCE\xB1\xCE\xB2\n";
  TreeDocumentWindow& window = Open(row);
  window.WholeFile();
  TextFormat format{SystemUnicode(), {}};
  const QString encoding = QString::fromUtf8(EncodingName(format.encoding));
  for (const int chosen : {1, 0}) {
    ChooseForm({u"8-bit code page"_s, u"LF, as on Linux"_s});
    dialogs_.ExpectChoice(u"There is no place in the 8-bit code page for a character of line 3:\rc=\u03B1\u03B2"_s,
                          u"Save As Another Form"_s, {u"&Save as "_s + encoding, u"Cancel"_s}, chosen);
    if (chosen == 0) common_dialog_.ExpectSave(InFolder(u"b.ini"_s));
    window.SaveAsAnotherForm();
    dialogs_.ExpectAllAsked();
  }
  EXPECT_EQ(BytesOf(InFolder(u"b.ini"_s)), EncodeText(row.bytes, format));
}

TEST_F(WholeFileTest, WhoRefusesTheRulesKeepsTheDocument) {
  Start();
  const std::string bytes = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\a]\r\n";
  global_.settings.reg_whole = true;
  OpenPathList(global_, File(u"a.reg"_s, bytes));
  TreeDocumentWindow& window = Tree(DocumentKind::Reg);
  window.PutContent(bytes + "line\r\n", Holding::Whole);
  const QString notice = Notice(window);
  EXPECT_FALSE(notice.isEmpty());
  ExpectQuestion(1);
  dialogs_.ExpectMsgBox(
      u"This file does not have the correct header definitions required for registry files.  Do you wish to attemp to "
      "open this file anyway?"_s,
      u"Error in File Type"_s, MsgButtons::YesNo, MsgAnswer::No);
  window.WholeFile();
  EXPECT_EQ(window.GetHolding(), Holding::Whole);
  EXPECT_EQ(window.Content(), bytes + "line\r\n");
  EXPECT_TRUE(window.IsModified() && window.File().IsChanged());
  EXPECT_EQ(Notice(window), notice);
}

TEST_F(WholeFileTest, ACancelledReadingLeavesTheDocument) {
  std::string bytes = "REGEDIT4\r\n\r\n; c\r\n[HKEY_USERS\\a]\r\n";
  for (int value = 0; value < 20'000; ++value) bytes += "\"" + std::to_string(value) + "\"=\"\"\r\n";
  dialogs_.AnswerAll(MsgAnswer::Yes);
  TreeDocumentWindow& window = Open({DocumentKind::Reg, "a.reg", bytes, {}});
  const std::string content = window.Content();
  const QString notice = Notice(window);
  LongWork::quiet_ms = 0;
  OnDialog(u"LongWorkProgress"_s, [](QWidget& box) { dynamic_cast<QProgressDialog&>(box).cancel(); });
  window.WholeFile();
  LongWork::quiet_ms = 500;
  EXPECT_EQ(window.GetHolding(), Holding::ByRules);
  EXPECT_EQ(window.Content(), content);
  EXPECT_EQ(Notice(window), notice);
  EXPECT_FALSE(window.IsModified());
  EXPECT_FALSE(window.HoldsWholeFile());
}

TEST_F(WholeFileTest, ARegistryFileBecomesAnotherKind) {
  Start();
  global_.settings.reg_whole = true;
  const QString v5 = u"Windows Registry Editor Version 5.00"_s, v4 = u"REGEDIT4"_s, utf8 = u"UTF-8"_s;
  const struct {
    std::string bytes;
    QStringList form;
    std::string unsayable, expected;
  } rows[] = {
      {"REGEDIT4\n\n[HKEY_USERS\\a]\n\"x\"=hex(2):E9,00\n",
       {v5, utf8},
       {},
       "Windows Registry Editor Version 5.00\n\n[HKEY_USERS\\a]\n\"x\"=hex(2):e9,00,00,00\n"},
      {"Windows Registry Editor Version 5.00\n\n[HKEY_USERS\\a]\n\"x\"=hex(2):b1,03,00,00\n",
       {v4},
       "x",
       "REGEDIT4\n\n[HKEY_USERS\\a]\n\"x\"=hex(2):b1,03,00,00\n"},
      {"REGEDIT\nHKEY_CLASSES_ROOT\\.a = b\n",
       {v5, utf8, u"LF, as on Linux"_s},
       {},
       "Windows Registry Editor Version 5.00\n\n[HKEY_CLASSES_ROOT\\.a]\n@=\"b\"\n"},
  };
  for (const auto& [bytes, form, unsayable, expected] : rows) {
    OpenPathList(global_, File(u"a.reg"_s, bytes));
    TreeDocumentWindow& window = Tree(DocumentKind::Reg);
    for (const int chosen : {1, 0}) {
      if (unsayable.empty() && chosen == 1) continue;
      ChooseForm(form);
      if (!unsayable.empty())
        dialogs_.ExpectChoice(
            u"1 value has a text that cannot be said in REGEDIT4:\rline 4: \"x\"\r\rConverted anyway, "
            "each keeps its bytes as they are, which are another text in such a file."_s,
            u"Save As Another Form"_s, {u"Convert &Anyway"_s, u"Cancel"_s}, chosen);
      if (chosen == 0) common_dialog_.ExpectSave(InFolder(u"b%1.reg"_s.arg(&expected - &rows[0].expected)));
      window.SaveAsAnotherForm();
      EXPECT_EQ(window.Content(), chosen == 0 ? expected : bytes);
    }
    EXPECT_EQ(BytesOf(window.File().Path()), expected);
    window.FileClose();
  }
}

TEST_F(WholeFileTest, ACharacterWithoutAByteMakesARegistryFileUnicode) {
  Start();
  global_.settings.reg_whole = true;
  const QString path = File(u"a.reg"_s, "REGEDIT4\r\n\r\n[HKEY_USERS\\a]\r\n\"x\"=\"\xE9\"\r\n");
  OpenPathList(global_, path);
  TreeDocumentWindow& window = Tree(DocumentKind::Reg);
  auto* keys = window.findChild<QTreeView*>(u"TV"_s);
  keys->expandAll();
  keys->setCurrentIndex(keys->indexBelow(keys->indexBelow(keys->model()->index(0, 0))));
  dynamic_cast<form_REG&>(window).EditRename();
  auto* box = window.findChild<QLineEdit*>(u"row_editor"_s);
  ASSERT_NE(box, nullptr);
  box->setText(u"\u03B1"_s);
  QTest::keyClick(box, Qt::Key_Return);
  const QString why = u"A file of this kind, REGEDIT4, has no place for a character of line 3:\r[HKEY_USERS\\\u03B1]"_s;
  window.SavePlain({.caller = SaveRequest::Caller::AutoSave});
  EXPECT_EQ(Notice(window), u"AutoSave passed over this document. "_s + QString(why).replace(u'\r', u' '));
  const QString question = why + u"\r\rAs Windows Registry Editor Version 5.00, in UTF-16, it has."_s;
  for (const int chosen : {1, 0}) {
    EXPECT_EQ(BytesOf(path).substr(0, 8), "REGEDIT4");
    dialogs_.ExpectChoice(question, kProgramTitle, {u"&Save as 5.00"_s, u"Cancel"_s}, chosen);
    EXPECT_EQ(window.SavePlain({}) == DocumentWindow::SaveOutcome::Saved, chosen == 0);
    EXPECT_EQ(window.IsModified(), chosen == 1);
  }
  EXPECT_EQ(DecodeText(BytesOf(path)).text,
            "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\\xCE\xB1]\r\n\"x\"=\"\xC3\xA9\"\r\n");
  EXPECT_EQ(window.File().Format().encoding, TextEncoding::Utf16Le);
}

TEST_F(WholeFileTest, ANewRegistryDocumentBecomesWholeWithItsEmptyKeysAndValues) {
  Start();
  TreeDocumentWindow& window = dynamic_cast<TreeDocumentWindow&>(*NewDocument(global_, DocumentKind::Reg));
  window.PutContent(
      "REGEDIT4\r\n; every key as it was shown\r\n\r\n[HKEY_USERS\\a\\n]\r\n\"x\"=\"1\"\r\n\r\n"
      "[HKEY_USERS\\b\\n]\r\n\r\n",
      Holding::ByRules);
  ExpectQuestion(1);
  window.WholeFile();
  EXPECT_EQ(window.Content(), "REGEDIT4\r\n\r\n[HKEY_USERS\\a\\n]\r\n\"x\"=\"1\"\r\n\r\n[HKEY_USERS\\b\\n]\r\n\r\n");
}
