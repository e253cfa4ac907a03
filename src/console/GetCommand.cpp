#include <array>

#include "console/Commands.h"
#include "console/ConsoleFile.h"
#include "console/Json.h"
#include "console/KeyEdits.h"
#include "console/Lookup.h"
#include "console/Values.h"

namespace tme::console {
namespace {

bool IsDeletion(const RegValueRecord& record) { return record.type == RegType::None; }

/// What readers take of a key's values: of each name the last line, unless it deletes the value.
std::vector<std::size_t> EffectiveValues(const RegDocument& document, const RegNode* key,
                                         std::optional<std::string_view> name, SourceLines::Piece deletion) {
  std::vector<std::size_t> records = name ? ValuesNamed(document, key, *name) : document.ValuesOfPath(key);
  std::erase_if(records, [&](std::size_t record) { return document.Values()[record].piece < deletion; });
  if (name && !records.empty()) records = {records.back()};
  std::erase_if(records, [&document](std::size_t record) { return IsDeletion(document.Values()[record]); });
  return records;
}

Result Absent(const Arguments& arguments, Streams& streams) {
  if (arguments.Has(kJsonOption)) streams.PutLine(arguments.OperandCount() > 2 ? "null" : "[]");
  return Result::Other;
}

Result GetIni(const ConsoleFile& file, const Arguments& arguments, Streams& streams) {
  const IniTree& tree = file.Ini();
  const auto sections = SectionsNamed(tree, arguments.Operand(1));
  const bool is_one = arguments.OperandCount() > 2;
  std::vector<IniNode*> entries;
  if (is_one) entries = EntriesNamed(tree, sections, arguments.Operand(2));
  for (const IniNode* section : sections) {
    for (int row = 0; !is_one && row < section->ChildCount(); ++row)
      if (section->Child(row)->Tag() == IniTag::Value) entries.push_back(section->Child(row));
  }
  if (sections.empty() || (is_one && entries.empty())) return Absent(arguments, streams);
  if (is_one) entries.resize(1);
  if (!arguments.Has(kJsonOption)) {
    for (const IniNode* entry : entries) {
      if (!is_one) streams.Put(ColumnOf(tree.KeyOf(*entry)) + "\t");
      streams.PutLine(is_one ? std::string(tree.ValueOf(*entry)) : ColumnOf(tree.ValueOf(*entry)));
    }
    return Result::Done;
  }
  JsonWriter json(streams);
  if (!is_one) json.BeginArray(JsonWriter::Layout::Lines);
  for (const IniNode* entry : entries) {
    json.BeginObject().Member("key", tree.KeyOf(*entry)).Member("value", tree.ValueOf(*entry));
    json.EndObject();
  }
  if (!is_one) json.EndArray();
  json.EndText();
  return Result::Done;
}

Result GetReg(const ConsoleFile& file, const Arguments& arguments, Streams& streams) {
  const RegDocument& document = file.Reg();
  const std::string path = FullKeyPath(arguments.Operand(1));
  const RegNode* key = KeyOfPath(document, path);
  const bool is_one = arguments.OperandCount() > 2;
  const auto deletion = DeletionOf(document, path);
  if (key == nullptr || !StandsBehind(document, *key, deletion)) return Absent(arguments, streams);
  const auto wanted = is_one ? std::optional(ValueNameOf(arguments.Operand(2))) : std::nullopt;
  const auto records = EffectiveValues(document, key, wanted, deletion);
  if (is_one && records.empty()) {
    RequireNoOpenText(file, path, *wanted);
    return Absent(arguments, streams);
  }
  JsonWriter json(streams);
  const bool as_json = arguments.Has(kJsonOption);
  if (as_json && !is_one) json.BeginArray(JsonWriter::Layout::Lines);
  for (const std::size_t record : records) {
    const RegValueRecord& value = document.Values()[record];
    const RegData data = DataOf(value, file.Coding());
    if (as_json) {
      json.BeginObject().Member("name", value.name);
      PutData(json, data);
      json.EndObject();
    } else if (is_one) {
      streams.PutLine(TextOf(data));
    } else {
      const std::string name = value.name.empty() ? "@" : ColumnOf(value.name);
      streams.PutLine(name + "\t" + RegTypeName(data.type) + "\t" + ColumnOf(data));
    }
  }
  if (as_json && !is_one) json.EndArray();
  if (as_json) json.EndText();
  return Result::Done;
}

Result Get(const Arguments& arguments, Streams& streams) {
  const ConsoleFile file(arguments.Operand(0), arguments.ValueOf(kKindOption), streams);
  file.RequireTree();
  return file.Kind() == DocumentKind::Ini ? GetIni(file, arguments, streams) : GetReg(file, arguments, streams);
}

constexpr std::array kGetOptions{kKindOption, kJsonOption};

}  // namespace

constinit const Command kGetCommand{
    "get",
    "FILE SECTION [KEY]",
    2,
    3,
    kGetOptions,
    "write the value of a key, or all of a section",
    "In a registry file SECTION is a key's path (HKLM and the like stand for the hives), and KEY the name of a value,\n"
    "\"@\" the default value. Without KEY there is a line for each entry: the key (of a registry file also the type) "
    "and\n"
    "the value, with tabs between them. SECTION \"\" is what stands before the first section. Names are found in any\n"
    "letter case. Of several entries of one key the first counts, of several values of one name the last.\n"
    "Strings of a REG_MULTI_SZ are a line each, numbers are decimal, and bytes are pairs of hex digits. In lines with\n"
    "tabs, controls within a text are \\t, \\n, \\r and \\0, and a backslash stays one; --json is exact, with null or "
    "[]\n"
    "for what is absent.\n",
    &Get};

}  // namespace tme::console
