#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "RegProbe.h"
#include "documents/reg/RegValueConflict.h"
#include "documents/reg/RegWholeReader.h"

namespace tme {
namespace {

std::string LinesAndKeys(const RegDocument& document) {
  std::string text;
  document.Lines().Write([&text](std::string_view part) {
    text += part;
    return true;
  });
  WalkKeyPaths(*document.Root(), [&](const RegNode& node, std::string_view path) {
    text.append(path).append(DumpValues(document, node)).append("\n");
    return true;
  });
  return text + std::to_string(document.NodeCount());
}

TEST(RegMany, KeysThatGoTogetherLeaveWhatTheyLeaveOneByOne) {
  for (unsigned seed = 0; seed < 200 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::string text = "Windows Registry Editor Version 5.00||";
    for (int key = 0; key < 12; ++key) {
      text += random() % 3 == 0 ? ";c|" : "";
      text.append("[$/").append(1, static_cast<char>('a' + random() % 4)).append("/");
      text.append(1, static_cast<char>('a' + random() % 4)).append("]|'v'='1'|").append(random() % 2 == 0 ? "|" : "");
    }
    RegDocument together, one_by_one;
    for (RegDocument* document : {&together, &one_by_one}) {
      if (seed % 3 != 0) {
        ReadWholeReg(*document, Reg(text));
        document->ShowComments(seed % 2 == 0 ? RegComments::Shown : RegComments::Hidden);
      } else {
        ReadReg(*document, Reg("REGEDIT4" + text.substr(text.find('|'))), {});
      }
    }
    const std::string before = LinesAndKeys(together);
    std::vector<RegNode*> gone, same;
    const auto choose = [&](const auto& choose_below, RegNode* node, RegNode* other) -> void {
      for (int row = 0; row < node->ChildCount(); ++row) {
        if (random() % 3 == 0) {
          gone.push_back(node->Child(row));
          same.push_back(other->Child(row));
        } else {
          choose_below(choose_below, node->Child(row), other->Child(row));
        }
      }
    };
    choose(choose, together.Root(), one_by_one.Root());
    if (gone.empty()) continue;
    together.Select(gone[gone.size() / 2]);
    TreeMirror<RegDocument, RegNode, RegDocumentObserver> mirror(together);
    together.RemoveKeys(gone);
    mirror.Check();
    EXPECT_EQ(together.EditPosition(), 1U);
    for (RegNode* node : same) one_by_one.RemoveKey(node);
    EXPECT_EQ(LinesAndKeys(together), LinesAndKeys(one_by_one));
    const RegNode* selected = together.Selected();
    const bool is_in_tree = selected == together.Root() || (selected->Row() < selected->Parent()->ChildCount() &&
                                                            selected->Parent()->Child(selected->Row()) == selected);
    EXPECT_TRUE(is_in_tree);
    together.Undo();
    EXPECT_EQ(LinesAndKeys(together), before);
    EXPECT_EQ(together.Selected(), gone[gone.size() / 2]);
  }
}

TEST(RegMany, ByTheRulesMovedKeysTakeEachValueAlongOnce) {
  RegDocument document, other;
  ReadReg(document, "REGEDIT4|[$/a/k]|'v'='1'|'d'='0'|[$/a/k/s]|'w'='2'|[$/b]|'x'='3'|[$/c/k]|'y'='4'||");
  document.DeleteValue(1);
  RegMirror mirror(document);
  const std::string before = Dump(document);
  const std::vector<RegNode*> moved =
      document.MoveKeys({{NodeAt(document, "$/a/k"), NodeAt(document, "$/c")}}, NodeAt(document, "$/b"));
  mirror.Check();
  EXPECT_EQ(document.Selected(), moved.front());
  EXPECT_EQ(Dump(document), "{HKEY_USERS{a b(x:S=3){k(v:S=1 :-=!){s(w:S=2)} c{k(y:S=4)}}}}");
  std::string written = Written(document, RegLayout::Regular);
  std::erase(written, '\r');
  const std::string k = "'v'='1'|''=|'y'='4'||";
  EXPECT_EQ(written, Reg("REGEDIT4||[$/b]|'x'='3'||[$/b/k]|" + k + "[$/b/k/s]|'w'='2'||[$/b/c/k]|" + k));
  // What cannot come without being mixed with values of keys of its name.
  ReadReg(other, "REGEDIT4|[%/k]|'y'='9'|[%/m]|'n'='1'||");
  RegNode* const k_there[] = {NodeAt(other, "%/k")};
  RegNode* const m_there[] = {NodeAt(other, "%/m")};
  EXPECT_EQ(ValueInTheWay(document, other, k_there), "y");
  EXPECT_EQ(ValueInTheWay(document, other, m_there), std::nullopt);
  EXPECT_EQ(ValueInTheWay(document, *moved.front(), other, std::array<std::size_t, 1>{0}), "y");
  EXPECT_EQ(ValueInTheWay(document, *NodeAt(document, "$/b"), document, std::array<std::size_t, 2>{0, 1}),
            std::nullopt);
  document.CopyKeys(other, m_there, NodeAt(document, "$/a"));
  document.CopyValues(document, std::array<std::size_t, 2>{0, 1}, NodeAt(document, "$/b"));
  mirror.Check();
  EXPECT_EQ(Dump(document), "{HKEY_USERS{a{m(n:S=1)} b(x:S=3 v:S=1){k(v:S=1 :-=!){s(w:S=2)} c{k(y:S=4)}}}}");
  while (document.CanUndo() && document.EditPosition() > 1) document.Undo();
  mirror.Check();
  EXPECT_EQ(Dump(document), before);
}

}  // namespace
}  // namespace tme
