// Input: a byte for the holding and how many edits, four bytes for each (which one or undo or redo, at which node, with
// which text, which other node or piece), the text of a file.
#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "IniNodeAt.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniTree.h"
#include "documents/ini/IniWriter.h"

namespace tme::fuzz {
namespace {

constexpr unsigned kMostEdits = 64;
constexpr std::size_t kEditBytes = 4;
constexpr std::array<std::string_view, 12> kTexts = {"k",     "; c",       "",           "[x]\nk\n[y",
                                                     "a]b",   "\"q\"",     "  v ",       "\r",
                                                     "a=b=c", "n=1\n\n;c", ";c\n[p]\nx", "[p] ; t\r[q\n\xFF"};

/// All that comes back.
struct State {
  std::string text;
  std::string shown;
  const IniNode* selected;
  std::uint64_t revision;
  bool operator==(const State&) const = default;
};

void Show(const IniNode& node, std::string& shown) {
  for (int row = 0; row < node.ChildCount(); ++row) {
    const IniNode& child = *node.Child(row);
    Promise(child.Parent() == &node && child.Row() == row, "a child knows its place");
    shown.append(1, static_cast<char>('0' + static_cast<int>(child.Tag()))).append(child.Text()).append("{");
    Show(child, shown);
    shown += '}';
  }
}

State StateOf(const IniTree& tree) {
  State state{{}, {}, tree.Selected(), tree.Revision()};
  const auto take = [&state](std::string_view part) { return state.text += part, true; };
  Promise(WriteIni(tree, take), "a sink that takes all gets all");
  Show(*tree.Root(), state.shown);
  const auto nodes = static_cast<std::size_t>(std::ranges::count(state.shown, '{'));
  Promise(nodes + 1 >= tree.NodeCount(), "nodes are counted");
  return state;
}

SourceLines::Piece PieceAt(const IniTree& tree, std::size_t place) {
  SourceLines::Piece piece = tree.Lines().First();
  for (; place > 0 && piece != tree.Lines().Last(); --place) piece = tree.Lines().Next(piece);
  return piece;
}

/// Edits that both holdings know.
void Edit(IniTree& tree, unsigned kind, IniNode* node, std::string_view text) {
  const bool on_line = node->Tag() == IniTag::Value || node->Tag() == IniTag::Comments;
  IniNode* parent = on_line ? node->Parent() : node;
  switch (kind) {
    case 0:
      tree.AddSection(text);
      return;
    case 1:
      if (tree.Holding() == Holding::Whole || parent != tree.Root()) tree.AddEntry(parent, text, "v");
      return;
    case 2:
      if (node != tree.Root()) tree.SetText(node, text);
      return;
    case 3:
      if (on_line) tree.SetEntry(node, tree.KeyOf(*node), text);
      return;
    case 4:
      if (on_line) tree.SetEntry(node, text, tree.ValueOf(*node));
      return;
    case 5:
      tree.Remove(node);
      return;
    case 6:
      tree.RemoveWithComments(node);
      return;
    case 7:
      tree.RemoveSelectedKey();
      return;
    case 8:
      tree.AddEntryToAllSections(text, "v");
      return;
    default:
      tree.Clear();
  }
}

void EditOfHolding(IniTree& tree, unsigned kind, std::string_view text, std::size_t place) {
  if (tree.Holding() == Holding::ByRules) {
    ReadIni(tree, std::string(text), {[place](std::string_view) { return place % 2 == 0; }});
    return;
  }
  switch (kind % 4) {
    case 0:
      tree.Paste(text);
      return;
    case 1:
      tree.SetLineEnds(place % 2 == 0 ? LineEnds::Lf : LineEnds::CrLf);
      return;
    default: {
      const SourceLines::Piece first = PieceAt(tree, place);
      const bool goes_on = kind % 4 == 2 && first != tree.Lines().Last();
      tree.ReplaceLines(first, goes_on ? tree.Lines().Next(first) : first, text);
    }
  }
}

class Steps {
 public:
  Steps(Holding holding, const std::string& file) {
    tree_.Reset("f", holding);
    if (holding == Holding::Whole)
      ReadWholeIni(tree_, file);
    else
      ReadEveryIniLine(tree_, file);
    Promise(!tree_.CanUndo(), "reading a file is no step");
    states_.push_back(StateOf(tree_));
  }

  void Do(std::string_view script) {
    const auto byte = [script](std::size_t at) { return static_cast<std::uint8_t>(script[at]); };
    const unsigned kind = byte(0) % 16;
    if (kind >= 14) {
      kind == 14 ? tree_.Undo() : tree_.Redo();
    } else if (kind == 13) {
      tree_.Arrange(byte(1) % 2 == 0 ? IniArrangement::ByName : IniArrangement::AsInFile);
      // Where nodes stand is what the arrangement makes of it, so the texts are compared from now on.
      is_arranged_ = true;
    } else {
      // What is selected belongs to the step.
      const IniTree::Step step(tree_, EditName::Edit);
      IniNode* selected = tree_.Selected();
      const std::uint64_t revision = tree_.Revision();
      tree_.Select(NodeAt(tree_, byte(3)));
      const std::string_view text = kTexts[byte(2) % kTexts.size()];
      if (kind < 10)
        Edit(tree_, kind, NodeAt(tree_, byte(1)), text);
      else
        EditOfHolding(tree_, byte(0) / 16, text, byte(1));
      if (tree_.Revision() == revision) tree_.Select(selected);
    }
    const bool is_new = kind < 13 && tree_.EditPosition() > 0 && tree_.Revision() != states_[Kept()].revision;
    if (is_new) states_.resize(tree_.EditPosition());
    if (tree_.EditPosition() == states_.size()) states_.push_back(StateOf(tree_));
    Check();
  }

  void GoThrough() {
    while (tree_.CanUndo()) tree_.Undo();
    Check();
    while (tree_.CanRedo()) tree_.Redo();
    Check();
    Promise(tree_.EditPosition() + 1 == states_.size(), "all is redone");
  }

 private:
  std::size_t Kept() const { return std::min(tree_.EditPosition(), states_.size() - 1); }

  void Check() const {
    const State now = StateOf(tree_), &then = states_[tree_.EditPosition()];
    Promise(now.text == then.text, "the bytes of the position come back");
    Promise(now.selected == then.selected, "so does what was selected");
    Promise(now.revision == then.revision, "so does the revision");
    Promise(is_arranged_ || now.shown == then.shown, "so do all places");
    if (tree_.Holding() == Holding::ByRules) return;
    IniTree again;
    again.Reset("f", Holding::Whole);
    ReadWholeIni(again, now.text);
    Promise(again.NodeCount() == tree_.NodeCount() && again.SectionCount() == tree_.SectionCount(),
            "the tree has what its file has");
    Promise(tree_.Arrangement() == IniArrangement::ByName || StateOf(again).shown == now.shown,
            "the tree shows what its file shows");
  }

  IniTree tree_;
  std::vector<State> states_;
  bool is_arranged_ = false;
};

void Run(std::string_view input) {
  const unsigned first = TakeByte(input);
  const std::string_view script = input.substr(0, kEditBytes * ((first / 2) % kMostEdits));
  Steps steps(first % 2 == 0 ? Holding::Whole : Holding::ByRules, std::string(input.substr(script.size())));
  for (std::size_t at = 0; at + kEditBytes <= script.size(); at += kEditBytes) steps.Do(script.substr(at, kEditBytes));
  steps.GoThrough();
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
