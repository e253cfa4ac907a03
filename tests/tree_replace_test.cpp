#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include "KindsEditor.h"
#include "documents/ini/IniReader.h"
#include "documents/reg/RegWholeReader.h"
#include "shell/GlobalMenus.h"
#include "shell/OpenDispatch.h"
#include "shell/Settings.h"
#include "windows/ini/IniReplacer.h"
#include "windows/ini/IniSearch.h"
#include "windows/reg/RegReplacer.h"
#include "windows/reg/RegSearch.h"
#include "windows/reg/form_REG.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// Replaces all hits in a document as far as it takes them; why it does not take the others, a line each.
QString ReplaceAllIn(EditableDocument& document, std::unique_ptr<SearchSource> source, Replacer& replacer,
                     std::string_view wanted, std::string_view with) {
  TreeSearch search(std::move(source));
  const auto matcher = std::make_shared<PlainMatcher>(wanted, SearchCase::Match, SearchWords::Any);
  search.Start(~SearchFields{0}, matcher);
  while (search.GoOn(std::chrono::steady_clock::time_point::max())) continue;
  std::vector<Replacement> plans;
  const SearchHit* last = nullptr;
  for (const SearchHit& hit : search.Hits()) {
    const bool is_same = last != nullptr && last->Place() == hit.Place() && last->field == hit.field;
    last = &hit;
    if (is_same) continue;
    if (auto plan = replacer.Plan(hit.Place(), hit.field, {.matcher = *matcher, .with = with})) plans.push_back(*plan);
  }
  const EditableDocument::Step step(document, EditName::Replace);
  QString refusals;
  for (const Replacement& plan : plans) {
    if (!plan.refusal.isEmpty())
      refusals += plan.refusal + u'\n';
    else if (!replacer.Apply(plan))
      refusals += u"not taken\n"_s;
  }
  return refusals;
}

template <class Document>
std::string SourceOf(const Document& document) {
  std::string text;
  document.Lines().Write([&](std::string_view part) {
    text += part;
    return true;
  });
  return text;
}

}  // namespace

TEST(Replacer, TakesInAnIniDocumentWhatIsReadBackAsItIsMeant) {
  const struct {
    const char *text, *wanted, *with, *result, *refusals;
  } cases[] = {
      {"[ab]\nab = \"ab\" ; ab\n;ab\n", "ab", "x", "[x]\nx = \"x\" ; x\n;x\n", ""},
      {"[a1]\n[a2]\n[x2]\n", "a", "x", "[x1]\n[a2]\n[x2]\n", "There is a section of this name already.\n"},
      {"[a1]\n[a2]\n", "a1", "a2", "[a1]\n[a2]\n", "There is a section of this name already.\n"},
      {"[a]\na=a\n", "a", "b=c", "[b=c]\na=b=c\n", "A key ends at its \"=\".\n"},
      {"a=1\nb=21\n", "1", " \"x ", "a=1\nb=21\n",
       "A value has no blanks at its ends, but within quotes.\nA value has no blanks at its ends, but within "
       "quotes.\n"},
      {"a=1\n;ab\n", "a", "", "a=1\n;b\n", "An entry needs a key.\n"},
      {"ab=1\n;c\n", "a", "[", "ab=1\n;c\n", "The line would no longer be an entry.\n"},
      {";ab\n", ";", "", ";ab\n", "A comment begins with a semicolon.\n"},
      {"[a]\nx1=a\nX=b\n[b]\nx1=c\n", "1", "", "[a]\nx1=a\nX=b\n[b]\nx=c\n",
       "The section has a key of this name already.\n"},
      {"[a1]\n[b]\n", "a1", "B", "[a1]\n[b]\n", "There is a section of this name already.\n"},
      {"[a];\n [b] ; ab]\n", "b", "x", "[a];\n [x] ; ax]\n", ""},
      {"[b] ; ab\n", "; ", "", "[b] ; ab\n", "A comment begins with a semicolon.\n"},
      {"[ab]\n", "b", "];c", "[ab]\n", "The name of a section ends at its \"]\".\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.text) + c.wanted + c.with);
    IniTree tree;
    tree.Reset("f", Holding::Whole);
    ReadWholeIni(tree, c.text);
    IniReplacer replacer(tree);
    EXPECT_EQ(ReplaceAllIn(tree, std::make_unique<IniSearchSource>(tree), replacer, c.wanted, c.with).toStdString(),
              c.refusals);
    EXPECT_EQ(SourceOf(tree), c.result);
    tree.Undo();
    EXPECT_EQ(SourceOf(tree), c.text);
  }
}

TEST(Replacer, EncodesDataOfTheRegistryAgain) {
  const struct {
    const char *values, *wanted, *with, *result, *refusals;
  } cases[] = {
      {"\"n\"=\"a\\\\b\"\n", "a\\", "\"", "\"n\"=\"\\\"b\"\n", ""},
      {"\"n\"=dword:0000001a\n", "1a", "1b", "\"n\"=dword:0000001b\n", ""},
      {"\"n\"=dword:0000001a\n", "26", "255", "\"n\"=dword:000000ff\n", ""},
      {"\"n\"=dword:0000001a\n", "26", "x", "\"n\"=dword:0000001a\n", "This is no number any more.\n"},
      {"\"n\"=dword:0000001a\n", "26", "4294967296", "\"n\"=dword:0000001a\n",
       "The number is too large for its type.\n"},
      {"\"n\"=hex:0a,bc\n", "bc", "01 02", "\"n\"=hex:0a,01,02\n", ""},
      {"\"n\"=hex:0a,bc\n", "bc", "xy", "\"n\"=hex:0a,bc\n", "These are no bytes any more.\n"},
      {"\"n\"=hex(2):61,00,00\n", "a", "c", "\"n\"=hex(2):61,00,00\n", ""},
      {"\"n\"=hex(7):61,00,62,00,00\n", "b", "cc", "\"n\"=hex(7):61,00,63,63,00,00\n", ""},
      {"\"n\"=hex(7):61,00,62,00,00\n", "b", "", "\"n\"=hex(7):61,00,62,00,00\n",
       "An empty string would end the list.\n"},
      {"\"n\"=hex(7):61,00,62,00,00\n", "a b", "c", "\"n\"=hex(7):61,00,62,00,00\n",
       "The hit goes over more than one string of the list.\n"},
      // A string by itself, as it was found, and bytes as they are shown.
      {"\"n\"=hex(7):61,00,62,62,00,00\n", "b", "cc", "\"n\"=hex(7):61,00,63,63,63,63,00,00\n", ""},
      {"\"n\"=hex(7):61,00,62,20,62,00,00\n", " ", "_", "\"n\"=hex(7):61,00,62,20,62,00,00\n",
       "The hit goes over more than one string of the list.\n"},
      {"\"n\"=hex:0a,01\n", "0", "", "\"n\"=hex:0a,01\n", ""},
      {"\"xa\"=\"1\"\n\"xb\"=\"1\"\n\"C\"=\"1\"\n", "xb", "c", "\"xa\"=\"1\"\n\"xb\"=\"1\"\n\"C\"=\"1\"\n",
       "This key has a value of this name already.\n"},
      {"\"xa\"=\"1\"\n\"xb\"=\"1\"\n", "x", "", "\"a\"=\"1\"\n\"b\"=\"1\"\n", ""},
      {"\"n\"=\"a\"\n", "a", "\xE2\x82\xAC\xE2\x88\xAB", "\"n\"=\"\xE2\x82\xAC\xE2\x88\xAB\"\n", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.values) + c.wanted + c.with);
    const std::string head = "REGEDIT4\n\n[HKEY_USERS\\Q]\n";
    RegDocument document;
    ReadWholeReg(document, head + c.values, {});
    RegReplacer replacer(document);
    EXPECT_EQ(
        ReplaceAllIn(document, std::make_unique<RegSearchSource>(document), replacer, c.wanted, c.with).toStdString(),
        c.refusals);
    EXPECT_EQ(SourceOf(document), head + c.result);
    document.Undo();
    EXPECT_EQ(SourceOf(document), head + c.values);
  }
}

TEST(Replacer, GivesNoKeyTheNameOfAnother) {
  RegDocument document;
  ReadWholeReg(document, "REGEDIT4\n\n[HKEY_USERS\\k1]\n[HKEY_USERS\\k2]\n[HKEY_USERS\\K1\\k1]\n[HKEY_USERS\\q2]\n",
               {});
  RegReplacer replacer(document);
  EXPECT_EQ(ReplaceAllIn(document, std::make_unique<RegSearchSource>(document), replacer, "k", "Q"),
            u"There is a key of this name already.\n");
  EXPECT_EQ(SourceOf(document),
            "REGEDIT4\n\n[HKEY_USERS\\Q1]\n[HKEY_USERS\\k2]\n[HKEY_USERS\\Q1\\Q1]\n[HKEY_USERS\\q2]\n");
  document.Undo();
  ReadWholeReg(document, "REGEDIT4\n\n[HKEY_USERS\\k1]\n[HKEY_USERS\\kk1]\n", {});
  RegReplacer freeing(document);
  const PlainMatcher matcher("k1", SearchCase::Match, SearchWords::Any);
  const RegNode* parent = document.Root()->Child(0);
  const ReplaceQuery query{.matcher = matcher, .with = "1"};
  EXPECT_EQ(freeing.Plan({parent->Child(0)}, SearchField::Key, query)->refusal, u"");
  const Replacement other{{parent->Child(1)}, SearchField::Key, "k1", "k1", {}};
  EXPECT_EQ(freeing.Check(other), u"");
  EXPECT_EQ(RegReplacer(document).Check(other), u"There is a key of this name already.");
  RegDocument by_rules;
  RegNode* key = by_rules.AddBranch(by_rules.AddHiveNode("HKEY_USERS"), "abc");
  by_rules.AddValueRecord(key, RegType::String, "ab", "ab");
  by_rules.AddValueRecord(key, RegType::Dword, "n", "0000000a");
  by_rules.AddValueRecord(key, RegType::String, "xb", "");
  RegReplacer of_rules(by_rules);
  EXPECT_EQ(ReplaceAllIn(by_rules, std::make_unique<RegSearchSource>(by_rules), of_rules, "a", "x"),
            u"This key has a value of this name already.\nThis is no number any more.\n");
  EXPECT_EQ(key->Text(), "xbc");
  EXPECT_EQ(by_rules.Values()[0].data, "xb");
  by_rules.Undo();
  EXPECT_EQ(key->Text(), "abc");
  // Keys of one name get each other's values, and a line stays one.
  by_rules.AddValueRecord(by_rules.AddBranch(by_rules.Root()->Child(0), "xbc"), RegType::String, "n", "b");
  const auto refusal = [&](const char* wanted, const char* with) {
    RegReplacer fresh(by_rules);
    const auto revision = by_rules.Revision();
    const QString refusals = ReplaceAllIn(by_rules, std::make_unique<RegSearchSource>(by_rules), fresh, wanted, with);
    if (by_rules.Revision() != revision) by_rules.Undo();
    return refusals;
  };
  EXPECT_EQ(refusal("xbc", "abc"), u"A key of this name has a value of the same name.\n");
  EXPECT_EQ(refusal("xbc", "abd"), u"");
  EXPECT_EQ(refusal("ab", "\""), u"A quotation mark or a backslash needs a backslash before it.\n");
  EXPECT_EQ(refusal("USERS\\a", "b"), u"The hit goes over more than one key.\n");
}

TEST(Replacer, PutsNothingIntoAFileThatItCannotHold) {
  RegDocument document;
  ReadWholeReg(document, "REGEDIT4\n\n[HKEY_USERS\\ab]\n@=\"ab\"\n\"ab\"=hex(2):61,62,00\n", {});
  const std::string before = SourceOf(document);
  const auto refused = [&](RegCharacters characters, const char* wanted) {
    RegReplacer replacer(document, characters);
    const auto source = [&] { return std::make_unique<RegSearchSource>(document); };
    const qsizetype lines = ReplaceAllIn(document, source(), replacer, wanted, "\xE2\x88\xAB").count(u'\n');
    if (SourceOf(document) != before) document.Undo();
    return lines;
  };
  EXPECT_EQ(refused(RegCharacters::OfCodePage, "ab"), 4);
  EXPECT_EQ(refused(RegCharacters::Any, "ab"), 1);
  EXPECT_EQ(refused(RegCharacters::Any, "Default"), 1);
}

class TreeReplace : public KindsEditor {
 protected:
  form_INI& Open(const std::string& bytes, Holding holding) {
    if (!frame_->isVisible()) Start();
    global_.settings.ini_whole = holding == Holding::Whole;
    OpenPathList(global_, File(u"r.ini"_s, bytes));
    global_.menus.Action(u"menu_SearchReplace"_s)->trigger();
    return Ini();
  }
  template <class Widget>
  static Widget* Child(const QWidget& window, const char* name) {
    return window.findChild<Widget*>(QLatin1StringView(name));
  }
  static void Fill(const QWidget& window, const QString& wanted, const QString& with) {
    Child<QLineEdit>(window, "find_text")->setText(wanted);
    Child<QLineEdit>(window, "replace_text")->setText(with);
    QTest::qWait(1);
  }
};

TEST_F(TreeReplace, ReplacesHitAfterHit) {
  for (const Holding holding : {Holding::ByRules, Holding::Whole}) {
    form_INI& window = Open("[s]\r\na=one one\r\nb=one\r\n\r\n", holding);
    Fill(window, u"one"_s, u"oneone"_s);
    auto* one = Child<QToolButton>(window, "replace_one");
    one->click();
    EXPECT_EQ(window.Content(), "[s]\r\na=oneone one\r\nb=one\r\n\r\n");
    EXPECT_EQ(Child<QLabel>(window, "find_count")->text(), u"3 of 4");
    one->click();
    one->click();
    EXPECT_EQ(window.Content(), "[s]\r\na=oneone oneone\r\nb=oneone\r\n\r\n");
    auto* with = Child<QLineEdit>(window, "replace_text");
    with->setFocus();
    QTest::keyClick(with, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(window.Content(), "[s]\r\na=oneone oneone\r\nb=one\r\n\r\n") << "and not what was typed in the box";
    QTest::keyClick(with, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(window.Caption(), u"r.ini [CHANGED]");
    with->setText(u"x=y"_s);
    Fill(window, u"a"_s, u"x=y"_s);
    one->click();
    EXPECT_TRUE(Child<QLabel>(window, "find_error")->isVisible());
    window.SaveFile();
    window.FileClose();
  }
}

TEST_F(TreeReplace, ShowsWhatAllHitsBecomeAndReplacesTheChosenOnes) {
  form_INI& window = Open("[s]\nk1=1\nk2=2\nk3=3\n", Holding::Whole);
  Child<QToolButton>(window, "find_pattern")->setChecked(true);
  Fill(window, u"^k(.)"_s, u"\\1="_s);
  const auto drive = [&](bool has_refusals) {
    return [&, has_refusals](QWidget& dialog) {
      auto* list = Child<QTreeView>(dialog, "replace_list");
      QAbstractItemModel* rows = list->model();
      ASSERT_EQ(rows->rowCount(), 3);
      EXPECT_EQ(list->isColumnHidden(4), !has_refusals);
      EXPECT_GT(list->columnWidth(2), dialog.width() / 7) << "what it was and will be can be read";
      EXPECT_EQ(Child<QPushButton>(dialog, "replace_do")->isEnabled(), !has_refusals);
      EXPECT_EQ(rows->index(1, 2).data(), u"k2"_s);
      if (has_refusals) return static_cast<void>(dialog.close());
      EXPECT_EQ(rows->index(1, 3).data(), u"2-\\1"_s);
      rows->setData(rows->index(2, 0), Qt::Unchecked, Qt::CheckStateRole);
      EXPECT_TRUE(Child<QLabel>(dialog, "replace_count")->text().startsWith(u"2 "));
      Child<QPushButton>(dialog, "replace_do")->click();
    };
  };
  OnDialog(u"replace_preview"_s, drive(true));
  Child<QToolButton>(window, "replace_all")->click();
  EXPECT_EQ(window.Content(), "[s]\nk1=1\nk2=2\nk3=3\n");
  Fill(window, u"^k(.)"_s, u"\\1-\\\\1"_s);
  OnDialog(u"replace_preview"_s, drive(false));
  Child<QToolButton>(window, "replace_all")->click();
  EXPECT_EQ(window.Content(), "[s]\n1-\\1=1\n2-\\1=2\nk3=3\n");
  EXPECT_EQ(window.Tree().UndoName(), EditName::Replace);
  const_cast<IniTree&>(window.Tree()).Undo();
  EXPECT_EQ(window.Content(), "[s]\nk1=1\nk2=2\nk3=3\n");
}

TEST_F(TreeReplace, LeavesWhatCollidesWithAnUntickedRow) {
  form_INI& window = Open("[s]\nax=1\naax=2\n", Holding::Whole);
  Child<QToolButton>(window, "find_pattern")->setChecked(true);
  Fill(window, u"^a"_s, u""_s);
  OnDialog(u"replace_preview"_s, [&](QWidget& dialog) {
    auto* list = Child<QTreeView>(dialog, "replace_list");
    EXPECT_EQ(list->model()->index(1, 1).data(), u"s"_s);
    EXPECT_TRUE(list->isColumnHidden(4) && list->isColumnHidden(5));
    list->model()->setData(list->model()->index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
    auto* replace = Child<QPushButton>(dialog, "replace_do");
    replace->click();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(list->isColumnHidden(4) || replace->isEnabled());
    EXPECT_EQ(list->model()->index(1, 4).data(), u"The section has a key of this name already."_s);
    dialog.close();
  });
  Child<QToolButton>(window, "replace_all")->click();
  EXPECT_EQ(window.Content(), "[s]\nax=1\naax=2\n");
}
