#include "windows/ini/form_INI.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>
#include <QTreeView>

#include "Editor.h"
#include "TestSystem.h"
#include "files/TextEncoding.h"
#include "shell/DocumentArea.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

QString Clipboard() { return QGuiApplication::clipboard()->text(); }

QString NoticeOf(const form_INI& window) { return window.findChild<NoticeBar*>()->Text(); }

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

TEST_F(Editor, SavedBytesKeepTheEncodingOrBecomeUtf8) {
  struct Row {
    const char* name;
    std::string bytes, saved;
  };
  const std::string utf16("\xFF\xFE[\0A\0]\0\n\0\xE9\0\n\0", 14),
      utf16_saved("\xFF\xFE[\0A\0]\0\r\0\n\0\xE9\0\r\0\n\0\r\0\n\0", 22);
  const Row rows[] = {{"code page", "[A]\nb=\xE9\na=\x81\n", "[A]\r\na=\x81\r\nb=\xE9\r\n\r\n"},
                      {"utf-8", "[A]\nb=\xC3\xA9", "[A]\r\nb=\xC3\xA9\r\n\r\n"},
                      {"mark and a bad byte", "\xEF\xBB\xBF[A]\rb=\xFF\r", "\xEF\xBB\xBF[A]\r\nb=\xFF\r\n\r\n"},
                      {"utf-16", utf16, utf16_saved}};
  Start();
  for (const Row& row : rows) {
    const QString path = File(QString::fromLatin1(row.name), row.bytes);
    Ini().File().BecomeFileAt(path);
    Ini().OpenINI();
    Ini().SaveFile();
    EXPECT_EQ(BytesOf(path), row.saved) << row.name;
    Ini().FileClose();
  }
  // A character without a place: what becomes of a file, and of the next one after the user chose otherwise.
  const std::string in_utf8 = "[A]\r\nx=\xD0\x96\r\n\r\n",
                    in_utf16("\xFF\xFE[\0A\0]\0\r\0\n\0x\0=\0\x16\x04\r\0\n\0\r\0\n\0", 26);
  const auto save_with_zhe = [&](const std::string& bytes) {
    const QString path = File(u"a.ini"_s, bytes);
    OpenPathList(global_, path);
    Select(Ini(), {u"A"_s, u"x=1"_s});
    OnDialog(u"form_ADE"_s, Fill(u"x"_s, u"\u0416"_s));
    Ini().findChild<QPushButton*>(u"cmd_Edit"_s)->click();
    Ini().SaveFile();
    return BytesOf(path);
  };
  const std::string ascii = "[A]\r\nx=1\r\n\r\n";
  EXPECT_EQ(save_with_zhe(ascii), SystemUnicode() == TextEncoding::Utf8 ? in_utf8 : in_utf16);
  EXPECT_TRUE(NoticeOf(Ini()).contains(u"has no place for"));
  EXPECT_EQ(Ini().windowTitle(), u"a.ini");
  for (const auto& [caption, saved] : {std::pair(u"Write as UTF-8 with byte order mark"_s, "\xEF\xBB\xBF" + in_utf8),
                                       std::pair(u"Write as UTF-16 LE"_s, in_utf16)}) {
    for (QPushButton* button : Ini().findChildren<QPushButton*>(u"notice_action"_s))
      if (button->text() == caption) button->click();
    EXPECT_EQ(BytesOf(Ini().File().Path()), saved);
    Ini().FileClose();
    EXPECT_EQ(save_with_zhe(ascii), saved) << "the last choice";
  }
  Ini().FileClose();
  EXPECT_EQ(save_with_zhe("[A]\r\nx=1\r\ny=\xE9\r\n\r\n").substr(0, 2), "\xFF\xFE")
      << "who reads 8 bits reads no UTF-8";
}

TEST_F(Editor, SaveAsAsksAndGoesBackWhenCancelled) {
  const QString path = File(u"a.ini"_s, "[A]\nx=1\n"), other = File(u"b.ini"_s, "old");
  Start({path});
  const auto exists = [this](MsgAnswer answer) {
    dialogs_.ExpectMsgBox(u"Overwrite existing file?"_s, u"File Exists"_s, MsgButtons::YesNoCancel, answer,
                          MsgIcon::Question);
  };
  common_dialog_.ExpectSave({});
  Ini().SaveAs();
  common_dialog_.ExpectSave(other);
  exists(MsgAnswer::Cancel);
  Ini().SaveAs();
  EXPECT_EQ(Ini().File().Path(), path);
  EXPECT_EQ(BytesOf(other), "old");
  common_dialog_.ExpectSave(other);
  exists(MsgAnswer::No);
  common_dialog_.ExpectSave(other);
  exists(MsgAnswer::Yes);
  Ini().SaveAs();
  const CommonDialog& shown = common_dialog_.shown.back();
  EXPECT_EQ(shown.title, u"Save File");
  EXPECT_EQ(shown.filter, u"INI File|*.INI");
  EXPECT_EQ(shown.default_ext, u".INI");
  EXPECT_EQ(BytesOf(other), "[A]\r\nx=1\r\n\r\n");
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\n");
  EXPECT_EQ(Dump(Ini().Tree()), ">b.ini\n A\n  x=1\n");
  EXPECT_EQ(registry_.ReadValue(SettingsRoot, u"Last Save"_s), QDir::toNativeSeparators(folder_.path()));
}

TEST_F(Editor, ClosingAsksAndAFailedWriteKeepsTheWindow) {
  const QString path = File(u"a.ini"_s, "[A]\nx=1\n");
  Start({path});
  const auto change = [this] {
    dialogs_.ExpectInputBox(u"Enter the name for the new section."_s, u"Add New Section"_s, {}, u"New"_s);
    Ini().AddSection();
  };
  const auto ask = [&](MsgAnswer answer) {
    dialogs_.ExpectMsgBox(u"Save this file?\r"_s + Ini().File().Path(), u"Document Changed"_s, MsgButtons::YesNoCancel,
                          answer, MsgIcon::Question);
  };
  change();
  ask(MsgAnswer::Cancel);
  Ini().close();
  EXPECT_EQ(Ini().Tag(), u"0");

  QFile::setPermissions(path, QFile::ReadOwner);
  ask(MsgAnswer::Yes);
  dialogs_.ExpectMsgBox(
      u"TME could not save the file\r( "_s + path + u" )\rThe file is read-only.  The file on disk is unchanged."_s,
      u"Tamarind Editor"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Warning);
  Ini().FileClose();
  EXPECT_EQ(Ini().windowTitle(), u"a.ini [CHANGED]");
  EXPECT_EQ(BytesOf(path), "[A]\nx=1\n");

  QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
  ask(MsgAnswer::Yes);
  Ini().close();
  EXPECT_EQ(BytesOf(path), "[A]\r\nx=1\r\n\r\n[New]\r\n\r\n");
  EXPECT_EQ(Ini().Tag(), u"");

  NewDocument(global_, DocumentKind::Ini);
  change();
  ask(MsgAnswer::Yes);
  common_dialog_.ExpectSave({});
  Ini().FileClose();
  EXPECT_EQ(Ini().Tag(), u"") << "closed although the save dialog was cancelled";
}

TEST_F(Editor, OpeningSaysWhatWasLeftOut) {
  struct Row {
    const char* name;
    std::string bytes;
    const char* notice;
    const char* tree;
  };
  const Row rows[] = {
      {"tidy.ini", "[A]\r\nx=1\r\n\r\n[B]\r\n\r\n", "", ">tidy.ini\n A\n  x=1\n B\n"},
      {"empty.ini", "", "", ">empty.ini\n"},
      {"one.ini", "[", "", ">one.ini\n \n"},
      {"early.ini", "x=1\n[A]\ny=2\n",
       "The file ended early at line 1: 3 lines were not taken. Saving writes only what the tree shows.",
       ">early.ini\n"},
      {"blank.ini", "[B]\n\n\nx=1\n[A]",
       "2 blank lines dropped. The file holds its sections in another order. Saving writes only what the tree shows.",
       ">blank.ini\n A\n B\n  x=1\n"},
      {"order.ini", "[A]\ny=1\nx=2\n\n",
       "The file holds its entries in another order. Saving writes only what the tree shows.", nullptr},
      {"header.ini", "[A] ; c\nx=1\n\n",
       "1 section header does not end in \"]\" and lost its last character. Saving writes only what the tree shows.",
       ">header.ini\n A] ; \n  x=1\n"},
      {"zero.ini", std::string("[A]\na\0b=1\n", 10), "", nullptr},
      {"long.ini", "[A]\n" + std::string(1 << 20, 'x') + "\n", "", nullptr},
      {"bom.ini", "\xFF\xFE", "", ">bom.ini\n"},
  };
  Start();
  for (const Row& row : rows) {
    const QString path = File(QString::fromLatin1(row.name), row.bytes);
    OpenPathList(global_, path);
    EXPECT_EQ(NoticeOf(Ini()).toStdString(), row.notice) << row.name;
    EXPECT_EQ(Ini().findChild<NoticeBar*>()->isVisible(), *row.notice != '\0') << row.name;
    if (row.tree) {
      EXPECT_EQ(Dump(Ini().Tree()), row.tree);
    }
    Ini().FileClose();
  }
  const QString path = InFolder(u"vanished.ini"_s);
  Ini().File().BecomeFileAt(path);
  dialogs_.ExpectMsgBox(u"TME could not open the file\r( "_s + path + u" )\r"_s + NothingThere(Missing::File) + u'.',
                        u"Tamarind Editor"_s);
  Ini().OpenINI();
  EXPECT_EQ(Ini().Tag(), u"");
  EXPECT_EQ(global_.area.ActiveDocument(), nullptr);
}

TEST_F(Editor, ASaveSaysWhatItLeftOutAndWhereThatIs) {
  Start();
  const std::string bytes = "[B]\nx=1\n\n\n[A]\n;c\n";
  const QString path = File(u"a.ini"_s, bytes);
  OpenPathList(global_, path);
  EXPECT_FALSE(Ini().HoldsWholeFile());
  Ini().SaveFile();
  EXPECT_TRUE(Ini().HoldsWholeFile());
  const QString left_out = u"1 blank line, the order of its sections."_s;
  const QString said =
      u"The save left out, or wrote in another form: "_s + left_out + u" File History has the file as it was."_s;
  EXPECT_EQ(NoticeOf(Ini()), said);
  EXPECT_EQ(history_.contents.Read(history_.versions.List(path).value(0).digest), bytes);

  OpenPathList(global_, File(u"b.ini"_s, bytes));
  common_dialog_.ExpectSave(InFolder(u"c.ini"_s));
  Ini(1).SaveAs();
  EXPECT_EQ(NoticeOf(Ini(1)), u"Not in this file, or in another form: "_s + left_out + u" b.ini has it as it was."_s);

  auto* button = Ini().findChild<QPushButton*>(u"notice_action"_s);
  ASSERT_NE(button, nullptr);
  const DocumentWindow* shown = nullptr;
  global_.menus.Handle("menu_ToolsHistory", [&] { shown = global_.area.ActiveDocument(); });
  button->click();
  EXPECT_EQ(shown, &Ini());

  // What the reader would not take back is said too, and the first sentence stays until it is put away.
  Select(Ini(), {u"A"_s, u";c"_s});
  dialogs_.ExpectInputBox(u"Alter the comment:"_s, u"Comments"_s, u";c"_s, u"[c"_s);
  Ini().findChild<QPushButton*>(u"cmd_Edit"_s)->click();
  const QString header = u"1 line begins with \"[\" and would be a section when the file is opened again."_s;
  Ini().SaveFile();
  EXPECT_EQ(NoticeOf(Ini()), said + u' ' + header);
  Ini().findChild<NoticeBar*>()->Clear();
  Ini().SaveFile();
  EXPECT_EQ(NoticeOf(Ini()), header);
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
