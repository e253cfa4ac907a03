#include "windows/reg/RegClipboard.h"

#include <unordered_set>
#include <utility>

#include "documents/reg/RegNames.h"
#include "documents/reg/RegWholeReader.h"

namespace tme {
namespace {

struct NameHash {
  std::size_t operator()(const std::string& name) const { return HashOfRegName(name); }
};
struct SameName {
  bool operator()(const std::string& one, const std::string& other) const { return SameRegName(one, other); }
};
using RegNameSet = std::unordered_set<std::string, NameHash, SameName>;

/// The name with the first number behind it that is free.
template <class IsTaken>
std::string FreeName(std::string_view name, IsTaken is_taken) {
  std::string free(name);
  for (int number = 2; is_taken(free); ++number) free = std::string(name) + " (" + std::to_string(number) + ")";
  return free;
}

void FreeValueNames(RegDocument& pasted, const RegDocument& document, const RegNode* key) {
  const std::vector<std::size_t> records = pasted.ValuesOfPath(pasted.Root());
  if (records.empty()) return;
  RegNameSet names;
  for (const std::size_t record : document.ValuesOfPath(key)) names.emplace(document.Values()[record].name);
  for (const std::size_t record : records) {
    const std::string_view name = pasted.Values()[record].name;
    const bool is_free = names.emplace(name).second;
    // Of default values the last one counts.
    if (is_free || name.empty()) continue;
    const std::string free = FreeName(name, [&](const std::string& other) { return names.contains(other); });
    pasted.RenameValue(record, free);
    names.insert(free);
  }
}

void FreeKeyNames(RegDocument& pasted, const RegDocument& document, const RegNode* key) {
  // The paths above the top keys say only where these came from.
  RegNode* above = pasted.Root();
  while (above->ChildCount() == 1 && IsKey(above->Child(0)->Tag()) &&
         pasted.PieceOf(above->Child(0)) == SourceLines::kEnds)
    above = above->Child(0);
  for (int row = 0; row < above->ChildCount(); ++row) {
    RegNode* top = above->Child(row);
    if (!IsKey(top->Tag())) continue;
    const std::string free =
        FreeName(top->Text(), [&](const std::string& other) { return document.FindChild(key, other) != nullptr; });
    pasted.RenameKey(top, free);
  }
}

}  // namespace

std::string WithFreeNames(const RegDocument& document, const RegNode* key, std::string text) {
  if (key->Tag() == RegTag::File) return text;
  const RegWholeOptions options{
      .unsaid = document.Version(), .first_values = RegWholeOptions::FirstValues::OfRoot, .progress = {}};
  RegDocument pasted;
  ReadWholeReg(pasted, text, options);
  if (pasted.Version() == RegVersion::Regedit) return text;
  const std::uint64_t revision = pasted.Revision();
  FreeValueNames(pasted, document, key);
  FreeKeyNames(pasted, document, key);
  if (pasted.Revision() == revision) return text;
  std::string freed;
  pasted.Lines().Write([&freed](std::string_view part) {
    freed.append(part);
    return true;
  });
  return freed;
}

}  // namespace tme
