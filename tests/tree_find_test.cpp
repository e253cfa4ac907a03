#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include "KindsEditor.h"
#include "WaitFor.h"
#include "documents/search/TreeSearch.h"
#include "shell/DocumentArea.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"
#include "shell/Settings.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/PatternMatcher.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// An editor in which texts are sought in trees.
class TreeFind : public KindsEditor {
 protected:
  form_INI& OpenIni(const std::string& bytes, const QString& name = u"f.ini"_s) {
    if (!frame_->isVisible()) Start();
    global_.settings.ini_whole = true;
    OpenPathList(global_, File(name, bytes));
    return Ini();
  }
  form_REG& OpenReg(const std::string& bytes, Holding holding = Holding::Whole) {
    if (!frame_->isVisible()) Start();
    global_.settings.reg_whole = holding == Holding::Whole;
    OpenPathList(global_, File(u"f.reg"_s, bytes));
    return dynamic_cast<form_REG&>(Window(DocumentKind::Reg));
  }
  static void Settle() { QTest::qWait(1); }
  template <class Widget>
  static Widget* Child(const DocumentWindow& window, const char* name) {
    return window.findChild<Widget*>(QLatin1StringView(name));
  }
  static QString State(const DocumentWindow& window) { return Child<QLabel>(window, "find_count")->text(); }
  static void Type(const DocumentWindow& window, const QString& text) {
    auto* box = Child<QLineEdit>(window, "find_text");
    box->selectAll();
    QTest::keyClicks(box, text);
    Settle();
  }
  static void Toggle(const DocumentWindow& window, const char* name) {
    Child<QToolButton>(window, name)->toggle();
    Settle();
  }
  void Choose(const char* item) {
    global_.menus.Action(QLatin1StringView(item))->trigger();
    Settle();
  }
  static QString Current(const QTreeView* view) { return view->currentIndex().data().toString(); }
  static QStringList Rows(const QTreeView* list) {
    QStringList rows;
    for (int row = 0; row < list->model()->rowCount(); ++row) {
      QStringList texts;
      for (int column = 0; column < list->model()->columnCount(); ++column)
        if (!list->isColumnHidden(column)) texts += list->model()->index(row, column).data().toString();
      rows += texts.join(u'|');
    }
    return rows;
  }
};

constexpr const char* kText = "[one]\nname=a\n[two]\n; name\nother=The Name\n";

}  // namespace

TEST_F(TreeFind, FindsWhileTypingAndGoesRoundTheHits) {
  form_INI& window = OpenIni(kText);
  auto* tree = Child<QTreeView>(window, "TV");
  Choose("menu_SearchFind");
  auto* bar = Child<QWidget>(window, "find_bar");
  ASSERT_TRUE(bar->isVisible());
  Type(window, u"name"_s);
  EXPECT_EQ(State(window), u"1 of 3");
  EXPECT_EQ(Current(tree), u"name=a");
  auto* box = Child<QLineEdit>(window, "find_text");
  QTest::keyClick(box, Qt::Key_Return);
  EXPECT_EQ(Current(tree), u"; name");
  Choose("menu_SearchAgain");
  EXPECT_EQ(Current(tree), u"other=The Name");
  Choose("menu_SearchAgain");
  EXPECT_EQ(Current(tree), u"name=a");
  QTest::keyClick(box, Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(State(window), u"3 of 3");
  Select(window, {u"one"_s, u"name=a"_s});
  EXPECT_EQ(State(window), u"1 of 3");
  Choose("menu_SearchPrevious");
  Choose("menu_SearchPrevious");
  EXPECT_EQ(Current(tree), u"; name");
  Toggle(window, "find_case");
  EXPECT_EQ(State(window), u"2 of 2");
  Type(window, u"nam"_s);
  Toggle(window, "find_word");
  EXPECT_EQ(State(window), u"No hits");
  Toggle(window, "find_word");
  QTest::keyClick(box, Qt::Key_Escape);
  EXPECT_FALSE(bar->isVisible());
  EXPECT_EQ(Current(tree), u"; name");
  EXPECT_TRUE(tree->hasFocus());
  // Without the bar, what was last sought is sought on.
  Choose("menu_SearchAgain");
  EXPECT_TRUE(bar->isVisible());
  EXPECT_EQ(Current(tree), u"name=a");
}

TEST_F(TreeFind, LooksWhereItIsTold) {
  form_INI& window = OpenIni(kText);
  Choose("menu_SearchFind");
  Type(window, u"name"_s);
  const QList<QAction*> fields = Child<QToolButton>(window, "find_fields")->menu()->actions();
  const char* counts[] = {"3", "2", "1", "hits"};
  // Sections, keys, values, comments.
  for (const int field : {1, 2, 3}) {
    fields[field]->trigger();
    Settle();
    EXPECT_EQ(State(window).section(u' ', -1), QLatin1StringView(counts[field])) << field;
  }
  for (const int field : {1, 2, 3}) fields[field]->trigger();
  Toggle(window, "find_pattern");
  Type(window, u"^(o|n)"_s);
  EXPECT_EQ(State(window), u"3 of 3");
  Type(window, u"("_s);
  const auto* error = Child<QLabel>(window, "find_error");
  EXPECT_TRUE(error->isVisible());
  EXPECT_LT(error->y(), Child<QLineEdit>(window, "find_text")->y());
  EXPECT_TRUE(error->text().contains(u"at its end"));
  EXPECT_EQ(State(window), u"");
}

TEST_F(TreeFind, ListsHitsAndFollowsEdits) {
  form_INI& window = OpenIni(kText);
  Choose("menu_SearchFind");
  Type(window, u"name"_s);
  Toggle(window, "find_list");
  auto* list = Child<QTreeView>(window, "hit_list");
  EXPECT_EQ(Rows(list), (QStringList{u"name|one|a"_s, u"; name|two|"_s, u"other|two|The Name"_s}));
  list->setCurrentIndex(list->model()->index(2, 0));
  EXPECT_EQ(Current(Child<QTreeView>(window, "TV")), u"other=The Name");
  Select(window, {u"one"_s});
  EXPECT_FALSE(list->selectionModel()->hasSelection()) << "no hit is selected";
  list->selectionModel()->select(list->currentIndex(), QItemSelectionModel::ClearAndSelect);
  EXPECT_EQ(Current(Child<QTreeView>(window, "TV")), u"other=The Name") << "as a click on the same row does";
  Select(window, {u"one"_s});
  dialogs_.ExpectMsgBox(u"Are you sure you want to delete Section one?"_s, u"Deletion Confirmation"_s,
                        MsgButtons::YesNo, MsgAnswer::Yes, MsgIcon::Question);
  window.DeleteSection();
  EXPECT_EQ(list->model()->rowCount(), 0);
  Settle();
  EXPECT_EQ(Rows(list), (QStringList{u"; name|two|"_s, u"other|two|The Name"_s}));
  EXPECT_EQ(State(window), u"2 hits");
  window.SaveFile();
  window.FileClose();
  EXPECT_EQ(list->model()->rowCount(), 0);
  OpenIni("[three]\n");
  EXPECT_FALSE(Child<QWidget>(window, "find_bar")->isVisible());
}

TEST_F(TreeFind, FindsInTheRegistryAndInAllOpenDocuments) {
  OpenIni(kText);
  form_REG& window = OpenReg(
      "Windows Registry Editor Version 5.00\n\n[HKEY_USERS\\Name]\n\"Name\"=\"a\"\n"
      "\"x\"=hex(1):6e,00,61,00,6d,00,65,00,00,00\n");
  auto* keys = Child<QTreeView>(window, "TV");
  auto* values = Child<QTreeView>(window, "LV");
  Choose("menu_SearchFind");
  Type(window, u"name"_s);
  EXPECT_EQ(State(window), u"1 of 3");
  EXPECT_EQ(Current(keys), u"Name");
  Choose("menu_SearchAgain");
  EXPECT_EQ(Current(values), u"Name");
  Choose("menu_SearchAgain");
  EXPECT_EQ(Current(values), u"x");
  Toggle(window, "find_list");
  const QList<QAction*> actions = Child<QToolButton>(window, "find_fields")->menu()->actions();
  actions.last()->trigger();
  Settle();
  auto* list = Child<QTreeView>(window, "hit_list");
  ASSERT_EQ(list->model()->rowCount(), 6);
  EXPECT_EQ(Rows(list).at(2), u"x|HKEY_USERS\\Name|name|f.reg");
  EXPECT_EQ(Rows(list).at(5), u"other|two|The Name|f.ini");
  EXPECT_EQ(State(window), u"3 of 3, 6 in all documents");
  list->setCurrentIndex(list->model()->index(5, 0));
  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_EQ(Current(Child<QTreeView>(Ini(), "TV")), u"other=The Name");
  EXPECT_EQ(global_.area.ActiveDocument(), &Ini());
  // The search goes on there, and back.
  Settle();
  WaitFor([&] { return State(Ini()) == u"3 of 3, 6 in all documents"; });
  Choose("menu_SearchAgain");
  EXPECT_EQ(global_.area.ActiveDocument(), &window);
  EXPECT_EQ(Current(keys), u"Name");
  // What is chosen in the list is replaced, wherever it stands.
  Choose("menu_SearchReplace");
  list->setCurrentIndex(list->model()->index(5, 0));
  WaitFor([&] { return State(window) == u"6 of 6 in all documents"; });
  Child<QLineEdit>(window, "replace_text")->setText(u"X"_s);
  Child<QToolButton>(window, "replace_one")->click();
  EXPECT_EQ(Ini().Content(), "[one]\nname=a\n[two]\n; name\nother=The X\n");
  EXPECT_FALSE(window.Document().CanUndo());
  Ini().EditUndo();
  Settle();
  Ini().SaveFile();
  Ini().FileClose();
  Settle();
  EXPECT_EQ(list->model()->rowCount(), 3);
  // Closed with a value selected by the bar.
  list->setCurrentIndex(list->model()->index(2, 0));
  window.FileClose();
  EXPECT_FALSE(Child<QWidget>(window, "find_bar")->isVisible());
}

TEST_F(TreeFind, TheBarFitsIntoANarrowWindow) {
  form_INI& window = OpenIni(kText);
  Choose("menu_SearchReplace");
  window.SubWindow()->resize(300, 500);
  Settle();
  const auto* bar = Child<QWidget>(window, "find_bar");
  for (const QWidget* control : bar->findChildren<QWidget*>()) {
    if (control->isHidden() || control->isWindow() || control->objectName().isEmpty()) continue;
    const QRect place(control->mapTo(bar, QPoint()), control->size());
    EXPECT_TRUE(bar->rect().contains(place)) << control->objectName().toStdString();
    const bool is_button = qobject_cast<const QToolButton*>(control) != nullptr;
    EXPECT_GE(control->width(), is_button ? control->sizeHint().width() : 0) << control->objectName().toStdString();
  }
}

TEST_F(TreeFind, ManyHitsAndDearExpressionsLeaveTheWindowFree) {
  std::string bytes = "REGEDIT4\n\n[HKEY_USERS\\k]\n\"n\"=hex:00";
  for (int i = 0; i < 20'000; ++i) bytes += ",00";
  for (int i = 0; i < 2'000; ++i) bytes += "\n\"k" + std::to_string(i) + "\"=\"" + std::string(40, 'a') + "!\"";
  form_REG& window = OpenReg(bytes + "\n");
  QElapsedTimer time;
  time.start();
  Choose("menu_SearchFind");
  Type(window, u"0"_s);
  window.grab();
  Toggle(window, "find_pattern");
  Type(window, u"(a|aa)+$"_s);
  window.grab();
  Choose("menu_SearchAgain");
  EXPECT_LT(time.elapsed(), 10'000);
  WaitFor([&] { return State(window) == u"No hits"; });
  EXPECT_TRUE(Child<QLabel>(window, "find_error")->isVisible());
}

TEST(PatternMatcher, SearchesLongTextsByAndByAtABoundedCost) {
  const auto count = [](const QString& pattern, const std::string& text, bool gives_up) {
    const PatternMatcher matcher(pattern, SearchCase::Match, SearchWords::Any);
    std::vector<TextMatch> matches;
    QElapsedTimer time;
    time.start();
    matcher.FindAll(text, matches);
    EXPECT_LT(time.elapsed(), 2'000) << pattern.toStdString();
    EXPECT_EQ(matcher.HasGivenUp(), gives_up) << pattern.toStdString();
    return matches.size();
  };
  std::string text;
  for (int i = 0; i < 5'000; ++i) text += "é word " + std::to_string(i) + "; ";
  EXPECT_EQ(count(u"\\bword (\\d+); "_s, text, false), 5'000U);
  EXPECT_EQ(count(u"(?<=; )é"_s, text, false), 4'999U);
  EXPECT_EQ(count(u"word [^!]{3000}|x*"_s, "w" + text.substr(0, 7'000), false), 2U);
  const std::string row(200'000, 'a');
  EXPECT_EQ(count(u"a*b"_s, row, true), 0U);
  EXPECT_EQ(count(u"(a|aa)+$"_s, row, true), 0U);
  EXPECT_EQ(count(u"a{300}"_s, row, false), 666U);
  EXPECT_EQ(count(u".*"_s, row, false), 1U);
}

TEST(PatternMatcher, FindsAndReplacesBytesOfAnyText) {
  const PatternMatcher word(u"(\\w+)=(\\d)"_s, SearchCase::Ignore, SearchWords::Any);
  std::vector<TextMatch> matches;
  word.FindAll("ä\xFF \U0001F600 é=1, ß=2", matches);
  ASSERT_EQ(matches.size(), 2U);
  EXPECT_EQ(matches[0].start, 9U);
  EXPECT_EQ(matches[0].end, 13U);
  EXPECT_EQ(word.Replaced("\xFF é=1, ß=2", "\\2\\\\\\1\\n", std::nullopt), "\xFF 1\\é\\n, 2\\ß\\n");
  EXPECT_EQ(PatternMatcher(u"(.*)=(x)?"_s, SearchCase::Match, SearchWords::Any).Replaced("\xFEé=", "\\2\\1", {}),
            "\xFEé");
  EXPECT_FALSE(PatternMatcher(u"a)(b"_s, SearchCase::Match, SearchWords::Whole).IsValid());
  EXPECT_EQ(PatternMatcher(u"abc\\"_s, SearchCase::Match, SearchWords::Whole).ErrorOffset(), 4);
  EXPECT_EQ(word.Replaced("a=1, b=2", "x", std::size_t{5}), "a=1, x");
  EXPECT_EQ(PatternMatcher(u"x*"_s, SearchCase::Ignore, SearchWords::Any).Replaced("abc", "y", std::nullopt),
            std::nullopt);
  EXPECT_EQ(PatternMatcher(u"a|b"_s, SearchCase::Match, SearchWords::Whole).Replaced("a ab B b", "_", std::nullopt),
            "_ ab B _");
}
