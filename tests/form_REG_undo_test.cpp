#include <QCheckBox>
#include <QLabel>
#include <functional>
#include <string>
#include <vector>

#include "RegWindow.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class RegWindowUndo : public RegWindow {
 protected:
  static constexpr const char* kKeys =
      "REGEDIT4\r\n\r\n; top\r\n[HKEY_CURRENT_USER\\Alpha]\r\n\"s\"=\"1\"\r\n\"t\"=\"2\"\r\n\"u\"=\"3\"\r\n\r\n"
      "[HKEY_CURRENT_USER\\Alpha\\Beta\\Deep]\r\n\"v\"=\"4\"\r\n\r\n[HKEY_CURRENT_USER\\Gamma]\r\n\r\n";

  struct Command {
    const char* name;
    QStringList key;
    std::function<void()> run;
  };

  void OpenHeld(bool whole) {
    Start();
    global_.settings.reg_whole = whole;
    OpenPathList(global_, File(u"a.reg"_s, kKeys));
    TV().expandAll();
  }
  QTreeView& TV() { return *View(u"TV"_s); }
  void SelectRows(int first, int last) {
    SelectValue(first);
    QAbstractItemModel* model = View(u"LV"_s)->model();
    View(u"LV"_s)->selectionModel()->select({model->index(first, 0), model->index(last, 0)},
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  static void NameIs(const QString& name) {
    OnDialog(u"form_REGName"_s, [name](QWidget& dialog) {
      dialog.findChild<QLineEdit*>(u"txt_Name"_s)->setText(name);
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
  }
  void ExpectDeletionInPlace(const QString& what) {
    dialogs_.ExpectMsgBox(u"Are you sure you want to put a deletion in place of "_s + what, u"Write a Deletion"_s,
                          MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
  }
  void AddHives() {
    OnDialog(u"form_AddHK"_s, [](QWidget& dialog) {
      for (const char* hive : {"cb_HKEY_USERS", "cb_HKEY_CLASSES_ROOT"})
        dialog.findChild<QCheckBox*>(QLatin1StringView(hive))->click();
      dialog.findChild<QPushButton*>(u"cmd_OK"_s)->click();
    });
    Reg().EditNewKey();
  }

  /// What the views show: keys, the path, the values.
  QString Shown() {
    QString shown;
    TV().expandAll();
    for (QModelIndex index = TV().model()->index(0, 0); index.isValid(); index = TV().indexBelow(index))
      shown += index.data().toString() + (index == TV().currentIndex() ? u"* "_s : u" "_s);
    return shown + u'\n' + Reg().findChild<QLabel*>(u"lbl_location"_s)->text() + u'\n' + Rows();
  }

  void RunUndoRedo(const std::vector<Command>& commands) {
    QStringList before, after;
    for (const Command& command : commands) {
      SCOPED_TRACE(command.name);
      SelectKey(command.key);
      before += Shown();
      command.run();
      after += Shown();
      EXPECT_EQ(Reg().Document().EditPosition(), static_cast<std::size_t>(after.size())) << "one step each";
    }
    for (std::size_t at = commands.size(); at-- > 0;) {
      SCOPED_TRACE(commands[at].name);
      Reg().EditUndo();
      EXPECT_EQ(Shown(), before[static_cast<qsizetype>(at)]);
    }
    EXPECT_EQ(Reg().windowTitle(), u"a.reg") << "back at the file";
    EXPECT_FALSE(Reg().IsModified());
    while (Reg().Document().CanRedo()) Reg().EditRedo();
    EXPECT_NE(Reg().windowTitle(), u"a.reg");
  }
};

}  // namespace

TEST_F(RegWindowUndo, ViewsOfWholeDocumentsFollow) {
  OpenHeld(true);
  const QStringList alpha{u"HKEY_CURRENT_USER"_s, u"Alpha"_s};
  RunUndoRedo({
      {"hives", {}, [this] { AddHives(); }},
      {"key", alpha, [this] { NameIs(u"New"_s), Reg().EditNewKey(); }},
      {"rename value", alpha, [this] { SelectValue(1), Reg().EditRename(), TypeInRow(Reg(), u"w"_s); }},
      {"values go", alpha,
       [this] { SelectRows(0, 1), ExpectDeletion(u"these 2 values?"_s, MsgAnswer::Yes), Reg().EditDelete(); }},
      {"values are cut", alpha, [this] { SelectValue(0), Reg().EditCut(); }},
      {"paste", {u"HKEY_CURRENT_USER"_s, u"Gamma"_s}, [this] { Reg().EditPaste(); }},
      {"deletion of values",
       {u"HKEY_CURRENT_USER"_s, u"Gamma"_s},
       [this] { SelectValue(0), ExpectDeletionInPlace(u"this value?"_s), Reg().EditWriteDeletion(); }},
      {"key is cut", alpha, [this] { Reg().EditCut(); }},
  });
  Reg().ShowComments();
  while (Reg().Document().CanUndo()) Reg().EditUndo();
  SelectKey({u"HKEY_CURRENT_USER"_s, u"Alpha"_s, u"; top"_s});
  EXPECT_EQ(TV().currentIndex().data().toString(), u"; top");
  EXPECT_TRUE(TV().isExpanded(TV().currentIndex().parent()));
  EXPECT_EQ(Reg().Content(), kKeys);
}

TEST_F(RegWindowUndo, ViewsByTheRulesFollow) {
  OpenHeld(false);
  const QStringList alpha{u"HKEY_CURRENT_USER"_s, u"Alpha"_s};
  RunUndoRedo({
      {"hives", {}, [this] { AddHives(); }},
      {"value", alpha,
       [this] { OnDialog(u"form_REGEdit"_s, Fill(u"n"_s, u"5"_s, u"cmd_OK"_s)), Reg().EditNewString(); }},
      {"data", alpha,
       [this] { SelectValue(0), OnDialog(u"form_REGEdit"_s, Fill({}, u"x"_s, u"cmd_OK"_s)), Reg().EditModify(); }},
      {"value of another key",
       {u"HKEY_CURRENT_USER"_s, u"Gamma"_s},
       [this] { OnDialog(u"form_REGEdit"_s, Fill(u"g"_s, u"6"_s, u"cmd_OK"_s)), Reg().EditNewString(); }},
      {"rename", alpha,
       [this] {
         dialogs_.ExpectInputBox(u"Rename this Key"_s, u"Branch Rename"_s, u"Alpha"_s, u"Omega"_s);
         Reg().EditRename();
       }},
      {"key goes",
       {u"HKEY_CURRENT_USER"_s, u"Omega"_s},
       [this] {
         ExpectDeletion(
             u"this branch, all branches under it, and all values associated with this branch and all branches under it?"_s,
             MsgAnswer::Yes);
         Reg().EditDelete();
       }},
      {"value goes",
       {u"HKEY_CURRENT_USER"_s, u"Gamma"_s},
       [this] { SelectValue(0), ExpectDeletion(u"this value?"_s, MsgAnswer::Yes), Reg().EditDelete(); }},
  });
}

TEST_F(RegWindowUndo, SelectedRowsAndExpandedKeysComeBack) {
  const QStringList alpha{u"HKEY_CURRENT_USER"_s, u"Alpha"_s};
  const auto selected = [this] {
    QStringList rows;
    for (const QModelIndex& row : View(u"LV"_s)->selectionModel()->selectedRows()) rows += row.data().toString();
    return rows.join(u' ');
  };
  for (const bool whole : {false, true}) {
    OpenHeld(whole);
    SelectKey(alpha);
    const QString branch =
        u"this branch, all branches under it, and all values associated with this branch and all branches under it?"_s;
    ExpectDeletion(branch, MsgAnswer::Yes);
    TV().collapse(TV().currentIndex().model()->index(0, 0, TV().currentIndex()));
    Reg().EditDelete();
    Reg().EditUndo();
    EXPECT_TRUE(TV().isExpanded(TV().currentIndex()));
    EXPECT_FALSE(TV().isExpanded(TV().model()->index(0, 0, TV().currentIndex()))) << "as it was left";
    for (const auto& [first, last, names] : {std::tuple{0, 0, u"s"}, std::tuple{1, 2, u"t u"}}) {
      SelectRows(first, last);
      ExpectDeletion(first == last ? u"this value?"_s : u"these 2 values?"_s, MsgAnswer::Yes);
      Reg().EditDelete();
      Reg().EditUndo();
      EXPECT_EQ(selected(), QStringView(names));
    }
    QTest::keyClick(&TV(), Qt::Key_Shift);
    if (!whole) dialogs_.ExpectInputBox(u"Rename this Key"_s, u"Branch Rename"_s, u"Alpha"_s, u"Omega"_s);
    Reg().EditRename();
    if (whole) TypeInRow(Reg(), u"Omega"_s);
    EXPECT_EQ(TV().currentIndex().data().toString(), u"Omega");
    Reg().EditUndo();
    EXPECT_EQ(selected(), u"t u") << "of the key whose name comes back";
    {
      const RegDocument::Step step(Reg().Document(), EditName::Replace);
      for (std::size_t record = 0; record < 3; ++record)
        whole ? Reg().Document().SetAssignment(record, "\"x\"") : Reg().Document().SetValueData(record, "x");
    }
    SelectKey(alpha.mid(0, 1));
    Reg().EditUndo();
    EXPECT_EQ(selected(), u"t u") << "of the key that is selected again";
    Reg().FileClose();
  }
}
