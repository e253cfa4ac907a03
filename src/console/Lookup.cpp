#include "console/Lookup.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/CaseFold.h"
#include "documents/ini/IniSourceLine.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegNames.h"

namespace tme::console {

std::vector<IniNode*> SectionsNamed(const IniTree& tree, std::string_view name) {
  IniNode* root = tree.Root();
  if (name.empty()) return {root};
  const std::string wanted = FoldedCase(TrimIniBlanks(name));
  std::vector<IniNode*> sections;
  for (int row = 0; row < root->ChildCount(); ++row) {
    IniNode* child = root->Child(row);
    if (child->Tag() == IniTag::Section && FoldedCase(TrimIniBlanks(child->Text())) == wanted)
      sections.push_back(child);
  }
  return sections;
}

std::vector<IniNode*> EntriesNamed(const IniTree& tree, const std::vector<IniNode*>& sections, std::string_view key) {
  const std::string wanted = FoldedCase(TrimIniBlanks(key));
  std::vector<IniNode*> entries;
  for (const IniNode* section : sections) {
    for (int row = 0; row < section->ChildCount(); ++row) {
      IniNode* child = section->Child(row);
      if (child->Tag() == IniTag::Value && FoldedCase(tree.KeyOf(*child)) == wanted) entries.push_back(child);
    }
  }
  return entries;
}

SourceLines::Piece ContinuationOf(const IniTree& tree, const IniNode& entry) {
  const SourceLines& lines = tree.Lines();
  const std::string_view first = lines.Text(tree.PieceOf(entry));
  SourceLines::Piece at = lines.Next(tree.PieceOf(entry));
  const auto is_between = [&lines](SourceLines::Piece piece) {
    const auto kind = static_cast<IniLine>(lines.Kind(piece));
    return kind == IniLine::Blank || kind == IniLine::Comment;
  };
  while (at != SourceLines::kEnds && is_between(at)) at = lines.Next(at);
  return at != SourceLines::kEnds && ContinuesEntry(lines.Text(at), first) ? at : SourceLines::kEnds;
}

std::string FullKeyPath(std::string_view path) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kShort{{{"HKCR", "HKEY_CLASSES_ROOT"},
                                                                                 {"HKCU", "HKEY_CURRENT_USER"},
                                                                                 {"HKLM", "HKEY_LOCAL_MACHINE"},
                                                                                 {"HKU", "HKEY_USERS"},
                                                                                 {"HKCC", "HKEY_CURRENT_CONFIG"}}};
  const std::string_view hive = path.substr(0, path.find('\\'));
  for (const auto& [name, whole] : kShort)
    if (SameRegName(hive, name)) return std::string(whole).append(path.substr(hive.size()));
  return std::string(path);
}

std::vector<std::string_view> PartsOfKeyPath(std::string_view path) {
  std::vector<std::string_view> parts;
  while (!path.empty()) {
    const std::string_view part = path.substr(0, path.find('\\'));
    if (!part.empty()) parts.push_back(part);
    path.remove_prefix(std::min(path.size(), part.size() + 1));
  }
  return parts;
}

RegNode* KeyOfPath(const RegDocument& document, std::string_view path) {
  RegNode* node = document.Root();
  for (const std::string_view part : PartsOfKeyPath(path)) {
    node = document.FindChild(node, part);
    if (node == nullptr) return nullptr;
  }
  return node == document.Root() ? nullptr : node;
}

SourceLines::Piece DeletionOf(const RegDocument& document, std::string_view path) {
  std::string wanted;
  for (const std::string_view part : PartsOfKeyPath(path)) wanted.append(part).append("\\");
  wanted = FoldedCase(wanted);
  SourceLines::Piece last = SourceLines::kEnds;
  document.ForEachBlock([&](const RegBlock& block) {
    if (block.node->Tag() == RegTag::Deletion && wanted.starts_with(FoldedCase(block.node->KeyPath() + "\\")))
      last = block.header;
  });
  return last;
}

bool StandsBehind(const RegDocument& document, const RegNode& key, SourceLines::Piece deletion) {
  if (deletion == SourceLines::kEnds) return true;
  return !WalkKeys(key, [&](const RegNode& node) {
    return node.Tag() == RegTag::Deletion || document.PieceOf(&node) == SourceLines::kEnds ||
           document.PieceOf(&node) < deletion;
  });
}

std::string_view ValueNameOf(std::string_view argument) { return argument == "@" ? std::string_view() : argument; }

std::vector<std::size_t> ValuesNamed(const RegDocument& document, const RegNode* key, std::string_view name) {
  std::vector<std::size_t> records = document.ValuesOfPath(key);
  std::erase_if(records, [&](std::size_t record) { return !SameRegName(document.Values()[record].name, name); });
  return records;
}

}  // namespace tme::console
