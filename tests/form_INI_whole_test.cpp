#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include "Editor.h"
#include "shell/DisplayText.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"
#include "shell/Settings.h"
#include "windows/ini/form_INI.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// Fills the boxes of a key and value dialog and presses Enter.
std::function<void(QWidget&)> FillBoxes(const QString& key, const QString& value) {
  return [=](QWidget& dialog) {
    dialog.findChild<QLineEdit*>(u"txt_Key"_s)->setText(key);
    auto* box = dialog.findChild<QLineEdit*>(u"txt_value"_s);
    box->setText(value);
    QTest::keyClick(box, Qt::Key_Return);
  };
}

}  // namespace

class WholeIni : public Editor {
 protected:
  form_INI& Open(const std::string& bytes) {
    if (!frame_->isVisible()) Start();
    global_.settings.ini_whole = true;
    path_ = File(u"w.ini"_s, bytes);
    OpenPathList(global_, path_);
    return Ini();
  }
  std::string Saved() {
    Ini().SaveFile();
    return BytesOf(path_);
  }
  bool IsOffered(const char* item) const { return global_.menus.Action(QLatin1StringView(item))->isVisible(); }
  bool IsAvailable(const char* item) const { return global_.menus.Action(QLatin1StringView(item))->isEnabled(); }

  QString path_;
};

TEST_F(WholeIni, AnUntouchedFileStaysAsItIs) {
  using namespace std::string_literals;
  for (const std::string& bytes :
       {"\n;c\n#d\nx = \"1\"\n[b]\n[a] ; t\n[b]\nk"s, "[A]\nb=\xE9\r\n\n\n"s, "\xEF\xBB\xBF\0[\x80\xFF"s,
        "\xFF\xFE[\0\x00\xD8\n"s, "\xFE\xFF\0[\0A\0"s, ""s, "\x1A"s}) {
    form_INI& window = Open(bytes);
    EXPECT_EQ(window.findChild<NoticeBar*>()->Text(), u"");
    EXPECT_EQ(window.Content(), bytes);
    EXPECT_EQ(Saved(), bytes);
    window.FileClose();
  }
}

TEST_F(WholeIni, WhatIsNotTypedOverStays) {
  form_INI& window = Open("; \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9 \xFF.\n[s]\na=\xC3\xA9\xFF\nb=CANCEL\nc=DELETE\nd=e\n");
  auto* edit = window.findChild<QPushButton*>(u"cmd_Edit"_s);
  const QString comment = EditableText("; \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9 \xFF.");
  Select(window, {TextOf("; \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9 \xFF.")});
  dialogs_.ExpectInputBox(u"Alter the comment:"_s, u"Comments"_s, comment, comment + u'!');
  edit->click();
  const QString at[] = {TextOf("a=\xC3\xA9\xFF"), u"b=CANCEL"_s, u"c=DELETE"_s};
  for (const QString& line : at) {
    Select(window, {u"s"_s, line});
    OnDialog(u"form_ADE"_s, [](QWidget& dialog) {
      auto* key = dialog.findChild<QLineEdit*>(u"txt_Key"_s);
      FillBoxes(key->text() + u'1', dialog.findChild<QLineEdit*>(u"txt_value"_s)->text())(dialog);
    });
    edit->click();
  }
  EXPECT_EQ(Saved(), "; \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9 \xFF.!\n[s]\na1=\xC3\xA9\xFF\nb1=CANCEL\nc1=DELETE\nd=e\n");
  Select(window, {u"s"_s, u"d=e"_s});
  OnDialog(u"form_ADE"_s, FillBoxes(u"d"_s, u" e "_s));
  edit->click();
  EXPECT_FALSE(window.File().IsChanged()) << "not a byte";
}

TEST_F(WholeIni, CommandsChangeTheirOwnLines) {
  form_INI& window = Open("; top\nfirst = 1\n\n[s]  ; kept\n  a = \" x \" \n  ;b=2\nlist\n\n; of t\n[t]\n");
  auto* edit = window.findChild<QPushButton*>(u"cmd_Edit"_s);
  const auto fill = [&](const QString& key, const QString& value) { OnDialog(u"form_ADE"_s, FillBoxes(key, value)); };
  Select(window, {u"s"_s, u"a = \" x \""_s});
  OnDialog(u"form_ADE"_s, [](QWidget& dialog) {
    EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txt_value"_s)->text(), u" x ");
    FillBoxes(u"a"_s, u" y "_s)(dialog);
  });
  edit->click();
  Select(window, {u"s"_s, u"list"_s});
  fill(u"lists"_s, u""_s);  // no question about the value that it never had
  edit->click();
  const auto expect_refusal = [this] {
    dialogs_.ExpectMsgBox(
        u"The file cannot hold this.  Read again, it would be something else: a line that begins with \"[\" is a section, the name of a section ends at its \"]\", a key at its \"=\", and a line has no end within."_s,
        u"Whole File"_s, MsgButtons::Ok, MsgAnswer::Ok, MsgIcon::Warning);
  };
  expect_refusal();
  fill(u"[x"_s, u"1"_s);
  window.AddValue();
  fill(u"  "_s, u"1"_s);  // no key
  window.AddValue();
  QGuiApplication::clipboard()->setText(u"p=1"_s);
  dialogs_.ExpectInputBox(u"Enter New Section Name"_s, u"Paste as New Section"_s, {}, u"a] ;b"_s);
  expect_refusal();
  window.PasteNewSection();
  Select(window, {u"s"_s, u";b=2"_s});
  dialogs_.ExpectInputBox(u"Alter the comment:"_s, u"Comments"_s, u";b=2"_s, u"b=2"_s);
  edit->click();
  EXPECT_TRUE(IsAvailable("menu_EditRemovefromAll")) << "the comment is an entry now";
  Select(window);
  OnDialog(u"form_ADE"_s, [](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), u"Add Key/Value before the first section");
    FillBoxes(u"k"_s, u""_s)(dialog);
  });
  window.findChild<QPushButton*>(u"cmd_AddValue"_s)->click();
  OnDialog(u"form_INIAddValue"_s, FillBoxes(u"all"_s, u"v"_s));
  window.AddSectionToAll();
  dialogs_.ExpectInputBox(u"Enter the name for the new section."_s, u"Add New Section"_s, {}, u"u"_s);
  window.AddSection();
  EXPECT_EQ(
      Saved(),
      "; top\nfirst = 1\nk =\n\n[s]  ; kept\n  a = \" y \" \n  b=2\nlists\n  all=v\n\n; of t\n[t]\nall = v\n\n[u]\n");

  Select(window, {u"s"_s, u"all=v"_s});
  window.DeleteAllNodes();
  Select(window, {u"s"_s});
  window.EditCut();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u"[s]  ; kept\n  a = \" y \" \n  b=2\nlists\n\n");
  Select(window, {u"t"_s});
  window.EditPaste();
  EXPECT_EQ(window.windowTitle(), u"w.ini [CHANGED]");
  EXPECT_EQ(Saved(), "; top\nfirst = 1\nk =\n\n; of t\n[t]\n\n[s]  ; kept\n  a = \" y \" \n  b=2\nlists\n\n[u]\n");
  EXPECT_EQ(Dump(window.Tree()),
            "w.ini\n ; top\n first = 1\n k =\n ; of t\n t\n >s\n  a = \" y \"\n  b=2\n  lists\n u\n");
}

TEST_F(WholeIni, LinesBeforeTheSectionsAreEditedLikeOthers) {
  form_INI& window = Open(
      "\xEF\xBB\xBF"
      "a=1\n;c\n#\xFF\n[s]\n");
  struct {
    QStringList selected;
    bool add, remove, from_all, section;
  } const rows[] = {{{}, true, false, false, false},
                    {{u"a=1"_s}, true, true, true, false},
                    {{u";c"_s}, true, true, false, false},
                    {{u"s"_s}, true, false, false, true}};
  for (const auto& row : rows) {
    Select(window, row.selected);
    SCOPED_TRACE(row.selected.join(u'/').toStdString());
    EXPECT_EQ(IsAvailable("menu_EditAddKeyValue"), row.add);
    EXPECT_EQ(IsAvailable("menu_EditDeleteValue"), row.remove);
    EXPECT_EQ(IsAvailable("menu_EditRemovefromAll"), row.from_all);
    EXPECT_EQ(IsAvailable("menu_SectionsDelete"), row.section);
  }
  Select(window, {u";c"_s});
  window.EditCut();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), u";c\n");
  window.EditCut();  // the next line, which is no text
  Select(window, {u"s"_s});
  window.EditPaste();
  EXPECT_EQ(Saved(),
            "\xEF\xBB\xBF"
            "a=1\n[s]\n#\xFF\n");
  Select(window);
  window.EditCut();
  EXPECT_EQ(Saved(), "\xEF\xBB\xBF");
}

TEST_F(WholeIni, SortingByNameIsDisplayAlone) {
  form_INI& window = Open("[b]\nz=1\na=1\n[a]\n");
  EXPECT_TRUE(IsOffered("menu_ViewSortByName"));
  Select(window, {u"b"_s, u"a=1"_s});
  QAction* sort = global_.menus.Action(u"menu_ViewSortByName"_s);
  sort->trigger();
  EXPECT_TRUE(sort->isChecked());
  EXPECT_EQ(Dump(window.Tree()), "w.ini\n a\n b\n  >a=1\n  z=1\n");
  EXPECT_EQ(window.windowTitle(), u"w.ini");
  OnDialog(u"form_ADE"_s, FillBoxes(u"m"_s, u"1"_s));
  window.AddValue();
  EXPECT_EQ(Dump(window.Tree()), "w.ini\n a\n b\n  a=1\n  >m=1\n  z=1\n");
  sort->trigger();
  EXPECT_FALSE(sort->isChecked());
  EXPECT_EQ(Dump(window.Tree()), "w.ini\n b\n  z=1\n  a=1\n  >m=1\n a\n");
  EXPECT_EQ(Saved(), "[b]\nz=1\na=1\nm=1\n[a]\n");
  window.WholeFile();
  EXPECT_FALSE(IsOffered("menu_ViewSortByName"));
  EXPECT_EQ(Dump(window.Tree()), ">w.ini\n a\n b\n  a=1\n  m=1\n  z=1\n");
}
