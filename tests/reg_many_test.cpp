#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "RegProbe.h"
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

}  // namespace
}  // namespace tme
