#include <QClipboard>
#include <QGuiApplication>

#include "RegWindow.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// Several rows of a tree or list, selected as a user does.
class ManyRows : public RegWindow {
 protected:
  static void Extend(QTreeView* view, const QModelIndex& index) {
    view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  /// Selects the rows at these paths together.
  static void SelectAll(form_INI& window, const QList<QStringList>& paths) {
    auto* view = window.findChild<QTreeView*>(u"TV"_s);
    QModelIndexList rows;
    for (const QStringList& path : paths) {
      Select(window, path);
      rows += view->currentIndex();
    }
    for (const QModelIndex& row : rows) Extend(view, row);
  }
  void ExpectQuestion(const QString& what) {
    dialogs_.ExpectMsgBox(what, u"Deletion Confirmation"_s, MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
  }
  static QString Copied() { return QGuiApplication::clipboard()->text(); }
};

}  // namespace

TEST_F(ManyRows, OfAnIniDocumentAreCutCopiedAndDeletedTogether) {
  const std::string bytes = "; of k\nk=1\n\n[a]\nx=1\ny=2\n\n[b]\nz=3\n";
  auto& window = OpenAs<form_INI>(u"w.ini"_s, bytes, Holding::Whole);
  SelectAll(window, {{u"a"_s, u"x=1"_s}, {u"a"_s}, {u"k=1"_s}, {u"b"_s, u"z=3"_s}});
  window.EditCopy();
  EXPECT_EQ(Copied(), u"; of k\nk=1\nz=3\n[a]\nx=1\ny=2\n\n") << "what is below a selected section counts once";
  ExpectQuestion(u"Are you sure you want to delete these 3 items?"_s);
  window.EditDelete();
  EXPECT_EQ(window.Content(), "; of k\n\n[b]\n");
  window.EditUndo();
  EXPECT_EQ(window.Content(), bytes);
  auto* view = window.findChild<QTreeView*>(u"TV"_s);
  QStringList selected;
  for (const QModelIndex& row : view->selectionModel()->selectedRows()) selected += row.data().toString();
  selected.sort();
  EXPECT_EQ(selected, (QStringList{u"a"_s, u"k=1"_s, u"x=1"_s, u"z=3"_s})) << "as they were";
  SelectAll(window, {{u"a"_s, u"y=2"_s}, {u"k=1"_s}});
  window.EditCut();
  EXPECT_EQ(window.Content(), "\n[a]\nx=1\n\n[b]\nz=3\n");
  EXPECT_EQ(window.Document().UndoName(), EditName::Cut);
  Select(window, {u"b"_s});
  window.EditPaste();
  EXPECT_EQ(window.Content(), "\n[a]\nx=1\n\n[b]\nz=3\n; of k\nk=1\ny=2\n");
  QTest::keySequence(view, QKeySequence::SelectAll);
  window.EditCut();
  EXPECT_EQ(window.Content(), "") << "the root stands for all";
}

TEST_F(ManyRows, ByTheRulesAreCutAndAllPasted) {
  auto& window = OpenAs<form_INI>(u"w.ini"_s, "[a]\nx=1\ny=2\n;c\n[b]\n[c]\nz=3\n", Holding::ByRules);
  SelectAll(window, {{u"a"_s, u"x=1"_s}, {u"a"_s, u";c"_s}, {u"c"_s}});
  window.EditCut();
  EXPECT_EQ(Copied(), u";c\r\nx=1\r\n[c]\r\nz=3\r\n\r\n");
  EXPECT_EQ(Dump(window.Tree()), "w.ini\n a\n  y=2\n >b\n");
  Select(window, {u"b"_s});
  window.EditPaste();
  EXPECT_EQ(Dump(window.Tree()).substr(7), " a\n  y=2\n b\n  ;c\n  x=1\n c\n  z=3\n");
}

TEST_F(ManyRows, OfARegistryDocumentAreCutCopiedAndDeletedTogether) {
  const std::string bytes =
      "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n\"v\"=\"1\"\r\n\r\n[HKEY_USERS\\A\\B]\r\n\r\n"
      "[HKEY_USERS\\C]\r\n\r\n[HKEY_USERS\\D]\r\n\r\n[HKEY_USERS\\D\\E]\r\n";
  auto& window = OpenAs<form_REG>(u"a.reg"_s, bytes, Holding::Whole);
  window.ExpandAll();
  const auto select = [this](const QList<QStringList>& paths) {
    QModelIndexList rows;
    for (const QStringList& path : paths) {
      SelectKey(path);
      rows += View(u"TV"_s)->currentIndex();
    }
    for (const QModelIndex& row : rows) Extend(View(u"TV"_s), row);
  };
  select({{u"HKEY_USERS"_s, u"D"_s, u"E"_s}, {u"HKEY_USERS"_s, u"A"_s}, {u"HKEY_USERS"_s, u"A"_s, u"B"_s}});
  window.EditCut();
  EXPECT_EQ(window.Content(),
            "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\C]\r\n\r\n[HKEY_USERS\\D]\r\n\r\n");
  EXPECT_EQ(
      Copied(),
      u"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n\"v\"=\"1\"\r\n\r\n[HKEY_USERS\\A\\B]\r\n\r\n"
      u"[HKEY_USERS\\D\\E]\r\n");
  EXPECT_TRUE(View(u"TV"_s)->isExpanded(View(u"TV"_s)->model()->index(0, 0)));
  const_cast<RegDocument&>(window.Document()).Undo();
  EXPECT_EQ(window.Content(), bytes);
  select({{u"HKEY_USERS"_s, u"C"_s}, {u"HKEY_USERS"_s, u"A"_s}});
  ExpectDeletion(u"these 2 items, all branches under them, and all values associated with them?"_s, MsgAnswer::Yes);
  window.EditDelete();
  EXPECT_EQ(window.Document().NodeCount(), 4U);
}

TEST_F(ManyRows, ByTheRulesAreDeletedTogether) {
  auto& window = OpenAs<form_REG>(u"a.reg"_s,
                                  "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"u\"=\"1\"\r\n\"v\"=\"2\"\r\n\"w\"=\"3\"\r\n\r\n"
                                  "[HKEY_USERS\\B]\r\n\r\n",
                                  Holding::ByRules);
  SelectKey({u"HKEY_USERS"_s, u"A"_s});
  SelectValue(0);
  Extend(View(u"LV"_s), View(u"LV"_s)->model()->index(2, 0));
  ExpectDeletion(u"these 2 values?"_s, MsgAnswer::Yes);
  window.EditDelete();
  EXPECT_EQ(Rows(), u"v|REG_SZ|2");
  SelectKey({u"HKEY_USERS"_s, u"A"_s});
  const QModelIndex key = View(u"TV"_s)->currentIndex();
  Extend(View(u"TV"_s), key.siblingAtRow(1));
  ExpectDeletion(u"these 2 items, all branches under them, and all values associated with them?"_s, MsgAnswer::Yes);
  window.EditDelete();
  EXPECT_EQ(window.Document().NodeCount(), 2U);
}
