#include <array>
#include <string>
#include <vector>

#include "base/CaseFold.h"
#include "console/Commands.h"
#include "console/ConsoleFile.h"
#include "console/KeyEdits.h"
#include "console/Lookup.h"
#include "console/Values.h"

namespace tme::console {
namespace {

constexpr Option kTypeOption{"type", '\0', "sz|expand|multi|dword|qword|binary|none", "the type of a registry value"};
constexpr std::size_t kFirstValue = 3;
constexpr std::size_t kMostValues = 1'000'000;

/// Writes the value so that it is read back, in quotes where it would not be otherwise.
void SetIni(ConsoleFile& file, const Arguments& arguments) {
  IniTree& tree = file.Ini();
  const std::string_view section_name = arguments.Operand(1), key = arguments.Operand(2), value = arguments.Operand(3);
  const auto refuse = [&file](const std::string& why) { file.Fail(0, why + "; nothing was written"); };
  auto sections = SectionsNamed(tree, section_name);
  if (sections.empty()) {
    IniNode* added = tree.AddSection(section_name);
    if (added == nullptr) refuse("no section can have the name \"" + std::string(section_name) + "\"");
    sections.push_back(added);
  }
  auto entries = EntriesNamed(tree, sections, key);
  IniNode* entry = entries.empty() ? tree.AddEntry(sections.front(), key, value) : entries.front();
  if (entry != nullptr) entries = EntriesNamed(tree, sections, key);
  if (entry == nullptr || entries.empty() || key.empty())
    refuse(
        "no line can have the key \"" + std::string(key) +
        "\" and this value (a key has no \"=\" and does not begin with \";\", \"#\" or \"[\", and both are one line)");
  if (tree.ValueOf(*entry) == value) return;
  file.RequireOneLine(*entry);
  const std::string as_it_is(value);
  const std::string forms[] = {as_it_is, "\"" + as_it_is + "\"", "'" + as_it_is + "'"};
  for (const std::string& form : forms) {
    entry = tree.SetEntry(entry, std::string(tree.KeyOf(*entry)), form);
    if (entry == nullptr) break;
    if (tree.ValueOf(*entry) == value) return;
  }
  refuse("this value cannot stand in one line so that it is read back");
}

std::uint32_t TypeNamed(std::string_view name) {
  constexpr std::array<std::pair<std::string_view, std::uint32_t>, 7> kTypes{{{"sz", reg_type::kString},
                                                                              {"expand", reg_type::kExpandString},
                                                                              {"multi", reg_type::kMultiString},
                                                                              {"dword", reg_type::kDword},
                                                                              {"qword", reg_type::kQword},
                                                                              {"binary", reg_type::kBinary},
                                                                              {"none", reg_type::kNone}}};
  const std::string folded = FoldedCase(name);
  for (const auto& [short_name, type] : kTypes)
    if (folded == short_name || folded == FoldedCase(RegTypeName(type))) return type;
  throw Trouble("--type is sz, expand, multi, dword, qword, binary or none, and not \"" + std::string(name) + "\"");
}

RegData DataOfTexts(std::uint32_t type, std::span<const std::string_view> texts) {
  RegData data;
  data.type = type;
  data.content = ContentOf(type);
  if (data.content == RegContent::Strings) {
    data.strings.assign(texts.begin(), texts.end());
    return data;
  }
  if (texts.size() != 1) throw Trouble("set: one VALUE belongs to a " + RegTypeName(type));
  if (data.content == RegContent::Text) data.text = texts.front();
  if (data.content == RegContent::Number) data.number = NumberOf(texts.front());
  if (data.content == RegContent::Bytes) data.bytes = BytesOfPairs(texts.front());
  return data;
}

void SetReg(ConsoleFile& file, const Arguments& arguments) {
  RegDocument& document = file.Reg();
  const auto name = ValueNameOf(arguments.Operand(2));
  const std::string path = FullKeyPath(arguments.Operand(1));
  RegNode* key = KeyOfPath(document, path);
  const auto deletion = DeletionOf(document, path);
  auto records = key == nullptr ? std::vector<std::size_t>() : ValuesNamed(document, key, name);
  std::erase_if(records, [&](std::size_t record) { return document.Values()[record].piece < deletion; });
  std::uint32_t type = reg_type::kString;
  if (const auto wanted = arguments.ValueOf(kTypeOption))
    type = TypeNamed(*wanted);
  else if (!records.empty() && document.Values()[records.back()].type != RegType::None)
    type = DataOf(document.Values()[records.back()], file.Coding()).type;
  const RegData data = DataOfTexts(type, arguments.Operands().subspan(kFirstValue));
  const auto assignment = EncodeAssignment(data, file.Coding());
  if (!assignment) file.Fail(0, std::string(WhyNot(FaultOf(data, file.Coding()))) + "; nothing was written");
  if (!records.empty()) {
    const RegValueRecord& record = document.Values()[records.back()];
    const bool is_deletion = record.type == RegType::None;
    if (is_deletion || DataOf(record, file.Coding()) != data) document.SetAssignment(records.back(), *assignment);
    return;
  }
  if (document.Version() == RegVersion::Regedit && !name.empty())
    file.Fail(0, std::string(WhyNot(RegFault::OnlyText)) + "; nothing was written");
  if (!IsValueName(name)) file.Fail(0, "no value can have this name; nothing was written");
  RequireNoOpenText(file, path, name);
  // A line above the one that deletes the key would be lost.
  const bool is_there = key != nullptr && (deletion == SourceLines::kEnds || document.PieceOf(key) > deletion);
  document.AddValue(is_there ? key : AddKeyPath(file, path), name, *assignment);
}

Result Set(const Arguments& arguments, Streams& streams) {
  const OutputLock lock(arguments, arguments.Operand(0));
  ConsoleFile file(arguments.Operand(0), arguments.ValueOf(kKindOption), streams, ConsoleFile::Holds::Document, {},
                   ConsoleFile::Missing::IsMade);
  file.RequireTree();
  if (file.Kind() == DocumentKind::Reg) {
    SetReg(file, arguments);
  } else {
    if (arguments.Has(kTypeOption)) file.Fail(0, "values of an INI file have no type");
    if (arguments.OperandCount() != kFirstValue + 1) file.Fail(0, "one VALUE belongs to a key of an INI file");
    SetIni(file, arguments);
  }
  file.Save(arguments, streams);
  return Result::Done;
}

constexpr std::array kSetOptions{kKindOption, kTypeOption, kOutputOption};

}  // namespace

constinit const Command kSetCommand{
    "set",
    "FILE SECTION KEY VALUE…",
    kFirstValue,
    kMostValues,
    kSetOptions,
    "change or add one value, and no other line",
    "The file keeps its encoding, line ends, comments and order. A section, or a key's path, that is missing is "
    "added,\n"
    "and a missing file is made. Edits of one file by several tmec wait for one another, for 30 seconds.\n"
    "In a registry file a value keeps its type unless --type says another one; a new one is sz. dword and qword are\n"
    "decimal or 0x and hex digits, binary is pairs of hex digits, and multi takes a VALUE for each string.\n"
    "A value of an INI file gets quotes where its blanks would be lost otherwise.\n"
    "Nothing is written where the value stands there already, and where the file's encoding has no place for it.\n",
    &Set};

}  // namespace tme::console
