#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "console/Commands.h"
#include "console/ConsoleFile.h"
#include "console/KeyEdits.h"
#include "console/Lookup.h"

namespace tme::console {
namespace {

constexpr Option kWriteDeletionOption{
    "write-deletion", '\0', "", "registry files: leave a line that deletes the key or value where it is imported"};

std::vector<IniNode*> NodesNamed(const IniTree& tree, const Arguments& arguments) {
  std::vector<IniNode*> sections = SectionsNamed(tree, arguments.Operand(1));
  if (arguments.OperandCount() > 2) return EntriesNamed(tree, sections, arguments.Operand(2));
  if (sections.empty() || sections.front() != tree.Root()) return sections;
  std::vector<IniNode*> entries;
  for (int row = 0; row < tree.Root()->ChildCount(); ++row)
    if (tree.Root()->Child(row)->Tag() == IniTag::Value) entries.push_back(tree.Root()->Child(row));
  return entries;
}

Result DeleteIni(ConsoleFile& file, const Arguments& arguments) {
  const std::vector<IniNode*> nodes = NodesNamed(file.Ini(), arguments);
  if (nodes.empty()) return Result::Other;
  if (arguments.OperandCount() > 2)
    std::ranges::for_each(nodes, [&file](const IniNode* node) { file.RequireOneLine(*node); });
  file.Ini().Remove(nodes, IniComments::Stay);
  return Result::Done;
}

Result DeleteValues(ConsoleFile& file, RegNode* key, const std::string& path, std::string_view name,
                    bool writes_deletion) {
  RegDocument& document = file.Reg();
  std::vector<std::size_t> records = key == nullptr ? std::vector<std::size_t>() : ValuesNamed(document, key, name);
  RequireNoOpenText(file, path, name);
  if (!writes_deletion) {
    for (const std::size_t record : records) document.DeleteValue(record);
    return records.empty() ? Result::Other : Result::Done;
  }
  if (records.empty()) {
    if (!IsValueName(name)) file.Fail(0, "no value can have this name; nothing was written");
    document.AddValue(key != nullptr ? key : AddKeyPath(file, path), name, "-");
    return Result::Done;
  }
  const std::size_t last = records.back();
  records.pop_back();
  for (const std::size_t record : records) document.DeleteValue(record);
  if (document.Values()[last].type != RegType::None) document.WriteDeletion(last);
  return Result::Done;
}

Result DeleteReg(ConsoleFile& file, const Arguments& arguments) {
  RegDocument& document = file.Reg();
  const bool writes_deletion = arguments.Has(kWriteDeletionOption);
  if (writes_deletion && document.Version() == RegVersion::Regedit)
    file.Fail(0, "a REGEDIT file has no lines that delete; nothing was written");
  const std::string path = FullKeyPath(arguments.Operand(1));
  RegNode* key = KeyOfPath(document, path);
  if (arguments.OperandCount() > 2)
    return DeleteValues(file, key, path, ValueNameOf(arguments.Operand(2)), writes_deletion);
  if (writes_deletion && PartsOfKeyPath(path).size() < 2) file.Fail(0, "no import deletes a hive; nothing was written");
  if (!writes_deletion) {
    if (key == nullptr) return Result::Other;
    document.RemoveKey(key, HeaderComments::Stay);
  } else if (key != nullptr) {
    document.WriteDeletion(key);
  } else {
    AddKeyDeletion(file, path);
  }
  return Result::Done;
}

Result Delete(const Arguments& arguments, Streams& streams) {
  const OutputLock lock(arguments, arguments.Operand(0));
  ConsoleFile file(arguments.Operand(0), arguments.ValueOf(kKindOption), streams);
  file.RequireTree();
  if (file.Kind() == DocumentKind::Ini && arguments.Has(kWriteDeletionOption))
    file.Fail(0, "an INI file has no lines that delete");
  const Result result = file.Kind() == DocumentKind::Ini ? DeleteIni(file, arguments) : DeleteReg(file, arguments);
  if (result == Result::Done || arguments.Has(kOutputOption)) file.Save(arguments, streams);
  return result;
}

constexpr std::array kDeleteOptions{kKindOption, kWriteDeletionOption, kOutputOption};

}  // namespace

constinit const Command kDeleteCommand{
    "delete",
    "FILE SECTION [KEY]",
    2,
    3,
    kDeleteOptions,
    "remove the lines of a key or section, and no others",
    "All entries of the key go, in all sections of the name. Without KEY the section goes, of a registry file the key\n"
    "with all below it; comments above them stay. Exit status 1 says that there was none.\n"
    "With --write-deletion lines like \"name\"=- or [-HKEY_USERS\\A] stand there afterwards, whether it was there or "
    "not.\n",
    &Delete};

}  // namespace tme::console
