#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include "FailingSteps.h"
#include "KindsEditor.h"
#include "shell/AutoSave.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"
#include "shell/RecoverySnapshots.h"
#include "shell/TreeDocumentWindow.h"

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
  static QString Badge(const TreeDocumentWindow& window) {
    return window.findChild<QLabel*>(u"holding_badge"_s)->text();
  }
  bool IsChecked() const { return global_.menus.Action(u"menu_ViewWholeFile"_s)->isChecked(); }
  /// Chooses in the dialog of the other form.
  static void ChooseForm(const QStringList& encoding_and_ends) {
    OnDialog(u"SaveForm"_s, [=](QWidget& dialog) {
      dialog.findChild<QComboBox*>(u"cb_Encoding"_s)->setCurrentText(encoding_and_ends[0]);
      dialog.findChild<QComboBox*>(u"cb_LineEnds"_s)->setCurrentText(encoding_and_ends[1]);
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
    EXPECT_EQ(Badge(window), u"by the rules");
    EXPECT_FALSE(IsChecked());
    ASSERT_TRUE(Press(window, u"Show the Whole File"_s));
    EXPECT_EQ(window.GetHolding(), Holding::Whole);
    EXPECT_EQ(window.Content(), row.bytes);
    EXPECT_FALSE(window.IsModified());
    EXPECT_EQ(window.windowTitle(), caption);
    EXPECT_FALSE(Notice(window).contains(by_rules)) << "of the other reading";
    EXPECT_EQ(Badge(window), u"whole");
    EXPECT_TRUE(IsChecked());
    EXPECT_TRUE(window.isAncestorOf(QApplication::focusWidget())) << "the pressed button is gone";
    window.SavePlain({});
    EXPECT_EQ(BytesOf(path_), row.bytes);
    global_.menus.Action(u"menu_ViewWholeFile"_s)->trigger();
    EXPECT_EQ(Notice(window), by_rules);
    EXPECT_EQ(Badge(window), u"by the rules");
    EXPECT_NE(global_.menus.Action(u"menu_mru1"_s)->text(), global_.menus.Action(u"menu_mru2"_s)->text());
    NewDocument(global_, DocumentKind::Txt);
    window.FileClose();
  }
}

TEST_F(WholeFileTest, AsksAboutChangesFirst) {
  enum Button { kSave, kDontSave, kCancel };
  for (const WholeKind& row : kWholeKinds)
    for (const Button button : {kCancel, kDontSave, kSave}) {
      TreeDocumentWindow& window = Open(row);
      window.WholeFile();
      window.PutContent(row.other, Holding::Whole);
      ExpectQuestion(button);
      window.WholeFile();
      EXPECT_EQ(window.GetHolding() == Holding::Whole, button == kCancel);
      EXPECT_EQ(window.IsModified(), button == kCancel);
      EXPECT_EQ(window.File().IsChanged(), button == kCancel);
      EXPECT_EQ(BytesOf(path_), button == kSave ? row.other : row.bytes);
      EXPECT_EQ(HistoryHolds(row.other), button != kCancel);
      if (button == kCancel) {
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
  for (const int chosen : {1, 0}) {
    ChooseForm({u"8-bit code page"_s, u"LF, as on Linux"_s});
    dialogs_.ExpectChoice(u"There is no place in the 8-bit code page for a character of line 3:\rc=\u03B1\u03B2"_s,
                          u"Save As Another Form"_s, {u"&Save as UTF-8"_s, u"Cancel"_s}, chosen);
    if (chosen == 0) common_dialog_.ExpectSave(InFolder(u"b.ini"_s));
    window.SaveAsAnotherForm();
    dialogs_.ExpectAllAsked();
  }
  EXPECT_EQ(BytesOf(InFolder(u"b.ini"_s)), row.bytes);
}
