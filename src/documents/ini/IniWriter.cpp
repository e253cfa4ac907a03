#include "documents/ini/IniWriter.h"

#include <string_view>
#include <unordered_set>

#include "documents/ini/IniLine.h"
#include "documents/ini/IniTree.h"

namespace tme {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// Returns enough bytes for every line of the node and of what is below it.
std::size_t TextSize(const IniNode& node) {
  std::size_t size = node.Text().size() + 3 * kLineEnd.size();
  for (int row = 0; row < node.ChildCount(); ++row) size += TextSize(*node.Child(row));
  return size;
}

void AppendLine(std::string& out, std::string_view line) { out.append(line).append(kLineEnd); }

void AppendSection(std::string& out, const IniNode& section) {
  out.append("[").append(section.Text()).append("]").append(kLineEnd);
  for (int row = 0; row < section.ChildCount(); ++row) AppendLine(out, section.Child(row)->Text());
}

void AppendSections(std::string& out, const IniNode& root) {
  for (int row = 0; row < root.ChildCount(); ++row) {
    const IniNode& child = *root.Child(row);
    if (child.Tag() != IniTag::Section) continue;
    AppendSection(out, child);
    out.append(kLineEnd);
  }
}

}  // namespace

std::string WriteIni(const IniTree& tree) {
  const IniNode& root = *tree.Root();
  std::string out;
  out.reserve(TextSize(root));
  for (int row = 0; row < root.ChildCount(); ++row) {
    if (root.Child(row)->Tag() == IniTag::Comments) AppendLine(out, root.Child(row)->Text());
  }
  AppendSections(out, root);
  return out;
}

bool WriteIni(const IniTree& tree, const PartSink& sink) {
  return tree.Holding() == Holding::Whole ? tree.WriteSource(sink) : sink(WriteIni(tree));
}

IniReadBack ReadBackOf(const IniTree& tree) {
  IniReadBack back;
  if (tree.Holding() == Holding::Whole) return back;
  const IniNode& root = *tree.Root();
  std::uint64_t line = 0;
  std::unordered_set<std::string_view> names;
  for (int row = 0; row < root.ChildCount() && back.ends_at_line == 0; ++row) {
    const IniNode& comment = *root.Child(row);
    if (comment.Tag() != IniTag::Comments) continue;
    ++line;
    const IniLine kind = KindOf(comment.Text());
    if (kind == IniLine::Header)
      ++back.headers;
    else if (back.headers == 0 && (line > 1 || kind != IniLine::Comment))
      back.ends_at_line = line;
  }
  if (back.ends_at_line > 0) return back;
  for (int row = 0; row < root.ChildCount(); ++row) {
    const IniNode& section = *root.Child(row);
    if (section.Tag() != IniTag::Section) continue;
    if (!names.insert(section.Text()).second) ++back.doubles;
    for (int entry = 0; entry < section.ChildCount(); ++entry) {
      const IniNode& node = *section.Child(entry);
      const IniLine kind = KindOf(node.Text());
      if (kind == IniLine::Blank)
        ++back.blank_entries;
      else if (kind == IniLine::Header)
        ++back.headers;
      else if ((kind == IniLine::Comment) != (node.Tag() == IniTag::Comments))
        ++back.other_kinds;
    }
  }
  return back;
}

std::string ClipboardText(const IniTree& tree, const IniNode& node) {
  if (tree.Holding() == Holding::Whole) return tree.SourceOf(node);
  std::string out;
  switch (node.Tag()) {
    case IniTag::OpenedFile:
      out.reserve(TextSize(node));
      AppendSections(out, node);
      break;
    case IniTag::Section:
      AppendSection(out, node);
      break;
    case IniTag::Value:
      out = node.Text();
      break;
    case IniTag::Comments:
      break;
  }
  return out;
}

}  // namespace tme
