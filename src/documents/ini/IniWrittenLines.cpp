#include "documents/ini/IniWrittenLines.h"

#include "documents/ini/IniTree.h"

namespace tme {
namespace {

/// Visits what stands at the left edge of the tree in the order of the file: visit(node, first line, lines). True ends.
template <typename Visit>
void ForEachWritten(const IniTree& tree, Visit visit) {
  const IniNode& root = *tree.Root();
  std::uint64_t line = 0;
  for (const IniTag tag : {IniTag::Comments, IniTag::Section})
    for (int row = 0; row < root.ChildCount(); ++row) {
      IniNode* child = root.Child(row);
      if (child->Tag() != tag) continue;
      // The header, what is below it, and a blank line.
      const auto lines = tag == IniTag::Section ? static_cast<std::uint64_t>(child->ChildCount()) + 2 : 1U;
      if (visit(child, line, lines)) return;
      line += lines;
    }
}

}  // namespace

std::optional<std::uint64_t> WrittenLineOf(const IniTree& tree, const IniNode& node) {
  const bool is_below = node.Parent() != nullptr && node.Parent() != tree.Root();
  const IniNode* top = is_below ? node.Parent() : &node;
  std::optional<std::uint64_t> found;
  ForEachWritten(tree, [&](const IniNode* at, std::uint64_t line, std::uint64_t) {
    if (at != top) return false;
    found = line + (is_below ? static_cast<std::uint64_t>(node.Row()) + 1 : 0);
    return true;
  });
  return found;
}

IniNode* NodeAtWrittenLine(const IniTree& tree, std::uint64_t wanted) {
  IniNode* found = nullptr;
  ForEachWritten(tree, [&](IniNode* at, std::uint64_t line, std::uint64_t lines) {
    found = at;
    if (wanted >= line + lines) return false;
    const bool is_below = wanted > line && wanted < line + lines - 1;
    if (is_below) found = at->Child(static_cast<int>(wanted - line - 1));
    return true;
  });
  return found;
}

}  // namespace tme
