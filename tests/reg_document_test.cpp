#include <gtest/gtest.h>

#include <functional>

#include "RegProbe.h"

namespace tme {
namespace {

struct EditCase {
  const char* name;
  const char* selected;
  std::function<void(RegDocument&)> edit;
  const char* expected;
  const char* expected_selected;
  int selection_moves = 0;
};

// In "{${a(v:S=1 w:D=2){b(v:H=3)} c d{b(x:S=4)}}}".
// clang-format off
const std::vector<EditCase> kEdits = {
    {"hives and branches", "$/a", [](RegDocument& d) { d.AddBranch(d.AddBranch(d.AddHiveNode("H"), "x"), "y"); },
     "{${a(v:S=1 w:D=2){b(v:H=3)} c d{b(x:S=4)}} H{x{y}}}", "$/a"},
    {"values go on where others came between", "",
     [](RegDocument& d) {
       d.AddValueRecord(NodeAt(d, "$/a"), RegType::String, "y", "5");
       d.AddValueRecord(NodeAt(d, "$/c"), RegType::Hex, "z", "6");
       d.AddValueRecord(NodeAt(d, "$/a"), RegType::Dword, "", "7");
       d.SetValueData(0, "8");
     },
     "{${a(v:S=8 w:D=2 y:S=5 :D=7){b(v:H=3)} c(z:H=6) d{b(x:S=4)}}}", ""},
    {"a deleted value stays as an empty one, and can get data", "",
     [](RegDocument& d) { d.DeleteValue(0), d.DeleteValue(2), d.SetValueData(2, "n"); },
     "{${a(:-=! w:D=2){b(:-=n!)} c d{b(x:S=4)}}}", ""},
    {"two siblings of one path show the values of both", "", [](RegDocument& d) { d.SetText(NodeAt(d, "$/d"), "a"); },
     "{${a(v:S=1 w:D=2){b(v:H=3 x:S=4)} c a(v:S=1 w:D=2){b(v:H=3 x:S=4)}}}", ""},
    {"so does a text with a backslash", "",
     [](RegDocument& d) { d.AddValueRecord(d.AddBranch(NodeAt(d, "$"), "a\\b"), RegType::String, "q", ""); },
     "{${a(v:S=1 w:D=2){b(v:H=3 q:S=)} c d{b(x:S=4)} a/b(v:H=3 q:S=)}}", ""},
    {"a renamed key is found by its new text only", "$/c",
     [](RegDocument& d) {
       for (int i = 0; i < 20; ++i) d.AddBranch(NodeAt(d, "$/c"), std::to_string(i));
       const RegNode* c = NodeAt(d, "$/c");
       d.SetText(d.FindChild(c, "7"), "new");
       EXPECT_EQ(d.FindChild(c, "7"), nullptr);
       EXPECT_EQ(d.FindChild(c, "new"), c->Child(7));
       EXPECT_EQ(d.AddBranch(NodeAt(d, "$/c"), "new")->Row(), 20);
       EXPECT_EQ(d.FindChild(c, "new"), c->Child(7));
       d.RemoveKey(c->Child(7));
       EXPECT_EQ(d.FindChild(c, "new"), c->Child(19));
       while (c->ChildCount() > 0) d.RemoveKey(c->Child(0));
     },
     "{${a(v:S=1 w:D=2){b(v:H=3)} c d{b(x:S=4)}}}", "$/c"},
    {"removing selects the next", "$/a", [](RegDocument& d) { d.RemoveKey(NodeAt(d, "$/a")); }, "{${c d{b(x:S=4)}}}",
     "$/c", 1},
    {"below the removed one too, else the previous", "$/d/b", [](RegDocument& d) { d.RemoveKey(NodeAt(d, "$/d")); },
     "{${a(v:S=1 w:D=2){b(v:H=3)} c}}", "$/c", 1},
    {"else the parent", "$/a/b", [](RegDocument& d) { d.RemoveKey(NodeAt(d, "$/a/b")); },
     "{${a(v:S=1 w:D=2) c d{b(x:S=4)}}}", "$/a", 1},
    {"not when it stays; never the root", "$/c",
     [](RegDocument& d) { d.RemoveKey(NodeAt(d, "$/a/b")), d.RemoveKey(d.Root()); },
     "{${a(v:S=1 w:D=2) c d{b(x:S=4)}}}", "$/c"},
    {"reset", "$/c", [](RegDocument& d) { d.Reset(d.Root()->Text()); }, "", ""},
};
// clang-format on

TEST(RegDocument, Edits) {
  for (const EditCase& test : kEdits) {
    SCOPED_TRACE(test.name);
    RegDocument document("Title");
    ReadReg(document, "REGEDIT4|[$/a]|'v'='1'|'w'=dword:2|[$/a/b]|'v'=hex:3|[$/c]|[$/d/b]|'x'='4'||");
    RegMirror mirror(document);
    document.Select(NodeAt(document, test.selected));
    const std::uint64_t revision = document.Revision();
    test.edit(document);
    EXPECT_EQ(Dump(document), Reg(test.expected));
    EXPECT_EQ(document.Selected()->KeyPath(), Reg(test.expected_selected));
    EXPECT_EQ(mirror.selection_moves, test.selection_moves);
    EXPECT_GT(document.Revision(), revision);
    EXPECT_EQ(document.Root()->Text(), "Title");
    mirror.Check();
  }
}

TEST(RegDocument, CountsByTheLastComponent) {
  RegDocument document("title");
  ReadReg(document,
          "REGEDIT4|[$]|'r'=''|[$/x/s]|'1'=''|[$/y/s]|'2'=''|[$/z/s]|"
          "[$/]|'h'=''|[$/title]|'t'=''|[$/q]|'q'=''||");
  const RegNode* empty = NodeAt(document, "$/z/s");
  EXPECT_EQ(document.KeysSharingAName(), 3U) << "the one without values gets them too";
  EXPECT_TRUE(document.SharesItsName(NodeAt(document, "$/x/s")) && document.SharesItsName(empty));
  EXPECT_FALSE(document.SharesItsName(NodeAt(document, "$/q")) || document.SharesItsName(NodeAt(document, "$/title")));
  EXPECT_TRUE(document.HasValueNamed(empty, "2") && document.ValuesOfPath(empty).empty());
  EXPECT_FALSE(document.HasValueNamed(empty, "q"));
  document.RemoveKey(NodeAt(document, "$/y"));
  document.DeleteValue(1);
  EXPECT_TRUE(document.HasValueNamed(empty, "2") && document.HasValueNamed(empty, ""));
  EXPECT_FALSE(document.HasValueNamed(empty, "1"));
  EXPECT_EQ(document.KeysSharingAName(), 2U) << "the values of the removed key count";
}

}  // namespace
}  // namespace tme
