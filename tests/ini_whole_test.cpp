#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "IniTreeProbe.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniWriter.h"

using namespace std::string_literals;

namespace tme {
namespace {

TEST(IniWhole, PartsOfLines) {
  const std::pair<const char*, const char*> names[] = {
      {"[a]", "a"},          {" \t[a] ", "a"},     {"[ a ]", " a "}, {"[a", "a"},   {"[", ""},       {"[]", ""},
      {"[a]b] ; c]", "a]b"}, {"[a] x [b] y", "a"}, {"[a];b]", "a"},  {"[a]#", "a"}, {"[a]x]", "a]x"}};
  for (const auto& [line, name] : names) EXPECT_EQ(SourceHeaderName(line), name) << line;

  struct {
    const char *line, *key, *value, *with_x_y, *with_quote;
  } const entries[] = {
      {"a=1", "a", "1", "x=y", "a=\"1"},
      {"\t a  = 1 ; c \t", "a", "1 ; c", "\t x  = y \t", "\t a  = \"1 ; c \t"},
      {"a", "a", "", "x = y", "a = \""},
      {" =", "", "", " x=y", " =\""},
      {"a = ", "a", "", "x = y", "a = \""},
      {"=b=c", "", "b=c", "x=y", "=\"b=c"},
      {"a = \" b \" ", "a", " b ", "x = \"y\" ", "a = \" b "},
      {"a='b'", "a", "b", "x='y'", "a='\"b'"},
      {"a='", "a", "'", "x=y", "a=\"'"},
      {"a=\"b\" \"c\"", "a", "\"b\" \"c\"", "x=y", "a=\"\"b\" \"c\""},
  };
  const IniLineStyle style{.indent = "\t", .before_equals = " ", .after_equals = " "};
  for (const auto& test : entries) {
    const IniEntryParts parts = EntryPartsOf(test.line);
    EXPECT_EQ(parts.key, test.key) << test.line;
    EXPECT_EQ(parts.value, test.value) << test.line;
    EXPECT_EQ(WithEntry(test.line, "x", "y", style), test.with_x_y);
    EXPECT_EQ(WithEntry(test.line, test.key, "\""s + test.value, style), test.with_quote);
    EXPECT_EQ(WithEntry(test.line, test.key, test.value, style), test.line);
  }
}

using T = IniTree&;

struct WholeCase {
  std::string file;
  const char* selected;
  std::function<void(T)> edit;
  std::string written;
  const char* dump = nullptr;
  const char* selects = nullptr;
};

IniArrangement Other(IniArrangement arrangement) {
  return arrangement == IniArrangement::ByName ? IniArrangement::AsInFile : IniArrangement::ByName;
}

/// The tree that is left is the one that reading its file again gives.
void RunWhole(const WholeCase& test, IniArrangement arrangement) {
  SCOPED_TRACE(test.file + " selected: " + test.selected);
  IniTree tree;
  ReadWhole(tree, test.file);
  EXPECT_EQ(WholeText(tree), test.file);
  tree.Select(FindNode(tree, test.selected));
  tree.Arrange(arrangement);
  IniMirror mirror(tree);
  const IniState before(tree);
  test.edit(tree);
  mirror.Check();
  EXPECT_EQ(WholeText(tree), test.written);
  EXPECT_EQ(tree.Revision() > before.revision, test.written != test.file);
  EXPECT_EQ(tree.CanUndo(), test.written != test.file);
  // All of it is undone and redone, in either arrangement.
  const IniState after(tree);
  while (tree.CanUndo()) tree.Undo(), mirror.Check();
  EXPECT_EQ(IniState(tree), before);
  while (tree.CanRedo()) tree.Redo(), mirror.Check();
  EXPECT_EQ(IniState(tree), after);
  tree.Arrange(Other(arrangement));
  while (tree.CanUndo()) tree.Undo(), mirror.Check();
  EXPECT_EQ(WholeText(tree), test.file);
  tree.Arrange(arrangement);
  while (tree.CanRedo()) tree.Redo(), mirror.Check();
  EXPECT_EQ(IniState(tree).text, after.text);
  EXPECT_EQ(tree.Selected(), after.selected);
  if (test.selects) {
    EXPECT_EQ(tree.Selected()->Text(), test.selects);
  }
  tree.Arrange(IniArrangement::AsInFile);
  IniTree again;
  ReadWhole(again, test.written);
  EXPECT_EQ(Dump(tree), Dump(again));
  if (test.dump) {
    EXPECT_EQ(Dump(tree), test.dump);
  }
}

void RunWhole(const std::vector<WholeCase>& cases) {
  for (const WholeCase& test : cases) {
    RunWhole(test, IniArrangement::AsInFile);
    RunWhole(test, IniArrangement::ByName);
  }
}

TEST(IniWhole, EveryFileStaysAsItIs) {
  const auto nothing = [](T) {};
  const std::pair<std::string, const char*> files[] = {
      {"", ""},
      {"\r\n\n\r \t", ""},
      {"x=1\r\n;c\n#d\r\r\n[b]\n b = 1 \n\n  [a] ; t\nplain\n[b]\nb=2", "x=1(;c)(#d)[b|b = 1][a|plain][b|b=2]"},
      {"\0=\0\n[\0"s, nullptr},
      {"\xFF\xFE[a]\x80\n\x1A", nullptr},
      {"[[a]]\n]\n", "[[a]|]]"},
      {std::string(1 << 20, 'x') + "\n[", nullptr},
  };
  for (const auto& [file, dump] : files) RunWhole({{file, "", nothing, file, dump}});
}

TEST(IniWhole, AnEditIsItsLines) {
  const auto set = [](const char* key, const char* value) {
    return [=](T t) { EXPECT_EQ(t.SetEntry(t.Selected(), key, value), t.Selected()); };
  };
  const auto text = [](const char* now) { return [=](T t) { EXPECT_TRUE(t.SetText(t.Selected(), now)); }; };
  const auto add = [](const char* key, const char* value) {
    return [=](T t) { EXPECT_NE(t.AddEntry(t.Selected(), key, value), nullptr); };
  };
  const auto section = [](const char* name) { return [=](T t) { EXPECT_NE(t.AddSection(name), nullptr); }; };
  const auto all = [](T t) { EXPECT_TRUE(t.AddEntryToAllSections("k", "v")); };
  RunWhole({
      // Values, keys, comments and names change alone.
      {"[s]\n\tk =  \"v\"  \r\nz", "k =  \"v\"", set("k", "w"), "[s]\n\tk =  \"w\"  \r\nz"},
      {"[s]\rk=v", "k=v", set("key", "v"), "[s]\rkey=v"},
      {"[s]\nk=v\nz\n", "k=v", set(";k", "v"), "[s]\n;k=v\nz\n", "[s|(;k=v)|z]"},
      {"[s]\n  # k=v  \n", "# k=v", text("k=v"), "[s]\n  k=v  \n", "[s|k=v]"},
      {"a = 1\n[s]\nk\n", "k", set("k", "v"), "a = 1\n[s]\nk = v\n"},
      {"\t[s] x ; y\r\n", "s", text("t u"), "\t[t u] x ; y\r\n"},
      {"[s", "s", text("t"), "[t"},
      // New lines look like their neighbours and come before blank lines and the comments of the next section.
      {"[s]\n  a: b\n  x = 1\n  y\n\n\n;t\n[t]\n", "s", add("k", "v"),
       "[s]\n  a: b\n  x = 1\n  y\n  k = v\n\n\n;t\n[t]\n"},
      {"x =1\r\n[s]\n;t\n[t]", "s", add("k", ""), "x =1\r\n[s]\nk =\n;t\n[t]"},
      {"[s]\r\nx", "s", add(" k ", " v "), "[s]\r\nx\r\nk=v"},
      {"\n;c\n[s]\n", "", add("k", "v"), "k=v\n\n;c\n[s]\n", "k=v(;c)[s]"},
      {"a= 1\n\n;c\n[s]\n", "", add(";k", ""), "a= 1\n;k\n\n;c\n[s]\n", "a= 1(;k)(;c)[s]"},
      {"", "", add("k", "v"), "k=v\r\n"},
      {"a\r\n\r\n", "", add("k", "v"), "a\r\nk=v\r\n\r\n"},
      {"x=0\n[s]\n a=1\n\n[t]\n[u]\n;c", "", all, "x=0\n[s]\n a=1\n k=v\n\n[t]\nk=v\n[u]\n;c\nk=v"},
      {"", "", section("s"), "[s]\r\n"},
      {"[a]\nx\n", "", section("s"), "[a]\nx\n\n[s]\n"},
      {"[a]\nx\n[b]", "", section("s"), "[a]\nx\n[b]\n[s]"},
      {"[a]\n\n;b\n[b]\r\nx", "", section("s"), "[a]\n\n;b\n[b]\r\nx\r\n\r\n[s]"},
      {"[a]\n\t", "", section("s"), "[a]\n\t\n[s]"},
  });
}

TEST(IniWhole, RefusesWhatWouldBeReadOtherwise) {
  const std::string file = "x\n[s] t\nk=v\n;c\n";
  RunWhole({{file, "k=v",
             [](T t) {
               IniNode* entry = t.Selected();
               IniNode* comment = FindNode(t, ";c");
               IniNode* section = entry->Parent();
               for (const char* key : {"[k", " [k", "a\nb", "\r"}) {
                 EXPECT_EQ(t.SetEntry(entry, key, "v"), nullptr) << key;
                 EXPECT_EQ(t.AddEntry(section, key, "v"), nullptr) << key;
                 EXPECT_FALSE(t.AddEntryToAllSections(key, "v")) << key;
                 EXPECT_FALSE(t.SetText(comment, key)) << key;
               }
               EXPECT_EQ(t.SetEntry(entry, "k", "a\nb"), nullptr);
               EXPECT_EQ(t.SetEntry(entry, "a=b", "v"), nullptr);
               EXPECT_TRUE(t.AddEntry(section, "a=b", "v") == nullptr && !t.AddEntryToAllSections("a=b", "v"));
               EXPECT_FALSE(t.SetText(comment, " "));
               EXPECT_EQ(t.SetEntry(FindNode(t, "x"), "", ""), nullptr);
               for (const char* name : {"a\nb", "a];b"}) EXPECT_EQ(t.AddSection(name), nullptr) << name;
               for (const char* name : {"a\nb", "a]"}) EXPECT_FALSE(t.SetText(section, name)) << name;
             },
             file}});
}

TEST(IniWhole, RemovesLinesAndWhatBelongsToThem) {
  const auto remove = [](T t) { t.Remove(t.Selected()); };
  const auto with_comments = [](T t) { t.RemoveWithComments(t.Selected()); };
  const auto key = [](T t) { t.RemoveSelectedKey(); };
  RunWhole({
      {"[s]\n;c\nk=v\n\nx\n", "k=v", remove, "[s]\n;c\n\nx\n", "[s|(;c)|x]", "x"},
      {"[s]\n;b\n\n;c\n#d\nk=v\nx", "k=v", with_comments, "[s]\n;b\n\nx", "[s|(;b)|x]", "x"},
      {"[s]\n;c\n;d\n", ";d", with_comments, "[s]\n;c\n"},
      {"a\n[s]\nk=v", "k=v", remove, "a\n[s]\n", "a[s]", "s"},
      // A section leaves the comments of the next one, and one run of blank lines.
      {"a\n\n;s\n[s]\nk\n\n;t\n[t]\nl\n", "s", remove, "a\n\n;s\n\n;t\n[t]\nl\n", "a(;s)(;t)[t|l]", "t"},
      {"a\n\n;s\n[s]\nk\n\n;t\n[t]\nl\n", "s", with_comments, "a\n\n;t\n[t]\nl\n", "a(;t)[t|l]", "t"},
      {"[a]\nx\n[s]\nk\n\n\n[t]\n", "s", remove, "[a]\nx\n\n\n[t]\n", "[a|x][t]", "t"},
      {"[a]\n\n[s]\n;t\n[t]\n", "s", remove, "[a]\n\n;t\n[t]\n", "[a|(;t)][t]", "t"},
      {"[s]\r\nk\r\n[t]", "t", remove, "[s]\r\nk\r\n", "[s|k]", "s"},
      {"[s]\n;c\n", "s", with_comments, "", "", "f.ini"},
      {"x\n[s]\nKey = 1\nkey\nkeys=2\n;key\n[key]\nKEY=3\nl\n", "KEY=3", key, "x\n[s]\nkeys=2\n;key\n[key]\nl\n",
       "x[s|keys=2|(;key)][key|l]", "l"},
      {"[s]\nk\n", "s", [](T t) { t.Clear(); }, "", "", "f.ini"},
  });
}

TEST(IniWhole, PastesEveryLine) {
  const auto paste = [](const char* text) { return [=](T t) { t.Paste(text); }; };
  const auto cut_and_paste_on = [](const char* place) {
    return [=](T t) {
      const std::string text = ClipboardText(t, *t.Selected());
      t.RemoveWithComments(t.Selected());
      t.Select(FindNode(t, place));
      t.Paste(text);
    };
  };
  RunWhole({
      {"[s]\r\nx\r\n\r\n[t]\r\n", "s", paste("a=1\n\n;c\n b"), "[s]\r\nx\r\na=1\r\n\r\n;c\r\n b\r\n\r\n[t]\r\n",
       "[s|x|a=1|(;c)|b][t]", "a=1"},
      {"[s]\nx\ny", "x", paste("a"), "[s]\nx\ny\na", nullptr, "a"},
      {"x\n\n[s]\n", "", paste("a\n"), "x\na\n\n[s]\n", "xa[s]", "a"},
      {"", "", paste("\n;c\n[s]\na"), "\r\n;c\r\n[s]\r\na\r\n", "(;c)[s|a]", "s"},
      {"[s]\n", "s", paste("\n"), "[s]\n\n", "[s]", "s"},
      {"[s]\n\n;t\n[t]\n", "s", paste("a\n;b\n[b]\nc\n[s]"), "[s]\na\n\n;b\n[b]\nc\n[s]\n\n;t\n[t]\n",
       "[s|a|(;b)][b|c][s|(;t)][t]", "a"},
      {"[s]\nk\n[t]\nl", "k", paste("[b]\n;c"), "[s]\nk\n[b]\n;c\n[t]\nl", "[s|k][b|(;c)][t|l]", "b"},
      {"a\n[s]\nk", "", paste("b\n[c]"), "a\nb\n[s]\nk\n[c]", "ab[s|k][c]", "b"},
      {"[a]\nx\n\n; of b\n[b]\ny\n\n[c]\nz\n", "b", cut_and_paste_on("c"), "[a]\nx\n\n[c]\nz\n\n; of b\n[b]\ny\n\n",
       "[a|x][c|z|(; of b)][b|y]", "b"},
      {"[a]\n;c\nx=1\n\n[b]\n  y=2\n", "x=1", cut_and_paste_on("b"), "[a]\n\n[b]\n  y=2\n;c\nx=1\n",
       "[a][b|y=2|(;c)|x=1]", ";c"},
      {"x\n[a]\ny", "", cut_and_paste_on(""), "x\nx\n[a]\ny\n[a]\ny"},
  });
}

}  // namespace
}  // namespace tme
