#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>

#include "Editor.h"
#include "TestSystem.h"
#include "files/TextEncoding.h"
#include "shell/DocumentArea.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"
#include "windows/ini/form_INI.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

QString NoticeOf(const form_INI& window) { return window.findChild<NoticeBar*>()->Text(); }

}  // namespace

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
    OnDialog(u"form_ADE"_s, [](QWidget& dialog) {
      dialog.findChild<QLineEdit*>(u"txt_value"_s)->setText(u"\u0416"_s);
      dialog.findChild<QPushButton*>(u"cmd_Exit"_s)->click();
    });
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
  const std::string in_8bit = "[A]\r\nx=1\r\ny=\xE9\r\n\r\n";
  const std::string with_zhe = save_with_zhe(in_8bit);
  EXPECT_EQ(with_zhe.substr(0, 2), "\xFF\xFE") << "who reads 8 bits reads no UTF-8";
  for (const auto& [step, bytes] : {std::pair(&form_INI::EditUndo, in_8bit), std::pair(&form_INI::EditRedo, with_zhe),
                                    std::pair(&form_INI::EditUndo, in_8bit)}) {
    (Ini().*step)();
    Ini().SaveFile();
    EXPECT_EQ(BytesOf(Ini().File().Path()), bytes) << "each state has its own encoding";
  }
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
