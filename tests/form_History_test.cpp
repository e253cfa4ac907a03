#include "windows/history/form_History.h"

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <memory>
#include <stdexcept>

#include "Editor.h"
#include "WaitFor.h"
#include "shell/DocumentWindow.h"
#include "windows/history/DifferenceView.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class FormHistoryTest : public Editor {
 protected:
  DocumentWindow& Text(int slot = 0) { return *global_.documents.At(DocumentKind::Txt, slot); }
  /// Keeps contents of a file, the last one last.
  void Keep(DocumentKind kind, const QString& path, const std::vector<std::string>& contents) {
    for (const std::string& content : contents)
      ASSERT_FALSE(history_.versions.Keep({kind, path, u"a.txt"_s}, KeptReason::BeforeSave, content));
  }
  template <typename T>
  static T& Child(form_History& form, const QString& name) {
    return *form.findChild<T*>(name);
  }
  static QTreeWidget& List(form_History& form) { return Child<QTreeWidget>(form, u"list_Versions"_s); }
  static void Select(form_History& form, int row) { List(form).setCurrentItem(List(form).topLevelItem(row)); }
  static DifferenceView& View(form_History& form) { return Child<DifferenceView>(form, u"txt_Version"_s); }
  static std::string Said(form_History& form) { return Child<QLabel>(form, u"lbl_Difference"_s).text().toStdString(); }
  static void Click(form_History& form, const QString& button) { Child<QPushButton>(form, button).click(); }
};

}  // namespace

TEST_F(FormHistoryTest, ListsShowsAndRestores) {
  const QString path = File(u"a.txt"_s, "one\r\nnow\r\n");
  Start({path, path});
  Text().findChild<QPushButton*>(u"notice_action"_s)->click();
  Text().Form_Activate();  // of two documents of the file, the one that the user looks at
  Keep(DocumentKind::Txt, path, {"one\r\nfirst\r\n", "one\r\nnow\r\n", "one\nnow\n"});
  Keep(DocumentKind::Ini, InFolder(u"gone.ini"_s), {"[A]\r\nx=1\r\n"});
  form_History form(global_);
  ASSERT_EQ(List(form).topLevelItemCount(), 3) << "of the active document";
  EXPECT_EQ(List(form).topLevelItem(2)->text(1), u"Before a save");
  EXPECT_EQ(List(form).topLevelItem(2)->text(3), u"12 bytes");
  EXPECT_EQ(Said(form), "The lines are the same as now; line ends or the encoding differ.");
  Select(form, 1);
  EXPECT_EQ(Said(form), "The same as now.");
  Select(form, 2);
  EXPECT_EQ(View(form).Text(), "  one\n- now\n+ first");

  Click(form, u"cmd_Restore"_s);
  EXPECT_EQ(Text().Content(), "one\r\nfirst\r\n");
  EXPECT_TRUE(Text().File().IsChanged());
  EXPECT_EQ(Said(form), "The same as now.");
  ASSERT_EQ(List(form).topLevelItemCount(), 4);
  EXPECT_EQ(List(form).topLevelItem(0)->text(1), u"Before a restore");
  Click(form, u"cmd_Restore"_s);
  EXPECT_EQ(List(form).topLevelItemCount(), 4) << "pressed twice";
  Select(form, 0);
  Click(form, u"cmd_Restore"_s);
  EXPECT_EQ(Text().Content(), "one\r\nnow\r\n") << "undone";
  EXPECT_EQ(BytesOf(path), "one\r\nnow\r\n");

  Child<QComboBox>(form, u"cb_Scope"_s).setCurrentIndex(1);
  EXPECT_EQ(List(form).topLevelItemCount(), 6);
  List(form).sortByColumn(2, Qt::AscendingOrder);
  Select(form, 5);
  EXPECT_EQ(Said(form), "The version's text. There is no document or file to compare it with.");
  Click(form, u"cmd_Restore"_s);
  EXPECT_EQ(Ini().File().Path(), InFolder(u"gone.ini"_s));
  EXPECT_FALSE(QFile::exists(InFolder(u"gone.ini"_s)));
}

TEST_F(FormHistoryTest, OpensAsNewAndSavesCopies) {
  const QString path = File(u"a.txt"_s, "now"), copy = File(u"copy.txt"_s, "replaced");
  Start({path});
  Keep(DocumentKind::Txt, path, {"damaged", "kept"});
  form_History form(global_);
  for (const MsgAnswer answer : {MsgAnswer::Cancel, MsgAnswer::Yes}) {
    EXPECT_EQ(BytesOf(copy), "replaced");
    common_dialog_.ExpectSave(copy);
    dialogs_.ExpectMsgBox(u"Overwrite existing file?"_s, u"File Exists"_s, MsgButtons::YesNoCancel, answer);
    Click(form, u"cmd_SaveCopy"_s);
  }
  EXPECT_EQ(common_dialog_.shown.back().file_name, u"a (kept).txt");
  EXPECT_EQ(BytesOf(copy), "kept");
  EXPECT_EQ(history_.contents.Read(history_.versions.List(copy).first().digest), "replaced");

  const QByteArray digest = history_.versions.List(path).last().digest;
  ASSERT_TRUE(
      QFile::remove(history_.folder.Path() + u"/blobs/"_s + QString::fromLatin1(digest.left(2) + '/' + digest)));
  Select(form, 1);
  EXPECT_NE(Said(form).find("can no longer be read"), std::string::npos);
  for (const QString& button : {u"cmd_OpenAsNew"_s, u"cmd_SaveCopy"_s, u"cmd_Restore"_s})
    EXPECT_FALSE(Child<QPushButton>(form, button).isEnabled());
  Select(form, 0);
  Click(form, u"cmd_OpenAsNew"_s);
  EXPECT_EQ(Text(1).Content(), "kept");
  EXPECT_EQ(Text(1).File().Path(), u"");
}

TEST_F(FormHistoryTest, WhatWasHeldWholeComesBackWhole) {
  const std::string bytes = "; 1\n; 2\n\n[B]\n[A]\n";
  const QString path = File(u"a.ini"_s, bytes);
  Start({path});
  Ini().WholeFile();
  Keep(DocumentKind::Ini, path, {";\n;\n"});
  history_.versions.Keep({DocumentKind::Ini, path, u"a.ini"_s}, KeptReason::NotSaved, "[X]");
  history_.versions.Keep({DocumentKind::Ini, path, u"a.ini"_s, Holding::Whole}, KeptReason::NotSaved,
                         "; 1\n; 2\n\n[A]\n[B]\n");
  form_History form(global_);
  const struct {
    int version;
    Holding holding;
    std::string content, said;
  } rows[] = {{0, Holding::Whole, "; 1\n; 2\n\n[A]\n[B]\n",
               "1 line only in this version (+), 1 line only in what is there now (-)."},
              {3, Holding::Whole, ";\n;\n", {}},
              {3, Holding::ByRules, "[X]\r\n\r\n", {}}};
  for (const auto& [version, holding, content, said] : rows) {
    Select(form, version);
    EXPECT_TRUE(said.empty() || Said(form) == said) << Said(form) << ": order counts";
    Click(form, u"cmd_Restore"_s);
    EXPECT_EQ(Ini().GetHolding(), holding);
    EXPECT_EQ(Ini().Content(), content);
  }
}

TEST_F(FormHistoryTest, GoesFromDifferenceToDifference) {
  std::string now, kept, long_line(9'000, 'x');
  for (int line = 0; line < 40'000; ++line) {
    const std::string text = "a line of the text, number " + std::to_string(line) + '\n';
    now += text;
    kept += line % 10'000 == 5'000 ? "other\n" : text;
  }
  const QString path = File(u"a.txt"_s, now + long_line + "1\n");
  Start({path});
  Keep(DocumentKind::Txt, path, {kept + long_line + "2\n"});
  form_History form(global_);
  WaitFor([&] { return Said(form) != "Comparing..."; });
  EXPECT_EQ(View(form).DifferenceCount(), 5) << "of more than is compared at once";
  EXPECT_EQ(View(form).CurrentDifference(), 1) << "opens at the first";
  EXPECT_FALSE(View(form).HasPrevious());
  for (int place = 2; place <= 5; ++place) {
    Click(form, u"cmd_Next"_s);
    EXPECT_EQ(View(form).CurrentDifference(), place);
  }
  EXPECT_FALSE(View(form).HasNext());
  EXPECT_TRUE(View(form).Text().ends_with("x2")) << "an overlong line is shown where it differs";
  View(form).GoToPrevious();
  EXPECT_EQ(View(form).CurrentDifference(), 4);
  form.findChild<QAbstractButton*>(u"chk_DifferencesOnly"_s)->click();
  EXPECT_EQ(View(form).DifferenceCount(), 5);
  EXPECT_NE(View(form).Text().find("… 9993 lines that are the same …"), std::string::npos) << View(form).Text();
}

TEST_F(FormHistoryTest, OpensWhereTheFirstDifferenceIs) {
  std::string text;
  for (int line = 0; line < 60; ++line) text += "a line\n";
  const QString path = File(u"a.txt"_s, text);
  Start({path});
  Keep(DocumentKind::Txt, path, {text + "more\n"});
  form_History form(global_);
  form.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
  const long first = View(form).SendScintilla(QsciScintillaBase::SCI_GETFIRSTVISIBLELINE);
  EXPECT_GT(first + View(form).SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN), 60);
}

TEST_F(FormHistoryTest, WhatASaveReordersIsNoDifference) {
  const QString path = File(u"a.ini"_s, "[A]\nx=1\ny=2\n\n[B]\nz=3\n");
  Start();
  Keep(DocumentKind::Ini, path, {"[B]\nz=3\n[A]\ny=2\nx=1\n", "[B]\nz=4\n[A]\ny=2\nx=1\n"});
  form_History form(global_);
  EXPECT_EQ(View(form).Text(), "  [A]\n  x=1\n  y=2\n  \n  [B]\n- z=3\n+ z=4");
  Select(form, 1);
  EXPECT_EQ(Said(form), "The same lines as now, in another order.");
}

TEST_F(FormHistoryTest, ComparesByStructure) {
  const QString path = File(u"a.reg"_s, "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"a\"=\"1\"\r\n\"b\"=hex:01\r\n");
  Start();
  Keep(DocumentKind::Txt, path, {"t"});
  Keep(DocumentKind::Reg, path,
       {"Windows Registry Editor Version 5.00\n; c\n[hkey_users\\a]\n\"B\"=hex:\\\n  01\n\"A\"=\"1\"\n",
        "REGEDIT4\n[HKEY_USERS\\A]\n\"b\"=hex:02\n\"a\"=\"1\"\n[HKEY_USERS\\B]\n"});
  auto form = std::make_unique<form_History>(global_);
  auto* by_structure = form->findChild<QAbstractButton*>(u"chk_ByStructure"_s);
  by_structure->click();
  EXPECT_EQ(View(*form).Text(), "  [HKEY_USERS\\A]\n- \"b\"=hex:01\n+ \"b\"=hex:02\n+ [HKEY_USERS\\B]");
  EXPECT_EQ(Said(*form), "2 lines only in this version (+), 1 line only in what is there now (-).");
  Select(*form, 1);
  EXPECT_EQ(Said(*form), "The same keys and values as now; order, comments or the way they are written differ.");
  Select(*form, 2);
  EXPECT_FALSE(by_structure->isEnabled()) << "a text";
  form->done(0);
  form = std::make_unique<form_History>(global_);
  EXPECT_TRUE(form->findChild<QAbstractButton*>(u"chk_ByStructure"_s)->isChecked()) << "remembered";
}

TEST_F(FormHistoryTest, WhatIsThrownWhileComparingIsTold) {
  Start();
  for (const std::size_t size : {std::size_t{10}, std::size_t{2'000'000}})
    Keep(DocumentKind::Txt, InFolder(u"a.txt"_s), {std::string(size, 'a')});
  history_.folder.before_access = [](const QString& name) {
    if (name.startsWith(u"blobs/"_s)) throw std::runtime_error("Out of order");
  };
  form_History form(global_);
  for (const int row : {0, 1}) {
    Select(form, row);
    WaitFor([&] { return Said(form) != "Comparing..."; });
    EXPECT_EQ(Said(form), "This version could not be compared: Out of order.") << "beside the window, and in it";
    Select(form, 1 - row);
  }
  dialogs_.ExpectMsgBox(u"This version could not be read: Out of order."_s, kProgramTitle);
  Click(form, u"cmd_OpenAsNew"_s);
}
