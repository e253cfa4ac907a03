#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "IniTreeProbe.h"

namespace tme {
namespace {

/// The nth node in the order of the file; behind the last one the root.
IniNode* NodeInFile(const IniTree& tree, std::size_t node) {
  for (int row = 0; row < tree.Root()->ChildCount(); ++row) {
    IniNode* child = tree.Root()->Child(row);
    const auto entries = static_cast<std::size_t>(child->ChildCount());
    if (node == 0) return child;
    if (node <= entries) return child->Child(static_cast<int>(node) - 1);
    node -= entries + 1;
  }
  return tree.Root();
}

/// The same edits on nothing but lines. Each ends in CR LF, and entries are written "k=v".
class IniLinesModel {
 public:
  explicit IniLinesModel(std::vector<std::string> lines) : lines_(std::move(lines)) {}

  char Kind(std::size_t line) const { return lines_[line].empty() ? ' ' : lines_[line][0]; }
  /// The line of the nth line that has a node; what is behind the last one is the root.
  std::size_t LineOfNode(std::size_t node) const {
    std::size_t line = 0;
    for (; line < lines_.size(); ++line)
      if (Kind(line) != ' ' && node-- == 0) break;
    return line;
  }
  /// The header at or above a line; the number of lines for the root.
  std::size_t Owner(std::size_t line) const {
    if (line == lines_.size()) return line;
    while (Kind(line) != '[')
      if (line-- == 0) return lines_.size();
    return line;
  }
  void Set(std::size_t line, const std::string& text) { lines_[line] = text; }
  void AddEntry(std::size_t owner, const std::string& text) { Insert(LastLine(NextHeader(owner)), {text}); }
  void AddToAll(const std::string& text) {
    for (std::size_t line = lines_.size(); line-- > 0;)
      if (Kind(line) == '[') AddEntry(line, text);
  }
  void AddSection(const std::string& name) {
    const bool apart = Apart();
    if (apart && !lines_.empty() && Kind(lines_.size() - 1) != ' ') lines_.emplace_back();
    lines_.push_back("[" + name + "]");
  }
  void Remove(std::size_t line, bool with_comments) {
    const std::size_t first = with_comments && Kind(line) != ';' ? Block(line) : line;
    std::size_t behind = line + 1;
    if (Kind(line) == '[') {
      const std::size_t next = NextHeader(line);
      behind = first > 0 && Kind(first - 1) != ' ' ? LastLine(next) : Block(next);
    }
    lines_.erase(At(first), At(behind));
  }
  void RemoveKey(const std::string& key) {
    std::erase_if(lines_, [&](const std::string& line) {
      return !line.empty() && line[0] != '[' && line[0] != ';' && line.substr(0, line.find('=')) == key;
    });
  }
  /// owner: a header; the number of lines for the root.
  void Paste(std::size_t owner, const std::vector<std::string>& entries, const std::vector<std::string>& section) {
    const std::size_t next = NextHeader(owner);
    const bool at_end = owner == lines_.size();
    std::size_t end = at_end ? lines_.size() : Block(next);
    const bool has_next = !at_end && next < lines_.size();
    Insert(LastLine(next), entries);
    end += entries.size();
    if (section.empty()) return;
    const bool apart = Apart();
    if (apart && has_next) Insert(end, {""});
    Insert(end, section);
    if (apart && end > 0 && Kind(end - 1) != ' ') Insert(end, {""});
  }
  std::string Text() const {
    std::string text;
    for (const std::string& line : lines_) text += line + "\r\n";
    return text;
  }

 private:
  std::vector<std::string>::iterator At(std::size_t line) { return lines_.begin() + static_cast<std::ptrdiff_t>(line); }
  void Insert(std::size_t line, const std::vector<std::string>& lines) {
    lines_.insert(At(line), lines.begin(), lines.end());
  }
  /// Behind a header, or the first one.
  std::size_t NextHeader(std::size_t owner) const {
    std::size_t line = owner == lines_.size() ? 0 : owner + 1;
    while (line < lines_.size() && Kind(line) != '[') ++line;
    return line;
  }
  /// Where the comments begin that touch a line.
  std::size_t Block(std::size_t line) const {
    while (line < lines_.size() && line > 0 && Kind(line - 1) == ';') --line;
    return line;
  }
  /// Behind the last line before a header.
  std::size_t LastLine(std::size_t header) const {
    std::size_t line = Block(header);
    while (line > 0 && Kind(line - 1) == ' ') --line;
    return line;
  }
  bool Apart() const {
    for (std::size_t line = lines_.size(); line-- > 0;)
      if (Kind(line) == '[') return Block(line) == 0 || Kind(Block(line) - 1) == ' ';
    return true;
  }

  std::vector<std::string> lines_;
};

TEST(IniWhole, EditsDoToTheTreeWhatTheyDoToLines) {
  std::mt19937 random(3);
  const auto below = [&](std::size_t count) { return random() % count; };
  const auto any_entry = [&] { return (below(4) == 0 ? ";k" : "k") + std::to_string(below(5)) + "=v"; };
  const auto any_line = [&] {
    switch (below(4)) {
      case 0:
        return std::string();
      case 1:
        return "[s" + std::to_string(below(9)) + "]";
      default:
        return any_entry();
    }
  };
  const auto join = [](const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    return text;
  };
  for (int file = 0; file < 60 && !testing::Test::HasFailure(); ++file) {
    std::vector<std::string> lines(below(30));
    std::ranges::generate(lines, any_line);
    IniLinesModel model(lines);
    IniTree tree;
    ReadWhole(tree, join(lines));
    IniMirror mirror(tree);
    std::vector<std::string> texts{WholeText(tree)};
    for (int edit = 0; edit < 60 && !testing::Test::HasFailure(); ++edit) {
      tree.Arrange(IniArrangement::AsInFile);
      const std::size_t place = below(tree.NodeCount());
      const std::size_t line = model.LineOfNode(place), owner = model.Owner(line);
      IniNode* node = NodeInFile(tree, place);
      tree.Select(node);
      if (below(3) == 0) tree.Arrange(IniArrangement::ByName);
      const bool on_root = node == tree.Root(), on_section = node->Tag() == IniTag::Section;
      std::string text = any_entry();
      const std::size_t kind = below(on_root ? 4 : 8);
      SCOPED_TRACE(model.Text() + "edit " + std::to_string(kind) + " at line " + std::to_string(line));
      switch (kind) {
        case 0: {
          std::vector<std::string> entries(below(3)), section(below(3));
          std::ranges::generate(entries, any_entry);
          std::ranges::generate(section, any_entry);
          if (!section.empty()) section[0] = "[new]";
          if (!section.empty() && !entries.empty()) entries.back() = "k";  // no comments of the section
          tree.Paste(join(entries) + join(section));
          model.Paste(owner, entries, section);
          break;
        }
        case 1:
          tree.AddSection(text);
          model.AddSection(text);
          break;
        case 2:
          tree.AddEntryToAllSections(text.substr(0, text.find('=')), "v");
          model.AddToAll(text);
          break;
        case 3:
          tree.AddEntry(on_root || on_section ? node : node->Parent(), text.substr(0, text.find('=')), "v");
          model.AddEntry(owner, text);
          break;
        case 4:
          tree.SetText(node, text);
          model.Set(line, on_section ? "[" + text + "]" : text);
          break;
        case 5:
          tree.Remove(node);
          model.Remove(line, false);
          break;
        case 6:
          tree.RemoveWithComments(node);
          model.Remove(line, true);
          break;
        default:
          text = tree.KeyOf(*node);
          if (node->Tag() == IniTag::Value) model.RemoveKey(text);
          tree.RemoveSelectedKey();
      }
      ASSERT_EQ(WholeText(tree), model.Text());
      mirror.Check();
      tree.Arrange(IniArrangement::AsInFile);
      IniTree again;
      ReadWhole(again, model.Text());
      ASSERT_EQ(Dump(tree), Dump(again));
    }
  }
}

}  // namespace
}  // namespace tme
