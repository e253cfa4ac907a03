// Input: a byte whose bits answer the questions, a byte that chooses a node, the text of a file; and behind kPaste, a
// text that is pasted at that node.
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "base/LineReader.h"
#include "base/Utf8.h"
#include "documents/ini/IniOrder.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniTree.h"
#include "documents/ini/IniWriter.h"

namespace tme::fuzz {
namespace {

constexpr char kPaste = '\x1E';
constexpr int kWholeChecks = 8;

std::vector<IniNode*> ChildrenOf(const IniNode& node) {
  std::vector<IniNode*> children;
  for (int row = 0; row < node.ChildCount(); ++row) children.push_back(node.Child(row));
  return children;
}

/// Every node, parents first.
std::vector<IniNode*> NodesOf(const IniTree& tree) {
  std::vector<IniNode*> nodes = {tree.Root()};
  for (std::size_t at = 0; at < nodes.size(); ++at)
    for (IniNode* child : ChildrenOf(*nodes[at])) nodes.push_back(child);
  return nodes;
}

void CheckTree(const IniTree& tree) {
  const std::vector<IniNode*> nodes = NodesOf(tree);
  std::size_t sections = 0;
  for (const IniNode* node : nodes) {
    sections += node->Tag() == IniTag::Section ? 1 : 0;
    std::vector<IniNode*> children = ChildrenOf(*node);
    for (std::size_t row = 0; row < children.size(); ++row) {
      Promise(children[row]->Parent() == node, "a child knows its parent");
      Promise(children[row]->Row() == static_cast<int>(row), "a child knows its row");
    }
    Promise(!IniSorter().Sort(children), "children are in order");
  }
  Promise(nodes.size() == tree.NodeCount(), "nodes are counted");
  Promise(sections == tree.SectionCount(), "sections are counted");
}

void CheckCharacters(const IniTree& tree) {
  for (const IniNode* node : NodesOf(tree)) Promise(utf8::IsValid(node->Text()), "no character is cut in two");
}

void CheckCounts(const IniReadResult& result, std::string_view text) {
  std::uint64_t lines = 0;
  std::string_view line;
  for (LineReader all(text); all.Next(line);) ++lines;
  const bool cut_short = result.ended_at_line > 0;
  Promise(cut_short == (result.lines_not_read > 0), "lines that were not read have a first one");
  if (cut_short) Promise(result.ended_at_line + result.lines_not_read == lines + 1, "every line is accounted for");
}

bool SameBelow(const IniNode& left, const IniNode& right) {
  if (left.ChildCount() != right.ChildCount()) return false;
  for (int row = 0; row < left.ChildCount(); ++row) {
    const IniNode& one = *left.Child(row);
    const IniNode& other = *right.Child(row);
    if (one.Tag() != other.Tag() || one.Text() != other.Text() || !SameBelow(one, other)) return false;
  }
  return true;
}

void CheckWriteThenRead(const IniTree& tree) {
  const std::string written = WriteIni(tree);
  IniTree again;
  const auto never = [](std::string_view) {
    Promise(false, "a written file has no section twice");
    return false;
  };
  const IniReadResult result = ReadIni(again, written, {never});
  Promise(result.lines_not_read == 0 && result.blank_lines_dropped == 0, "of a written file nothing is left out");
  Promise(!result.sections_reordered && !result.entries_reordered, "a written file is in order");
  CheckTree(again);
  Promise(SameBelow(*tree.Root(), *again.Root()), "write, then read gives the same tree");
  Promise(WriteIni(again) == written, "write, read, write gives the same bytes");
}

void Run(std::string_view input) {
  unsigned answers = TakeByte(input);
  const std::size_t place = TakeByte(input);
  const std::size_t paste = input.find(kPaste);
  const std::string_view file = input.substr(0, paste);
  const bool valid = utf8::IsValid(input);

  IniTree tree;
  int questions = 0;
  const auto answer = [&](std::string_view name) {
    // A file of nothing but doubles asks hundreds of times; the whole tree each time would leave few runs in a second.
    if (questions++ < kWholeChecks) CheckTree(tree);
    Promise(!tree.IsUniqueSectionName(name), "only a section that is there is asked about");
    const bool yes = (answers & 1) != 0;
    answers = answers >> 1 | (answers & 1) << 7;
    return yes;
  };
  CheckCounts(ReadIni(tree, std::string(file), {answer}), file);
  CheckTree(tree);
  if (valid) CheckCharacters(tree);
  Promise(ReadBackOf(tree).IsSame(), "what a file says, a file can hold");
  CheckWriteThenRead(tree);
  if (paste == std::string_view::npos) return;

  const std::vector<IniNode*> nodes = NodesOf(tree);
  tree.Select(nodes[place % nodes.size()]);
  ReadIni(tree, std::string(input.substr(paste + 1)), {answer});
  CheckTree(tree);
  if (valid) CheckCharacters(tree);
  // A paste may make what no file says: a second comment above the sections, an entry that looks like a comment.
  if (ReadBackOf(tree).IsSame()) CheckWriteThenRead(tree);
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
