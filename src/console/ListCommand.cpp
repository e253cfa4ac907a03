#include <array>
#include <string>
#include <vector>

#include "console/Commands.h"
#include "console/ConsoleFile.h"
#include "console/Json.h"
#include "console/Lookup.h"
#include "console/Values.h"
#include "documents/reg/RegKeyWalk.h"

namespace tme::console {
namespace {

/// Writes rows as lines of columns or as objects.
class RowWriter {
 public:
  RowWriter(const Arguments& arguments, Streams& streams)
      : streams_(streams), json_(streams), as_json_(arguments.Has(kJsonOption)) {
    if (as_json_) json_.BeginArray(JsonWriter::Layout::Lines);
  }
  struct Cell {
    std::string_view name;
    std::string_view text;
    /// In a line of columns; empty for the text.
    std::string_view column = {};
  };
  void Put(std::span<const Cell> cells) {
    if (as_json_) json_.BeginObject();
    std::string line;
    for (const Cell& cell : cells) {
      if (as_json_) json_.Member(cell.name, cell.text);
      if (&cell != &cells.front()) line += '\t';
      line += ColumnOf(cell.column.empty() ? cell.text : cell.column);
    }
    if (as_json_)
      json_.EndObject();
    else
      streams_.PutLine(line);
  }
  void End() {
    if (!as_json_) return;
    json_.EndArray();
    json_.EndText();
  }

 private:
  Streams& streams_;
  JsonWriter json_;
  const bool as_json_;
};

void ListSection(const IniTree& tree, const IniNode& section, RowWriter& rows) {
  const std::string_view name = &section == tree.Root() ? std::string_view() : section.Text();
  bool is_empty = true;
  for (int row = 0; row < section.ChildCount(); ++row) {
    const IniNode& child = *section.Child(row);
    if (child.Tag() != IniTag::Value) continue;
    is_empty = false;
    rows.Put(std::array{RowWriter::Cell{"section", name}, RowWriter::Cell{"key", tree.KeyOf(child)}});
  }
  if (is_empty && &section != tree.Root()) rows.Put(std::array{RowWriter::Cell{"section", name}});
}

Result ListIni(const IniTree& tree, const Arguments& arguments, RowWriter& rows) {
  std::vector<IniNode*> sections{tree.Root()};
  if (arguments.OperandCount() > 1) {
    sections = SectionsNamed(tree, arguments.Operand(1));
  } else {
    for (int row = 0; row < tree.Root()->ChildCount(); ++row)
      if (tree.Root()->Child(row)->Tag() == IniTag::Section) sections.push_back(tree.Root()->Child(row));
  }
  for (const IniNode* section : sections) ListSection(tree, *section, rows);
  return sections.empty() ? Result::Other : Result::Done;
}

void ListKey(const ConsoleFile& file, const RegNode& key, RowWriter& rows) {
  const RegDocument& document = file.Reg();
  const auto records = document.ValuesOfPath(&key);
  const bool has_lines = document.PieceOf(&key) != SourceLines::kEnds;
  if (records.empty() && !has_lines) return;
  const std::string path = key.KeyPath();
  if (records.empty()) rows.Put(std::array{RowWriter::Cell{"key", path}});
  for (const std::size_t record : records) {
    const RegValueRecord& value = document.Values()[record];
    const bool is_deletion = value.type == RegType::None;
    const std::string type = is_deletion ? "deletion" : RegTypeName(DataOf(value, file.Coding()).type);
    rows.Put(std::array{RowWriter::Cell{"key", path},
                        RowWriter::Cell{"name", value.name, value.name.empty() ? "@" : std::string_view()},
                        RowWriter::Cell{"type", type}});
  }
}

Result ListReg(const ConsoleFile& file, const Arguments& arguments, RowWriter& rows) {
  const RegNode* top = file.Reg().Root();
  if (arguments.OperandCount() > 1) {
    top = KeyOfPath(file.Reg(), FullKeyPath(arguments.Operand(1)));
    if (top == nullptr) return Result::Other;
  }
  WalkKeys(*top, [&](const RegNode& node) {
    if (node.Tag() == RegTag::Deletion) {
      const std::string path = "-" + node.KeyPath();
      rows.Put(std::array{RowWriter::Cell{"key", path}});
    } else if (IsKey(node.Tag())) {
      ListKey(file, node, rows);
    }
    return true;
  });
  return Result::Done;
}

Result List(const Arguments& arguments, Streams& streams) {
  const ConsoleFile file(arguments.Operand(0), arguments.ValueOf(kKindOption), streams);
  file.RequireTree();
  RowWriter rows(arguments, streams);
  const Result result =
      file.Kind() == DocumentKind::Ini ? ListIni(file.Ini(), arguments, rows) : ListReg(file, arguments, rows);
  rows.End();
  return result;
}

constexpr std::array kListOptions{kKindOption, kJsonOption};

}  // namespace

constinit const Command kListCommand{
    "list",
    "FILE [SECTION]",
    1,
    2,
    kListOptions,
    "write the sections, keys and types, a line each",
    "An INI file gives SECTION, a tab and KEY for each entry, and SECTION alone where there is none. A registry file\n"
    "gives the path of the key, the name (\"@\" the default value) and the type of each value; the path alone where "
    "there\n"
    "is none, with \"-\" before it where the line deletes the key; and with SECTION the key and all below it.\n",
    &List};

}  // namespace tme::console
