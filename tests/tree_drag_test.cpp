#include <QDropEvent>
#include <QMimeData>
#include <string>
#include <vector>

#include "RegWindow.h"
#include "shell/DocumentArea.h"
#include "windows/tree/RowDragView.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// Rows that are dragged in and between the windows of trees.
class RowsDragged : public RegWindow {
 protected:
  template <class Window>
  Window& OpenAs(const QString& name, const std::string& bytes, Holding holding) {
    auto& window = RegWindow::OpenAs<Window>(name, bytes, holding);
    Tree(window).expandAll();
    return window;
  }
  static RowDragView& Tree(const QWidget& window) { return *window.findChild<RowDragView*>(u"TV"_s); }
  static RowDragView& List(const QWidget& window) { return *window.findChild<RowDragView*>(u"LV"_s); }

  /// The row at a path of texts below the root; of the list with a path of one.
  static QModelIndex RowAt(const RowDragView& view, const QStringList& path) {
    QModelIndex index = view.model()->index(0, 0);
    if (view.objectName() == u"LV") index = QModelIndex();
    for (const QString& text : path) {
      int row = 0;
      while (row < view.model()->rowCount(index) && view.model()->index(row, 0, index).data() != text) ++row;
      index = view.model()->index(row, 0, index);
      EXPECT_TRUE(index.isValid()) << text.toStdString();
    }
    return index;
  }
  static void SelectAll(RowDragView& view, const QList<QStringList>& paths) {
    view.setCurrentIndex(RowAt(view, paths.front()));
    for (const QStringList& path : paths)
      view.selectionModel()->select(RowAt(view, path), QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  static QStringList Selected(const RowDragView& view) {
    QStringList texts;
    for (const QModelIndex& row : view.selectionModel()->selectedRows()) texts += row.data().toString();
    return texts;
  }
  /// A place below all rows.
  static inline const QStringList kBeside{u"beside the rows"_s};
  /// Lets the selected rows of a view go over a row of another one; false where they cannot be dropped.
  static bool Drag(RowDragView& from, RowDragView& to, const QStringList& path, Qt::DropAction action) {
    const std::unique_ptr<DraggedRows> rows = from.RowsToDrag();
    if (!rows) return false;
    const QRect room = to.viewport()->rect();
    const QPointF point = path == kBeside ? QPointF(room.center().x(), room.bottom() - 1)
                                          : QPointF(to.visualRect(RowAt(to, path)).center());
    const auto send = [&](auto&& event) {
      event.setDropAction(action);
      QCoreApplication::sendEvent(to.viewport(), &event);
      return event.isAccepted();
    };
    const Qt::DropActions all = Qt::CopyAction | Qt::MoveAction;
    EXPECT_TRUE(send(QDragEnterEvent(point.toPoint(), all, rows.get(), Qt::LeftButton, {})));
    const bool is_taken = send(QDragMoveEvent(point.toPoint(), all, rows.get(), Qt::LeftButton, {}));
    EXPECT_EQ(send(QDropEvent(point, all, rows.get(), Qt::LeftButton, {})), is_taken);
    EXPECT_EQ(rows->CarryOut(), is_taken);
    return is_taken;
  }
  static constexpr Qt::DropAction kMove = Qt::MoveAction;
  static constexpr Qt::DropAction kCopy = Qt::CopyAction;
};

}  // namespace

TEST_F(RowsDragged, WithinAnIniDocument) {
  const std::string bytes = "; of k\nk=1\n\n[a]\nx=1\ny=2\n\n[b]\nz=3\n";
  auto& window = OpenAs<form_INI>(u"w.ini"_s, bytes, Holding::Whole);
  RowDragView& view = Tree(window);
  SelectAll(view, {{u"k=1"_s}, {u"a"_s, u"y=2"_s}});
  EXPECT_FALSE(Drag(view, view, {u"k=1"_s}, kMove)) << "on itself";
  EXPECT_TRUE(Drag(view, view, {u"b"_s, u"z=3"_s}, kMove));
  EXPECT_EQ(window.Content(), "\n[a]\nx=1\n\n[b]\nz=3\n; of k\nk=1\ny=2\n");
  EXPECT_EQ(Selected(view), (QStringList{u"; of k"_s, u"k=1"_s, u"y=2"_s}));
  EXPECT_EQ(window.Document().EditPosition(), 1U);
  EXPECT_EQ(window.Document().UndoName(), EditName::Move);
  SelectAll(view, {{u"b"_s}});
  EXPECT_FALSE(Drag(view, view, {u"b"_s, u"z=3"_s}, kMove)) << "below itself";
  EXPECT_TRUE(Drag(view, view, {u"a"_s}, kCopy));
  EXPECT_EQ(window.Content(), "\n[a]\nx=1\n\n[b]\nz=3\n; of k\nk=1\ny=2\n\n[b]\nz=3\n; of k\nk=1\ny=2\n");
  window.EditUndo();
  window.EditUndo();
  EXPECT_EQ(window.Content(), bytes);
  EXPECT_EQ(window.windowTitle(), u"w.ini");

  auto& rules = OpenAs<form_INI>(u"r.ini"_s, "[a]\nx=1\n;c\n[b]\nz=3\n", Holding::ByRules);
  SelectAll(Tree(rules), {{u"a"_s, u"x=1"_s}, {u"a"_s, u";c"_s}});
  EXPECT_FALSE(Drag(Tree(rules), Tree(rules), {}, kMove)) << "no entries below the root";
  EXPECT_TRUE(Drag(Tree(rules), Tree(rules), {u"b"_s}, kCopy));
  EXPECT_EQ(rules.windowTitle(), u"r.ini") << "marks as a paste does";
  SelectAll(Tree(rules), {{u"a"_s, u"x=1"_s}, {u"a"_s, u";c"_s}});
  EXPECT_TRUE(Drag(Tree(rules), Tree(rules), {u"b"_s}, kMove));
  EXPECT_EQ(Dump(rules.Tree()).substr(6), " a\n b\n  ;c\n  >;c\n  x=1\n  x=1\n  z=3\n");
  EXPECT_NE(rules.windowTitle(), u"r.ini") << "and as a cut";
  SelectAll(Tree(rules), {{u"a"_s}});
  EXPECT_FALSE(Drag(Tree(rules), Tree(rules), {}, kCopy)) << "each section is there once";

  auto& other = OpenAs<form_INI>(u"o.ini"_s, "[p]\nq=1\n[r]\n", Holding::Whole);
  SelectAll(Tree(other), {{u"p"_s, u"q=1"_s}});
  EXPECT_TRUE(Drag(Tree(other), Tree(other), kBeside, kMove)) << "an entry to the last section";
  EXPECT_EQ(other.Content(), "[p]\n[r]\nq=1\n");
  SelectAll(Tree(other), {{u"p"_s}});
  EXPECT_TRUE(Drag(Tree(other), Tree(window), kBeside, kCopy)) << "a section to the end";
  EXPECT_EQ(window.Content(), bytes + "\n[p]\n");
}

TEST_F(RowsDragged, BetweenIniDocumentsOfAnyHolding) {
  const std::string from_bytes = "[a]\r\nx=1\r\ny=2\r\n\r\n[c]\r\nw=4\r\n\r\n";
  for (const Holding from_holding : {Holding::ByRules, Holding::Whole}) {
    for (const Holding to_holding : {Holding::ByRules, Holding::Whole}) {
      auto& from = OpenAs<form_INI>(u"f.ini"_s, from_bytes, from_holding);
      auto& to = OpenAs<form_INI>(u"t.ini"_s, "[a]\r\n\r\n[b]\r\nz=3\r\n\r\n", to_holding);
      SelectAll(Tree(from), {{u"a"_s, u"y=2"_s}, {u"c"_s}});
      EXPECT_TRUE(Drag(Tree(from), Tree(to), {u"b"_s}, kMove));
      EXPECT_EQ(from.Content(), "[a]\r\nx=1\r\n\r\n");
      EXPECT_EQ(to.Content(), "[a]\r\n\r\n[b]\r\n" +
                                  std::string(to_holding == Holding::Whole ? "z=3\r\ny=2" : "y=2\r\nz=3") +
                                  "\r\n\r\n[c]\r\nw=4\r\n\r\n");
      EXPECT_EQ(Selected(Tree(to)).size(), 2);
      EXPECT_EQ(global_.area.ActiveDocument(), &to);
      for (form_INI* window : {&from, &to}) {
        EXPECT_EQ(window->Document().EditPosition(), 1U) << "one step in each";
        window->EditUndo();
        EXPECT_FALSE(window->IsModified());
      }
      EXPECT_EQ(from.Content(), from_bytes);
      from.EditRedo();
      to.EditRedo();
      EXPECT_EQ(from.Tree().NodeCount() + to.Tree().NodeCount(), 10U);
      if (to_holding == Holding::ByRules) {
        SelectAll(Tree(from), {{u"a"_s}});
        EXPECT_FALSE(Drag(Tree(from), Tree(to), {}, kMove)) << "a section of this name is there";
      }
      for (form_INI* window : {&from, &to}) window->EditUndo(), window->FileClose();
    }
  }
}

TEST_F(RowsDragged, KeysAndValuesOfWholeDocuments) {
  const std::string bytes =
      "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n\"v\"=\"1\"\r\n\"w\"=hex(7):61,00,00,00,00,00\r\n"
      "\r\n;own\r\n[HKEY_USERS\\A\\B]\r\n\r\n[HKEY_USERS\\C]\r\n\"v\"=\"2\"\r\n\r\n";
  auto& window = OpenAs<form_REG>(u"a.reg"_s, bytes, Holding::Whole);
  RowDragView &keys = Tree(window), &list = List(window);
  SelectAll(keys, {{u"HKEY_USERS"_s, u"A"_s}});
  EXPECT_FALSE(Drag(keys, keys, {u"HKEY_USERS"_s, u"A"_s, u"B"_s}, kMove)) << "below itself";
  SelectAll(list, {{u"v"_s}, {u"w"_s}});
  EXPECT_FALSE(Drag(list, list, {u"v"_s}, kMove)) << "where they are";
  EXPECT_TRUE(Drag(list, keys, {u"HKEY_USERS"_s, u"C"_s}, kMove));
  EXPECT_EQ(Selected(list), (QStringList{u"v (2)"_s, u"w"_s}));
  SelectAll(keys, {{u"HKEY_USERS"_s, u"A"_s, u"B"_s}});
  EXPECT_TRUE(Drag(keys, keys, {u"HKEY_USERS"_s, u"C"_s}, kMove));
  EXPECT_EQ(window.Content(),
            "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_USERS\\A]\r\n\r\n[HKEY_USERS\\C]\r\n\"v\"=\"2\"\r\n"
            "\"v (2)\"=\"1\"\r\n\"w\"=hex(7):61,00,00,00,00,00\r\n\r\n;own\r\n[HKEY_USERS\\C\\B]\r\n\r\n");
  EXPECT_EQ(Selected(keys), QStringList{u"B"_s});
  EXPECT_EQ(window.Document().EditPosition(), 2U);
  // Into another document, which keeps the path below its root, and cannot say all of it in a key.
  auto& other = OpenAs<form_REG>(u"b.reg"_s, "REGEDIT4\r\n\r\n[HKEY_USERS\\C]\r\n\"n\"=\"0\"\r\n\r\n", Holding::Whole);
  SelectAll(keys, {{u"HKEY_USERS"_s, u"C"_s, u"B"_s}, {u"HKEY_USERS"_s, u"A"_s}});
  EXPECT_TRUE(Drag(keys, Tree(other), {}, kMove));
  EXPECT_EQ(other.Content(),
            "REGEDIT4\r\n\r\n[HKEY_USERS\\C]\r\n\"n\"=\"0\"\r\n\r\n[HKEY_USERS\\A]\r\n\r\n;own\r\n[HKEY_USERS\\C\\B]"
            "\r\n\r\n");
  EXPECT_EQ(Selected(Tree(other)), (QStringList{u"B"_s, u"A"_s}));
  EXPECT_EQ(window.Document().NodeCount(), 3U);
  EXPECT_EQ(other.Document().EditPosition(), 1U);
  other.EditUndo();
  EXPECT_FALSE(other.IsModified());
  while (window.Document().CanUndo()) window.EditUndo();
  EXPECT_EQ(window.Content(), bytes);
  EXPECT_FALSE(window.IsModified());
}

TEST_F(RowsDragged, KeysAndValuesByTheRulesAreNeverMixed) {
  const std::string bytes =
      "REGEDIT4\r\n\r\n[HKEY_USERS\\A\\K]\r\n\"v\"=\"1\"\r\n\"w\"=dword:00000002\r\n\r\n[HKEY_USERS\\C]\r\n\"x\"="
      "\"3\"\r\n\r\n";
  auto& window = OpenAs<form_REG>(u"a.reg"_s, bytes, Holding::ByRules);
  auto& other = OpenAs<form_REG>(
      u"b.reg"_s, "REGEDIT4\r\n\r\n[HKEY_USERS\\D]\r\n\"w\"=\"9\"\r\n\r\n[HKEY_USERS\\E\\K]\r\n\"v\"=\"8\"\r\n\r\n",
      Holding::ByRules);
  RowDragView &keys = Tree(window), &list = List(window);
  const QStringList a{u"HKEY_USERS"_s, u"A"_s}, k = a + QStringList{u"K"_s}, c{u"HKEY_USERS"_s, u"C"_s};
  SelectAll(keys, {k});
  EXPECT_FALSE(Drag(keys, keys, c, kCopy)) << "a save would write each value twice";
  EXPECT_FALSE(Drag(keys, Tree(other), {u"HKEY_USERS"_s, u"D"_s}, kMove)) << "K has a v there";
  EXPECT_TRUE(Drag(keys, keys, c, kMove));
  EXPECT_EQ(window.Document().EditPosition(), 1U);
  EXPECT_EQ(Rows(), u"v|REG_SZ|1\nw|DWORD|00000002");
  window.FileSaveRegular();
  EXPECT_EQ(BytesOf(InFolder(u"a.reg"_s)),
            "REGEDIT4\r\n\r\n[HKEY_USERS\\C]\r\n\"x\"=\"3\"\r\n\r\n[HKEY_USERS\\C\\K]\r\n\"v\"=\"1\"\r\n\"w\"=dword:"
            "00000002\r\n\r\n");
  SelectAll(list, {{u"v"_s}, {u"w"_s}});
  EXPECT_FALSE(Drag(list, Tree(other), {u"HKEY_USERS"_s, u"D"_s}, kCopy)) << "there is a w";
  SelectAll(list, {{u"v"_s}});
  EXPECT_TRUE(Drag(list, Tree(other), {u"HKEY_USERS"_s, u"D"_s}, kMove));
  SelectAll(list, {{u"w"_s}});
  EXPECT_TRUE(Drag(list, keys, a, kCopy));
  EXPECT_EQ(List(other).model()->rowCount(), 2);
  EXPECT_EQ(other.Document().EditPosition(), 1U);
  for (form_REG* changed : {&window, &other})
    while (changed->Document().CanUndo()) changed->EditUndo();
  EXPECT_FALSE(other.IsModified());
  SelectAll(keys, {k});
  EXPECT_EQ(Rows(), u"v|REG_SZ|1\nw|DWORD|00000002");

  auto& whole = OpenAs<form_REG>(u"c.reg"_s, bytes, Holding::Whole);
  EXPECT_FALSE(Drag(Tree(whole), Tree(other), {u"HKEY_USERS"_s}, kCopy)) << "held in the other way";
  EXPECT_FALSE(Drag(Tree(OpenAs<form_INI>(u"i.ini"_s, "[s]\nx=1\n", Holding::Whole)), keys, c, kCopy)) << "the root";
}
