#include "documents/ini/IniWriter.h"

#include <string_view>
#include <unordered_set>

#include "documents/ini/IniLine.h"
#include "documents/ini/IniTree.h"

namespace tme {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

bool PutLine(PartBuffer& out, std::string_view line) { return out.Append(line).Append(kLineEnd).EndPiece(); }

bool PutSection(PartBuffer& out, const IniNode& section) {
  bool going_on = PutLine(out.Append("[").Append(section.Text()), "]");
  for (int row = 0; row < section.ChildCount() && going_on; ++row) going_on = PutLine(out, section.Child(row)->Text());
  return going_on;
}

bool PutSections(PartBuffer& out, const IniNode& root, int row, int end) {
  bool going_on = true;
  for (; row < end && going_on; ++row)
    if (root.Child(row)->Tag() == IniTag::Section) going_on = PutSection(out, *root.Child(row)) && PutLine(out, {});
  return going_on;
}

bool PutAllSections(PartBuffer& out, const IniNode& root) { return PutSections(out, root, 0, root.ChildCount()); }

bool PutTree(PartBuffer& out, const IniNode& root) {
  bool going_on = true;
  for (int row = 0; row < root.ChildCount() && going_on; ++row)
    if (root.Child(row)->Tag() == IniTag::Comments) going_on = PutLine(out, root.Child(row)->Text());
  return going_on && PutAllSections(out, root);
}

template <typename Put>
std::string TextOf(Put put, const IniNode& node) {
  std::string text;
  const PartSink sink = [&text](std::string_view part) {
    text += part;
    return true;
  };
  PartBuffer out(sink);
  put(out, node);
  out.Flush();
  return text;
}

}  // namespace

std::string WriteIni(const IniTree& tree) { return TextOf(PutTree, *tree.Root()); }

std::string WriteIniSections(const IniTree& tree, int row, int end) {
  const auto put = [row, end](PartBuffer& out, const IniNode& root) { return PutSections(out, root, row, end); };
  return TextOf(put, *tree.Root());
}

bool WriteIni(const IniTree& tree, const PartSink& sink) {
  if (tree.Holding() == Holding::Whole) return tree.WriteSource(sink);
  PartBuffer out(sink);
  return PutTree(out, *tree.Root()) && out.Flush();
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
      out = TextOf(PutAllSections, node);
      break;
    case IniTag::Section:
      out = TextOf(PutSection, node);
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
