#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "IniTreeProbe.h"
#include "WrittenChangeProbe.h"
#include "documents/ini/IniWriter.h"
#include "documents/ini/IniWrittenLines.h"

namespace tme {
namespace {

using T = IniTree&;

TEST(IniUndo, AStepIsWhatTheUserDid) {
  IniTree tree;
  ReadInto(tree, "[b]\nx\n[a]\n");
  EXPECT_FALSE(tree.CanUndo()) << "reading a file is no edit";
  const struct {
    EditName name;
    std::function<void()> edit;
  } steps[] = {
      {EditName::Paste, [&] { ReadInto(tree, "[a]\n;1\n[c]\n2\n[b]\n"); }},
      {EditName::AddSection, [&] { tree.AddSection("d"); }},
      {EditName::Rename, [&] { tree.SetText(FindNode(tree, "d"), "0"); }},
      {EditName::AddToAllSections, [&] { tree.AddEntryToAllSections("k", "v"); }},
      {EditName::Edit, [&] { tree.SetEntry(FindNode(tree, "k=v"), ";k", "w"); }},
      {EditName::Cut,
       [&] {
         const IniTree::Step step(tree, EditName::Cut);
         tree.Remove(FindNode(tree, "2"));
         tree.Remove(FindNode(tree, "c"));
       }},
      {EditName::DeleteFromAllSections,
       [&] {
         tree.Select(FindNode(tree, "k=v"));
         tree.RemoveSelectedKey();
       }},
      {EditName::DeleteSection, [&] { tree.Remove(FindNode(tree, "a")); }},
      {EditName::Delete, [&] { tree.Clear(); }},
  };
  std::vector<IniState> states;
  for (const auto& step : steps) {
    states.emplace_back(tree);
    step.edit();
    EXPECT_EQ(tree.EditPosition(), states.size());
    EXPECT_EQ(tree.UndoName(), step.name);
  }
  tree.SetText(tree.Root(), "the file's name");
  tree.Clear();
  EXPECT_EQ(tree.EditPosition(), states.size()) << "no edits";
  for (std::size_t at = states.size(); at-- > 0;) {
    tree.Undo();
    EXPECT_EQ(Dump(tree), states[at].dump);
  }
  tree.Redo();
  tree.Reset("other");
  EXPECT_FALSE(tree.CanUndo() || tree.CanRedo());
  {
    const IniTree::Step step(tree, EditName::Paste);
    ReadInto(tree, "[a]\n");
  }
  EXPECT_TRUE(tree.CanUndo()) << "a paste into an empty document";
  tree.Undo();
  EXPECT_EQ(Dump(tree), "");
}

TEST(IniUndo, AReadThatOnlyPutsSectionsInOrderIsAStep) {
  IniTree tree;
  ReadInto(tree, "[a]\n[b]\n");
  tree.SetText(FindNode(tree, "a"), "z");
  tree.Select(nullptr);
  ReadIni(tree, "[b]\n", {[](std::string_view) { return false; }});
  EXPECT_EQ(Dump(tree), "[b][z]");
  tree.Undo();
  EXPECT_EQ(Dump(tree), "[z][b]");
}

/// Edits a tree at random, with undo and redo between, and each state comes back.
class RandomSteps {
 public:
  RandomSteps(Holding holding, unsigned seed) : random_(seed), holding_(holding) {
    tree_.Reset("f", holding);
    if (holding == Holding::Whole) ReadWholeIni(tree_, Lines(30));
    if (holding == Holding::ByRules) ReadInto(tree_, "[s1]\nk1\n[s0]\n" + Lines(20));
    states_.emplace_back(tree_);
  }

  void Run(int count) {
    IniMirror mirror(tree_);
    WrittenText written(tree_.Revision(), WriteIni(tree_));
    for (int at = 0; at < count && !testing::Test::HasFailure(); ++at) {
      if (Below(3) == 0) {
        const std::size_t position = tree_.EditPosition();
        Go(Below(20) == 0 ? Below(states_.size()) : position - std::min(position, Below(3)));
      } else {
        states_.erase(states_.begin() + static_cast<std::ptrdiff_t>(tree_.EditPosition() + 1), states_.end());
        IniNode* selected = tree_.Selected();
        const IniTree::Step step(tree_, EditName::Edit);
        for (std::size_t calls = 1 + Below(2); calls > 0; --calls) Edit();
        const bool has_edited = tree_.Revision() != states_.back().revision;
        tree_.Select(has_edited ? AnyNode() : selected);
      }
      if (tree_.EditPosition() == states_.size()) states_.emplace_back(tree_);
      mirror.Check();
      ASSERT_EQ(IniState(tree_), states_[tree_.EditPosition()]);
      if (holding_ == Holding::ByRules) {
        const auto change = WrittenChangeSince(tree_, written.Revision());
        written.Follow(change ? std::vector{*change} : std::vector<WrittenChange>(), tree_.Revision(), WriteIni(tree_));
      }
      if (holding_ == Holding::Whole && Below(4) == 0) Rearrange();
    }
    largest = std::max(largest, states_.size());
    followed = written.Followed();
  }

  std::size_t largest = 0, followed = 0;

 private:
  std::size_t Below(std::size_t count) { return random_() % count; }
  std::string AnyText() {
    return (Below(5) == 0 ? ";k" : "k") + std::to_string(Below(9)) + (Below(2) == 0 ? "=v" : "");
  }
  std::string Lines(std::size_t most) {
    std::string lines;
    for (std::size_t count = Below(most); count > 0; --count)
      lines += (Below(4) == 0 ? "[s" + std::to_string(Below(9)) + "]" : Below(6) == 0 ? "" : AnyText()) + "\n";
    return lines;
  }
  IniNode* AnyNode() {
    IniNode* node = tree_.Root();
    while (node->ChildCount() > 0 && Below(4) != 0)
      node = node->Child(static_cast<int>(Below(static_cast<std::size_t>(node->ChildCount()))));
    return node;
  }

  void Edit() {
    IniNode* node = AnyNode();
    const bool on_line = node->Tag() == IniTag::Value || node->Tag() == IniTag::Comments;
    IniNode* parent = on_line ? node->Parent() : node;
    const bool takes_entries = holding_ == Holding::Whole || parent != tree_.Root();
    switch (Below(10)) {
      case 0:
        tree_.AddSection("s" + std::to_string(Below(99)));
        return;
      case 1:
        tree_.AddEntryToAllSections(AnyText(), "v");
        return;
      case 2:
        if (Below(4) == 0) tree_.RemoveSelectedKey();
        return;
      case 3:
        if (on_line) tree_.SetEntry(node, AnyText(), "w");
        return;
      case 4:
        tree_.RemoveWithComments(node);
        return;
      case 5:
        tree_.Remove(node);
        return;
      case 6:
        if (holding_ == Holding::Whole)
          tree_.Paste(Lines(6));
        else
          ReadInto(tree_, "[s" + std::to_string(Below(9)) + "]\n" + Lines(6));
        return;
      case 7:
        if (Below(8) == 0) tree_.Clear();
        if (Below(2) == 0 && holding_ == Holding::Whole)
          tree_.SetLineEnds(Below(2) == 0 ? LineEnds::Lf : LineEnds::CrLf);
        return;
      case 8:
        if (takes_entries) tree_.AddEntry(parent, AnyText(), "v");
        return;
      default:
        if (node != tree_.Root()) tree_.SetText(node, AnyText());
    }
  }

  void Go(std::size_t position) {
    while (tree_.EditPosition() > position) tree_.Undo();
    while (tree_.EditPosition() < position) tree_.Redo();
  }

  /// Nodes stand elsewhere then, but the file and the selection come back all the same.
  void Rearrange() {
    const std::size_t position = tree_.EditPosition();
    tree_.Arrange(IniArrangement::ByName);
    Go(Below(states_.size()));
    EXPECT_EQ(WholeText(tree_), states_[tree_.EditPosition()].text);
    Go(position);
    tree_.Arrange(IniArrangement::AsInFile);
    EXPECT_EQ(IniState(tree_), states_[position]);
  }

  std::mt19937 random_;
  Holding holding_;
  IniTree tree_;
  /// By position.
  std::vector<IniState> states_;
};

TEST(IniUndo, AnyEditsComeBackInBothHoldings) {
  std::size_t largest = 0, followed = 0;
  for (unsigned seed = 0; seed < 40 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    RandomSteps steps(seed % 2 == 0 ? Holding::Whole : Holding::ByRules, seed);
    steps.Run(150);
    largest = std::max(largest, steps.largest);
    followed += steps.followed;
  }
  EXPECT_GT(followed, 500U);
  EXPECT_GT(largest, 20U) << "too little to be a test";
}

TEST(IniUndo, LinesComeInThePlaceOfABlankLastLineThatSaysNothing) {
  IniTree tree;
  ReadWhole(tree, "[b]\na");
  tree.Select(FindNode(tree, "b"));
  tree.Paste("\r");
  const SourceLines& lines = tree.Lines();
  ASSERT_EQ(lines.Text(lines.Last()), "");
  tree.ReplaceLines(lines.Last(), lines.Last(), "c");
  tree.ReplaceLines(lines.Next(lines.First()), lines.Next(lines.First()), "q");
  IniTree again;
  ReadWhole(again, WholeText(tree));
  EXPECT_EQ(Dump(tree), Dump(again)) << WholeText(tree);
}

TEST(IniUndo, LinesComeInThePlaceOfOthersAsIfTheFileWereReadAgain) {
  std::mt19937 random(7);
  const auto below = [&random](std::size_t count) { return random() % count; };
  const char* const lines[] = {"[a]", "[b", ";c", "k=v", " x", "", "", "\t"};
  const char* const ends[] = {"\r\n", "\n", "\r", "\r\n", "\n"};
  const auto any_lines = [&](std::size_t most) {
    std::string text;
    for (std::size_t count = below(most); count > 0; --count)
      text.append(lines[below(std::size(lines))]).append(ends[below(std::size(ends))]);
    return below(4) == 0 ? text + lines[below(std::size(lines))] : text;
  };
  std::size_t kept = 0;
  for (int file = 0; file < 200 && !testing::Test::HasFailure(); ++file) {
    IniTree tree;
    ReadWhole(tree, any_lines(20));
    IniMirror mirror(tree);
    std::vector<std::string> texts{WholeText(tree)};
    for (int edit = 0; edit < 20 && !testing::Test::HasFailure(); ++edit) {
      const SourceLines& source = tree.Lines();
      std::vector<SourceLines::Piece> pieces;
      for (auto at = source.First(); at != SourceLines::kEnds; at = source.Next(at)) pieces.push_back(at);
      const std::size_t first = below(pieces.size() + 1),
                        count = below(std::min<std::size_t>(5, pieces.size() - first + 1));
      std::string before, behind, text = any_lines(5);
      for (std::size_t at = 0; at < pieces.size(); ++at) {
        if (count == 0 || at >= first + count) behind += source.Text(pieces[at]);
        if (count > 0 && at < first) before += source.Text(pieces[at]);
        if (below(2) == 0 && at >= first && at < first + count) text += source.Text(pieces[at]);
      }
      SCOPED_TRACE(testing::Message() << testing::PrintToString(before) << testing::PrintToString(text)
                                      << testing::PrintToString(behind));
      const std::string now = std::string(before).append(text).append(behind);
      if (below(3) == 0) tree.Arrange(IniArrangement::ByName);
      const IniNode* top = tree.Root()->ChildCount() > 0 ? tree.Root()->Child(0) : nullptr;
      if (count == 0)
        tree.ReplaceLines(SourceLines::kEnds, SourceLines::kEnds, text);
      else
        tree.ReplaceLines(pieces[first], pieces[first + count - 1], text);
      mirror.Check();
      if (WholeText(tree) != texts.back()) texts.push_back(now);
      kept += top != nullptr && tree.Root()->ChildCount() > 0 && tree.Root()->Child(0) == top ? 1 : 0;
      EXPECT_EQ(WholeText(tree), now);
      tree.Arrange(IniArrangement::AsInFile);
      IniTree again;
      ReadWhole(again, now);
      EXPECT_EQ(Dump(tree), Dump(again));
      EXPECT_EQ(tree.NodeCount(), again.NodeCount());
      EXPECT_EQ(tree.SectionCount(), again.SectionCount());
      EXPECT_EQ(tree.EditPosition(), texts.size() - 1);
    }
    for (std::size_t at = texts.size(); at-- > 0; tree.Undo(), mirror.Check()) EXPECT_EQ(WholeText(tree), texts[at]);
    while (tree.CanRedo()) tree.Redo(), mirror.Check();
    EXPECT_EQ(WholeText(tree), texts.back());
    tree.Arrange(IniArrangement::ByName);
    EXPECT_TRUE(tree.Selected() == tree.Root() || FindNode(tree, tree.Selected()->Text()) != tree.Root());
  }
  EXPECT_GT(kept, 100U) << "lines that stay keep their nodes";
}

}  // namespace
}  // namespace tme
