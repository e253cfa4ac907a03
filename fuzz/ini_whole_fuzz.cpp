// Input: a byte for how many edits, three bytes for each (which one, at which node, with which text), the text of a
// file.
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

constexpr unsigned kMostEdits = 16;
constexpr std::array<std::string_view, 12> kTexts = {
    "k", "; c", "#", "[x", "a]b", "\"q\"", "  v ", "", "a=b=c", "n=1\n\n;c", ";c\n[p]\nx", "[p] ; t\r[q\n\xFF"};

/// What the tree shows, as lines of tag and text; below a section they begin with a blank.
std::string Shown(const IniNode& node, int depth = 0) {
  std::string shown;
  for (int row = 0; row < node.ChildCount(); ++row) {
    const IniNode& child = *node.Child(row);
    Promise(child.Parent() == &node && child.Row() == row, "a child knows its place");
    shown.append(depth == 0 ? "" : " ").append(1, static_cast<char>('0' + static_cast<int>(child.Tag())));
    shown.append(child.Text()).append("\n").append(Shown(child, depth + 1));
  }
  return shown;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

std::string_view NameOf(std::string_view header) {
  std::size_t first = std::string_view::npos;
  for (std::size_t at = 1; at < header.size(); ++at) {
    if (header[at] != ']') continue;
    first = std::min(first, at);
    const std::string_view behind = Trimmed(header.substr(at + 1));
    if (behind.empty() || behind[0] == ';' || behind[0] == '#') return header.substr(1, at - 1);
  }
  return header.substr(1, first == std::string_view::npos ? first : first - 1);
}

/// The same by a second parser, as simple as can be.
std::string ShownOf(const std::string& file) {
  std::string shown, line;
  std::string_view indent;
  const auto add = [&] {
    const std::string_view text = Trimmed(line);
    if (text.empty()) return;
    if (text[0] == '[')
      shown.append("1").append(NameOf(text));
    else
      shown.append(indent).append(text[0] == ';' || text[0] == '#' ? "3" : "2").append(text);
    shown += '\n';
    if (text[0] == '[') indent = " ";
    line.clear();
  };
  for (const char character : file) {
    if (character == '\r' || character == '\n')
      add(), line.clear();
    else
      line += character;
  }
  add();
  return shown;
}

std::string Written(const IniTree& tree) {
  std::string text;
  const auto take = [&text](std::string_view part) { return text += part, true; };
  Promise(WriteIni(tree, take), "a sink that takes all gets all");
  return text;
}

/// One of the texts is the other with a run of bytes put in, or one run of bytes was exchanged; returns the size of
/// what was exchanged in the first.
std::size_t Exchanged(std::string_view before, std::string_view after) {
  const std::size_t most = std::min(before.size(), after.size());
  std::size_t start = 0, end = 0;
  while (start < most && before[start] == after[start]) ++start;
  while (end < most - start && before[before.size() - 1 - end] == after[after.size() - 1 - end]) ++end;
  return before.size() - start - end;
}

/// Does one edit and says how many bytes of the file it may exchange at most; nothing where it may touch several
/// places.
std::optional<std::size_t> Edit(IniTree& tree, unsigned kind, IniNode* node, std::string_view text) {
  const bool on_line = node->Tag() == IniTag::Value || node->Tag() == IniTag::Comments;
  IniNode* parent = on_line ? node->Parent() : node;
  const std::size_t own = tree.SourceOf(*node).size();
  switch (kind % 12) {
    case 0:
      tree.AddSection(text);
      return 0;
    case 1:
      tree.AddEntry(parent, text, "v");
      return 0;
    case 2:
      if (node != tree.Root()) tree.SetText(node, text);
      return own;
    case 3:
      if (on_line) tree.SetEntry(node, tree.KeyOf(*node), text);
      return own;
    case 4:
      if (on_line) tree.SetEntry(node, text, tree.ValueOf(*node));
      return own;
    case 5:
      tree.Remove(node);
      return own;
    case 6:
      tree.RemoveWithComments(node);
      return own;
    case 7:
      tree.RemoveSelectedKey();
      return {};
    case 8:
      tree.AddEntryToAllSections(text, "v");
      return {};
    case 9: {
      const std::string copy = tree.SourceOf(*NodeAt(tree, kind));
      tree.Paste(copy);
      return {};
    }
    case 10:
      tree.Arrange(kind > 128 ? IniArrangement::ByName : IniArrangement::AsInFile);
      return 0;
    default:
      tree.Paste(text);
      if (text.find('[') != std::string_view::npos) return {};
      return 0;
  }
}

void Run(std::string_view input) {
  const unsigned edits = TakeByte(input) % kMostEdits;
  const std::string_view script = input.substr(0, std::size_t{3} * edits);
  const std::string file(input.substr(script.size()));
  IniTree tree;
  tree.Reset("f", Holding::Whole);
  ReadWholeIni(tree, file);
  std::string before = Written(tree);
  Promise(before == file, "an untouched file is as it was");
  Promise(Shown(*tree.Root()) == ShownOf(file), "the tree shows what stands in the file");
  for (std::size_t at = 0; at + 2 < script.size(); at += 3) {
    const auto byte = [&](std::size_t offset) { return static_cast<std::uint8_t>(script[at + offset]); };
    IniNode* node = NodeAt(tree, byte(1));
    tree.Select(node);
    const std::optional<std::size_t> most = Edit(tree, byte(0), node, kTexts[byte(2) % kTexts.size()]);
    const std::string after = Written(tree);
    if (most) Promise(Exchanged(before, after) <= *most, "an edit leaves the bytes outside its lines alone");
    const IniArrangement arrangement = tree.Arrangement();
    tree.Arrange(IniArrangement::AsInFile);
    Promise(Shown(*tree.Root()) == ShownOf(after), "after an edit the tree shows what stands in the file");
    tree.Arrange(arrangement);
    before = after;
  }
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
