#include "documents/reg/RegAsShown.h"

#include <utility>
#include <vector>

#include "base/LineReader.h"
#include "documents/reg/RegDocumentLoad.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme {

namespace {

constexpr std::string_view kMarkedHeader = "REGEDIT4\r\n; every key as it was shown\r\n\r\n";

/// Passes over a line that has no place that divides name and data, and so is no value.
void AddValue(RegDocument::Load& load, RegNode* key, std::string_view line) {
  for (std::size_t at = line.find("\"=", 1); at != std::string_view::npos; at = line.find("\"=", at + 1)) {
    const std::string_view rest = line.substr(at);
    for (const auto& [type, name, before, after] : kRegTypes) {
      const std::size_t marks = before.size() + after.size();
      if (type == RegType::None || rest.size() < marks || !rest.starts_with(before) || !rest.ends_with(after)) continue;
      return load.AppendValue(key, type, line.substr(1, at - 1), rest.substr(before.size(), rest.size() - marks));
    }
  }
}

}  // namespace

bool WriteRegAsShown(const RegDocument& document, const PartSink& sink) {
  PartBuffer out(sink);
  out.Append(kMarkedHeader);
  const auto put_key = [&](const RegNode& node, std::string_view path) {
    // Of equal keys the first shows the values of all.
    const bool first = node.Parent() == nullptr || document.FindChild(node.Parent(), node.Text()) == &node;
    const auto records = first ? document.ValuesOfPath(&node) : std::vector<std::size_t>();
    // A key that others are below comes with them; a line for each would grow with the square of the depth.
    if (records.empty() && (node.ChildCount() > 0 || node.Tag() == RegTag::File)) return true;
    bool going_on = PutLine(out, {"[", path, "]", kRegLineEnd});
    for (const std::size_t record : records) {
      const RegValueRecord& value = document.Values()[record];
      going_on = going_on && (value.deleted || PutLine(out, LineOf(value)));
    }
    return going_on && PutLine(out, {kRegLineEnd});
  };
  return WalkKeyPaths(*document.Root(), put_key) && out.Flush();
}

bool ReadRegAsShown(RegDocument& document, std::string& text) {
  if (!text.starts_with(kMarkedHeader)) return false;
  RegDocument::Load load(document, std::move(text), 0);
  LineReader lines(std::string_view(load.Text()).substr(kMarkedHeader.size()));
  RegNode* key = document.Root();
  for (std::string_view line; lines.Next(line);) {
    if (line.size() > 1 && line.front() == '[' && line.back() == ']') {
      std::string_view path = line.substr(1, line.size() - 2);
      if (path.ends_with('\\')) path.remove_suffix(1);
      key = path.empty() ? document.Root() : load.KeyOf(path);
    } else if (line.starts_with('"')) {
      AddValue(load, key, line);
    }
  }
  return true;
}

std::string WithoutAsShownMark(std::string text) {
  if (text.starts_with(kMarkedHeader)) text.replace(0, kMarkedHeader.size(), kRegHeader);
  return text;
}

}  // namespace tme
