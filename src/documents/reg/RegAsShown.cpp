#include "documents/reg/RegAsShown.h"

#include <string>

#include "base/Lines.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

constexpr std::string_view kMarkedHeader = "REGEDIT4\r\n; every key as it was shown\r\n\r\n";
constexpr std::string_view kDwordMark = "dword:";
constexpr std::string_view kHexMark = "hex:";

void AppendValue(std::string& out, const RegValueRecord& record) {
  out.append("\"").append(record.name).append("\"=");
  if (record.type == RegType::Dword) out.append(kDwordMark).append(record.data);
  if (record.type == RegType::Hex) out.append(kHexMark).append(record.data);
  if (record.type == RegType::String) out.append("\"").append(record.data).append("\"");
  out.append(kRegLineEnd);
}

RegNode* FindOrAddKey(RegDocument& document, std::string_view path) {
  RegNode* node = document.Root();
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('\\'), path.size());
    const std::string_view text = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    RegNode* child = document.FindChild(node, text);
    if (child == nullptr) child = node == document.Root() ? document.AddHiveNode(text) : document.AddBranch(node, text);
    node = child;
  }
  return node;
}

/// A line that is no value has no place that divides name and data, and is passed over.
void AddValue(RegDocument& document, RegNode* key, std::string_view line) {
  for (std::size_t at = line.find("\"=", 1); at != std::string_view::npos; at = line.find("\"=", at + 1)) {
    const std::string_view name = line.substr(1, at - 1);
    std::string_view data = line.substr(at + 2);
    RegType type = RegType::None;
    if (data.starts_with(kDwordMark)) type = RegType::Dword;
    if (data.starts_with(kHexMark)) type = RegType::Hex;
    if (data.size() > 1 && data.front() == '"' && data.back() == '"') type = RegType::String;
    if (type == RegType::None) continue;
    data.remove_prefix(type == RegType::Dword ? kDwordMark.size() : type == RegType::Hex ? kHexMark.size() : 1);
    if (type == RegType::String) data.remove_suffix(1);
    document.AddValueRecord(key, type, name, data);
    return;
  }
}

}  // namespace

bool WriteRegAsShown(const RegDocument& document, const RegSink& sink) {
  std::string part(kMarkedHeader), path;
  const auto enter = [&](const RegNode& node) {
    if (node.Tag() == RegTag::Branch) path.push_back('\\');
    if (node.Tag() != RegTag::File) path.append(node.Text());
    // Of equal keys the first shows the values of all.
    const bool first = node.Parent() == nullptr || document.FindChild(node.Parent(), node.Text()) == &node;
    const auto records = first ? document.ValuesOfPath(&node) : std::vector<std::size_t>();
    // A key that others are below comes with them; a line for each would grow with the square of the depth.
    if (records.empty() && (node.ChildCount() > 0 || node.Tag() == RegTag::File)) return true;
    part.append("[").append(path).append("]").append(kRegLineEnd);
    for (const std::size_t record : records)
      if (!document.Values()[record].deleted) AppendValue(part, document.Values()[record]);
    part.append(kRegLineEnd);
    if (part.size() < kRegPartBytes) return true;
    const bool going_on = sink(part);
    part.clear();
    return going_on;
  };
  const auto leave = [&path](const RegNode& node) {
    if (node.Tag() != RegTag::File)
      path.resize(path.size() - node.Text().size() - (node.Tag() == RegTag::Branch ? 1 : 0));
  };
  return WalkKeys(*document.Root(), enter, leave) && (part.empty() || sink(part));
}

bool ReadRegAsShown(RegDocument& document, std::string_view text) {
  if (!text.starts_with(kMarkedHeader)) return false;
  text.remove_prefix(kMarkedHeader.size());
  RegNode* key = document.Root();
  std::string_view line;
  for (Lines lines(text); lines.Next(line);) {
    if (line.size() > 1 && line.front() == '[' && line.back() == ']')
      key = FindOrAddKey(document, line.substr(1, line.size() - 2));
    else if (line.starts_with('"'))
      AddValue(document, key, line);
  }
  document.Select(document.Root());
  return true;
}

std::string WithoutAsShownMark(std::string text) {
  if (text.starts_with(kMarkedHeader)) text.replace(0, kMarkedHeader.size(), kRegHeader);
  return text;
}

}  // namespace tme
