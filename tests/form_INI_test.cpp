#include "windows/ini/form_INI.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>
#include <QTreeView>

#include "Editor.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

QString Clipboard() { return QGuiApplication::clipboard()->text(); }

/// Types into the boxes of a key and value dialog and presses a button, or Enter in the value box for none.
std::function<void(QWidget&)> Fill(const QString& key, const QString& value, const QString& button = {}) {
  return [=](QWidget& dialog) {
    auto* box = dialog.findChild<QLineEdit*>(u"txt_value"_s);
    dialog.findChild<QLineEdit*>(u"txt_Key"_s)->setText(key);
    box->setText(value);
    if (!button.isEmpty()) return QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    QTest::keyClick(box, Qt::Key_Return);
  };
}

}  // namespace

TEST_F(Editor, EntriesAreAddedAndEdited) {
  Start();
  form_INI& window = NewIni("[A]\nm=1\n[B]\n");
  Select(window, {u"A"_s, u"m=1"_s});
  OnDialog(u"form_ADE"_s, Fill(u"b"_s, u"2"_s));
  window.AddValue();
  OnDialog(u"form_ADE"_s, Fill(u";c"_s, u""_s));
  window.AddValue();
  OnDialog(u"form_ADE"_s, Fill(u"never"_s, u"1"_s, u"cmd_Cancel"_s));
  window.AddValue();
  EXPECT_EQ(Dump(window.Tree()), "New INI File\n A\n  >;c=\n  b=2\n  m=1\n B\n");
  EXPECT_EQ(window.windowTitle(), u"New INI File [CHANGED]");

  Select(window, {u"A"_s, u"m=1"_s});
  auto* edit = window.findChild<QPushButton*>(u"cmd_Edit"_s);
  const auto question = [this](MsgAnswer answer) {
    dialogs_.ExpectMsgBox(u"There is no value listed for the Key.  Delete this entry?"_s, u"Entry Delete"_s,
                          MsgButtons::YesNo, answer, MsgIcon::Question);
  };
  OnDialog(u"form_ADE"_s, [](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), u"Edit A Section");
    EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txt_value"_s)->text(), u"1");
    Fill(u" n "_s, u" a=\r\nb "_s)(dialog);
  });
  edit->click();
  EXPECT_EQ(Dump(window.Tree()), "New INI File\n A\n  ;c=\n  b=2\n  >n=a= b\n B\n") << "blanks trimmed, and one line";
  question(MsgAnswer::No);
  OnDialog(u"form_ADE"_s, Fill(u"n"_s, u""_s));
  edit->click();
  OnDialog(u"form_ADE"_s, Fill(u"; n"_s, u"off"_s));
  edit->click();
  EXPECT_EQ(Dump(window.Tree()), "New INI File\n A\n  >; n=off\n  ;c=\n  b=2\n B\n") << "now a comment";
  Select(window, {u"A"_s, u"b=2"_s});
  dialogs_.ExpectMsgBox(u"Are you sure you want to delete Key / Value b=2?"_s, u"Deletion Confirmation"_s,
                        MsgButtons::YesNo, MsgAnswer::No, MsgIcon::Question);
  OnDialog(u"form_ADE"_s, Fill(u"b"_s, u"DELETE"_s));
  edit->click();
  question(MsgAnswer::Yes);
  OnDialog(u"form_ADE"_s, Fill(u"b"_s, u""_s));
  edit->click();
  EXPECT_EQ(Dump(window.Tree()), "New INI File\n A\n  ; n=off\n  >;c=\n B\n");
  dialogs_.ExpectInputBox(u"Alter the comment:"_s, u"Comments"_s, u";c="_s, u"; see below"_s);
  edit->click();
  Select(window, {u"A"_s});
  dialogs_.ExpectInputBox(u"New name for this section"_s, u"Section Name Change"_s, u"A"_s, u"B"_s);
  edit->click();
  EXPECT_EQ(Dump(window.Tree()), "New INI File\n >B\n  ; n=off\n  ; see below\n B\n") << "uniqueness is not checked";
}

TEST_F(Editor, EnterNeedsAKey) {
  Start();
  form_INI& window = NewIni("[A]\n");
  Select(window, {u"A"_s});
  OnDialog(u"form_ADE"_s, [](QWidget& dialog) {
    auto* key = dialog.findChild<QLineEdit*>(u"txt_Key"_s);
    QTest::keyClick(key, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClicks(key, u"k"_s);
    QTest::keyClick(key, Qt::Key_Return);
  });
  window.AddValue();
  EXPECT_EQ(Dump(window.Tree()), "New INI File\n A\n  >k=\n");
}

TEST_F(Editor, SectionsAreAddedDeletedAndChangedAllAtOnce) {
  Start();
  form_INI& window = NewIni("[Boot]\nFontSize=10\nx=1\n[Apps]\nFont=Arial\nFonts\n");
  const QString title = u"Add New Section"_s;
  dialogs_.ExpectInputBox(u"Enter the name for the new section."_s, title, {}, u"Boot"_s);
  dialogs_.ExpectInputBox(
      u"This name already exists in the INI file.  Please enter a unique name for the new section."_s, title, {},
      u"boot"_s);
  window.AddSection();
  OnDialog(u"form_INIAddValue"_s, Fill(u"k"_s, u"v"_s, u"cmd_Add"_s));
  window.AddSectionToAll();
  OnDialog(u"form_INIAddValue"_s, Fill(u"gone"_s, u"v"_s, u"cmd_Cancel"_s));
  window.AddSectionToAll();
  EXPECT_EQ(Dump(window.Tree()),
            "New INI File\n Apps\n  Font=Arial\n  Fonts\n  k=v\n Boot\n  FontSize=10\n  k=v\n  x=1\n >boot\n  k=v\n");
  Select(window, {u"Apps"_s, u"Font=Arial"_s});
  window.DeleteAllNodes();
  EXPECT_EQ(Dump(window.Tree()), "New INI File\n Apps\n  >k=v\n Boot\n  k=v\n  x=1\n boot\n  k=v\n");
  Select(window);
  dialogs_.ExpectMsgBox(u"You must first select (highlight) a section before you can delete it."_s,
                        u"Section Deletion"_s);
  window.EditDelete();
  const auto* view = window.findChild<QTreeView*>(u"TV"_s);
  const QModelIndex root = view->model()->index(0, 0);
  window.CollapseAll();
  EXPECT_TRUE(view->isExpanded(root));
  EXPECT_FALSE(view->isExpanded(root.model()->index(0, 0, root)));
  window.ExpandAll();
  EXPECT_TRUE(view->isExpanded(root.model()->index(0, 0, root)));
}

TEST_F(Editor, ClipboardCarriesSectionsBetweenDocuments) {
  Start();
  form_INI& from = NewIni("[A]\nx=1\n;c\n[B]\ny=2\n");
  form_INI& to = NewIni("[A]\nold=1\n");
  Select(from, {u"A"_s});
  from.EditCopy();
  EXPECT_EQ(Clipboard(), u"[A]\r\n;c\r\nx=1\r\n");
  const QString question =
      u"You have asked to paste a section into this INI file, but that section already exists.  Would you like to "
      "overwrite the existing section with the clipboard data?"_s;
  Select(to);
  dialogs_.ExpectMsgBox(question, u"Duplicate Section"_s, MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
  to.EditPaste();
  EXPECT_EQ(Dump(to.Tree()), ">New INI File\n A\n  ;c\n  x=1\n");
  EXPECT_EQ(to.windowTitle(), u"New INI File") << "a paste does not mark the document";

  Select(from, {u"B"_s, u"y=2"_s});
  from.EditCut();
  EXPECT_EQ(Clipboard(), u"y=2");
  Select(to, {u"A"_s});
  to.EditPaste();
  Select(to, {u"A"_s, u";c"_s});
  to.EditCut();
  EXPECT_EQ(Clipboard(), u"") << "a comment is neither copied nor removed";
  to.EditPaste();
  EXPECT_EQ(Dump(to.Tree()), "New INI File\n A\n  >;c\n  x=1\n  y=2\n");
  Select(from);
  from.EditCut();
  EXPECT_EQ(Clipboard(), u"[A]\r\n;c\r\nx=1\r\n\r\n[B]\r\n\r\n");
  EXPECT_EQ(Dump(from.Tree()), ">New INI File\n");
  EXPECT_EQ(from.windowTitle(), u"New INI File [CHANGED]");

  QGuiApplication::clipboard()->setText(u"b=2\na=1"_s);
  dialogs_.ExpectInputBox(u"Enter New Section Name"_s, u"Paste as New Section"_s, {}, u"New"_s);
  from.PasteNewSection();
  EXPECT_EQ(Clipboard(), u"[New]\r\nb=2\r\na=1\r\n");
  from.PasteNewSection();  // a section already: nothing is asked
  EXPECT_EQ(Dump(from.Tree()), ">New INI File\n New\n  a=1\n  b=2\n");
}

TEST_F(Editor, ACommentAboveTheSectionsHasNoSectionToAddTo) {
  Start();
  form_INI& window = NewIni(";c\n[A]\n;d\n");
  auto* add = window.findChild<QPushButton*>(u"cmd_AddValue"_s);
  const std::pair<QStringList, bool> rows[] = {
      {{}, false}, {{u";c"_s}, false}, {{u"A"_s}, true}, {{u"A"_s, u";d"_s}, true}};
  for (const auto& [path, enabled] : rows) {
    Select(window, path);
    EXPECT_EQ(add->isEnabled(), enabled) << path.join(u'/').toStdString();
  }
}

TEST_F(Editor, PrintsTheDocumentFromTheClipboard) {
  Start();
  form_INI& window = NewIni("[Beta]\ny=2\nx=1\n[Alpha]\n");
  const QString pdf = InFolder(u"out.pdf"_s), pdftotext = QStandardPaths::findExecutable(u"pdftotext"_s);
  QPrinter printer;
  printer.setOutputFileName(pdf);
  window.PrintDoc(printer);
  EXPECT_EQ(Clipboard(), u"[Alpha]\r\n\r\n[Beta]\r\nx=1\r\ny=2\r\n\r\n");
  if (pdftotext.isEmpty()) GTEST_SKIP() << "pdftotext is not installed";
  QProcess reader;
  reader.start(pdftotext, {u"-layout"_s, pdf, u"-"_s});
  ASSERT_TRUE(reader.waitForFinished(-1));
  const QString printed = QString::fromUtf8(reader.readAllStandardOutput()).simplified();
  EXPECT_TRUE(printed.startsWith(u"[Alpha] [Beta] x=1 y=2 ")) << printed.toStdString();
}
