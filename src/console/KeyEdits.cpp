#include "console/KeyEdits.h"

#include <algorithm>
#include <vector>

#include "console/Findings.h"
#include "console/Lookup.h"
#include "console/Values.h"
#include "documents/reg/RegNames.h"
#include "documents/reg/RegSourceLine.h"

namespace tme::console {
namespace {

constexpr std::string_view kLineEndsAndNul{"\r\n\0", 3};

void RequireKeyPath(const ConsoleFile& file, const std::string& path) {
  const auto parts = PartsOfKeyPath(path);
  const bool has_hive = !parts.empty() && std::ranges::any_of(HiveNames, [&](std::string_view name) {
    return SameRegName(name, parts[0]);
  });
  if (!has_hive) file.Fail(0, "the path begins with none of the registry's hives; nothing was written");
  const bool is_pair = file.Reg().Version() == RegVersion::Regedit;
  if (path.find_first_of(kLineEndsAndNul) != path.npos || (is_pair && path.find_first_of(" \t=") != path.npos))
    file.Fail(0, "this file cannot hold a key of this name; nothing was written");
}

std::string JoinedPath(const std::vector<std::string_view>& parts) {
  std::string path;
  for (const std::string_view part : parts) path.append(path.empty() ? "" : "\\").append(part);
  return path;
}

RegNode* DeletionBelow(const RegNode* parent, std::string_view name) {
  for (int row = 0; parent != nullptr && row < parent->ChildCount(); ++row) {
    RegNode* child = parent->Child(row);
    if (child->Tag() == RegTag::Deletion && SameRegName(child->Text(), name)) return child;
  }
  return nullptr;
}

}  // namespace

bool IsValueName(std::string_view name) { return name.find_first_of(kLineEndsAndNul) == name.npos; }

bool BeginsOpenText(std::string_view line, std::string& name) {
  const std::string closed = std::string(line) + '"';
  const auto place = FindRegValue(closed, closed.size());
  if (!place || !place->assignment.Of(closed).starts_with('"') || place->assignment.End() != closed.size())
    return false;
  name = NameOfQuoted(place->name.Of(closed));
  return true;
}

void RequireNoOpenText(const ConsoleFile& file, std::string_view path, std::string_view name) {
  const auto parts = PartsOfKeyPath(path);
  const auto same = [](std::string_view one, std::string_view other) { return SameRegName(one, other); };
  bool is_key = false;
  ForEachPiece(file, [&](SourceLines::Piece piece, std::uint64_t number, std::string_view text) {
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    const auto kind = static_cast<RegPiece>(file.Lines().Kind(piece));
    std::string found;
    if (kind == RegPiece::Key) {
      const auto header = FindRegHeader(line);
      is_key = header && std::ranges::equal(PartsOfKeyPath(header->path.Of(line)), parts, same);
    }
    if (is_key && kind == RegPiece::Other && BeginsOpenText(line, found) && SameRegName(found, name))
      file.Fail(number,
                "the text of this value goes on in the next line, which cannot be taken here; nothing was done");
  });
}

RegNode* AddKeyPath(ConsoleFile& file, const std::string& path) {
  RequireKeyPath(file, path);
  RegDocument& document = file.Reg();
  const auto parts = PartsOfKeyPath(path);
  RegNode* node = document.Root();
  std::size_t found = 0;
  for (RegNode* next = nullptr; found < parts.size(); ++found, node = next) {
    next = document.FindChild(node, parts[found]);
    if (next == nullptr) break;
  }
  const bool is_deleted = DeletionOf(document, path) != SourceLines::kEnds;
  if ((is_deleted || found + 1 < parts.size()) && document.Version() != RegVersion::Regedit) {
    document.Paste(document.Root(), "[" + JoinedPath(parts) + "]\n", file.Coding());  // one line, not one a level
    node = KeyOfPath(document, path);
    if (node == nullptr) file.Fail(0, "this file cannot hold a key of this name; nothing was written");
    return node;
  }
  for (; found < parts.size(); ++found) node = document.AddKey(node, parts[found]);
  return node;
}

void AddKeyDeletion(ConsoleFile& file, const std::string& path) {
  RequireKeyPath(file, path);
  RegDocument& document = file.Reg();
  auto parts = PartsOfKeyPath(path);
  const std::string whole = JoinedPath(parts);
  const std::string_view name = parts.back();
  parts.pop_back();
  const RegNode* parent = KeyOfPath(document, JoinedPath(parts));
  if (DeletionBelow(parent, name) == nullptr) document.Paste(document.Root(), "[-" + whole + "]\n", file.Coding());
}

}  // namespace tme::console
