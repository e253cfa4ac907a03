#include "windows/reg/RegReplacer.h"

#include <algorithm>

#include "base/CaseFold.h"
#include "documents/reg/RegHex.h"
#include "windows/reg/RegReplacedData.h"
#include "windows/reg/RegSearch.h"
#include "windows/reg/RegValueText.h"

namespace tme {
namespace {

constexpr std::size_t kDwordDigits = 8;

RegNode* EditedKeyAt(const SearchPlace& place) { return const_cast<RegNode*>(static_cast<const RegNode*>(place.node)); }

bool HasControls(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

/// Whether a text as it stands in the file would end its line's quotes too early or too late.
bool BreaksQuotes(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '"') return true;
    if (text[at] == '\\' && ++at == text.size()) return true;
  }
  return false;
}

}  // namespace

RegReplacer::RegReplacer(RegDocument& document, RegCharacters characters)
    : document_(document), coding_(CodingOf(document)), characters_(characters) {}

std::optional<Replacement> RegReplacer::Plan(const SearchPlace& place, SearchField field, const ReplaceQuery& query) {
  if (field == SearchField::Data) return PlanData(place, query);
  if (field == SearchField::Path) {
    const std::string path = PathOf(*EditedKeyAt(place));
    return Replacement{place, field, query.matcher.Replaced(path, query.with, {}).value_or(path), {}, RefusalOfPath()};
  }
  const std::string before = field == SearchField::Name ? SearchedName(document_, document_.Values()[place.record])
                                                        : std::string(EditedKeyAt(place)->Text());
  std::optional<std::string> after = query.matcher.Replaced(before, query.with, query.only);
  if (!after || *after == before) return std::nullopt;
  Replacement replacement{place, field, *after, *after, {}};
  replacement.refusal = Check(replacement);
  return replacement;
}

QString RegReplacer::Check(const Replacement& replacement) {
  if (replacement.field == SearchField::Data) return {};
  if (replacement.field == SearchField::Path) return RefusalOfPath();
  const std::string& after = replacement.stored;
  if (HasControls(after)) return tr("A line has no end within.");
  const bool is_name = replacement.field == SearchField::Name;
  const std::string_view before =
      is_name ? document_.Values()[replacement.place.record].name : EditedKeyAt(replacement.place)->Text();
  if (const QString refusal = RefusalOfCharacters(before, after); !refusal.isEmpty()) return refusal;
  if (is_name) return RefusalOfName(document_.Values()[replacement.place.record], after);
  if (replacement.field == SearchField::Key) return RefusalOfKey(*EditedKeyAt(replacement.place), after);
  return after.starts_with(';') ? QString() : tr("A comment begins with a semicolon.");
}

QString RegReplacer::RefusalOfPath() { return tr("The hit goes over more than one key."); }

QString RegReplacer::RefusalOfCharacters(std::string_view before, std::string_view after) const {
  if (characters_ == RegCharacters::Any || !IsWhole() || coding_.version == RegVersion::Version5) return {};
  if (coding_.to_code_page(after) || !coding_.to_code_page(before)) return {};
  return ReasonOf(RegFault::NotInCodePage);
}

std::string RegReplacer::Comparable(std::string_view name) const {
  return IsWhole() ? FoldedCase(name) : std::string(name);
}

QString RegReplacer::RefusalOfKey(const RegNode& key, const std::string& after) {
  if (after.empty()) return tr("A key needs a name.");
  if (after.find('\\') != std::string::npos) return tr("The name of a key has no backslash.");
  if (key.Parent()->Parent() == nullptr && !IsHiveName(after)) return tr("There is no hive of this name.");
  if (SharesValues(key, after)) return tr("A key of this name has a value of the same name.");
  // Next to a deletion a key of the same name may stand.
  if (!IsKey(key.Tag())) return {};
  const auto [at, is_new] = key_names_.try_emplace(key.Parent());
  if (is_new)
    for (int row = 0; row < key.Parent()->ChildCount(); ++row)
      if (const RegNode* child = key.Parent()->Child(row); IsKey(child->Tag()))
        at->second.insert(Comparable(child->Text()));
  if (TakeName(at->second, Comparable(key.Text()), Comparable(after))) return {};
  return tr("There is a key of this name already.");
}

bool RegReplacer::TakeName(Names& names, const std::string& before, const std::string& after) {
  if (after == before) return true;
  if (names.contains(after)) return false;
  if (const auto old = names.find(before); old != names.end()) names.erase(old);
  names.insert(after);
  return true;
}

bool RegReplacer::SharesValues(const RegNode& key, const std::string& after) {
  if (IsWhole() || after == key.Text()) return false;
  std::vector<std::string> own;
  document_.ForEachValueOf(&key, [&own](const RegValueRecord& record) {
    if (!record.deleted) own.emplace_back(record.name);
  });
  const Names& before = NamesOfComponent(key.Text());
  Names& others = NamesOfComponent(after);
  // What comes together already stays so.
  const bool shares = std::ranges::any_of(
      own, [&](const std::string& name) { return others.contains(name) && before.count(name) == 1; });
  if (!shares) others.insert(own.begin(), own.end());
  return shares;
}

/// By the rules keys whose last components are equal share their values when they are saved.
RegReplacer::Names& RegReplacer::NamesOfComponent(std::string_view component) {
  if (owners_.empty()) {
    const RegNode* last = nullptr;
    for (const RegValueRecord& record : document_.Values())
      if (!record.deleted && record.owner != last) owners_[record.owner->Text()].push_back(last = record.owner);
  }
  const auto [at, is_new] = value_names_.try_emplace(std::string(component));
  Names& names = at->second;
  const auto found = owners_.find(component);
  if (!is_new || found == owners_.end()) return names;
  std::vector<const RegNode*>& owners = found->second;
  // A key's records may stand apart.
  std::ranges::sort(owners);
  owners.erase(std::unique(owners.begin(), owners.end()), owners.end());
  for (const RegNode* owner : owners)
    document_.ForEachValueOf(owner, [&](const RegValueRecord& record) {
      if (!record.deleted) names.emplace(record.name);
    });
  return names;
}

RegReplacer::Names& RegReplacer::ValueNamesOf(const RegNode& key) {
  if (IsWhole()) {
    const auto [at, is_new] = value_names_.try_emplace(std::to_string(reinterpret_cast<std::uintptr_t>(&key)));
    Names& names = at->second;
    if (is_new)
      document_.ForEachValueOf(&key, [this, &names](const RegValueRecord& record) {
        if (!record.deleted) names.insert(Comparable(record.name));
      });
    return names;
  }
  return NamesOfComponent(key.Text());
}

QString RegReplacer::RefusalOfName(const RegValueRecord& record, const std::string& after) {
  if (IsWhole() && record.name.empty()) return tr("The default value has no name that could change.");
  if (after.empty()) return tr("A value needs a name.");
  if (TakeName(ValueNamesOf(*record.owner), Comparable(record.name), Comparable(after))) return {};
  return tr("This key has a value of this name already.");
}

QString RegReplacer::RefusalOfText(const RegValueRecord& record, const std::string& after) {
  const RegType type = record.type;
  if (HasControls(after)) return tr("A line has no end within.");
  if (type == RegType::String && BreaksQuotes(after) && !BreaksQuotes(record.data))
    return tr("A quotation mark or a backslash needs a backslash before it.");
  if (type == RegType::Hex && !BytesOfHex(after)) return tr("These are no bytes any more.");
  const bool is_number = !after.empty() && after.size() <= kDwordDigits && std::ranges::all_of(after, IsHexDigit);
  if (type == RegType::Dword && !is_number) return tr("This is no number any more.");
  return {};
}

std::optional<Replacement> RegReplacer::PlanData(const SearchPlace& place, const ReplaceQuery& query) const {
  if (IsWhole()) return PlanDecoded(place, query);
  const RegValueRecord& record = document_.Values()[place.record];
  std::optional<std::string> after = query.matcher.Replaced(record.data, query.with, query.only);
  if (!after || *after == record.data) return std::nullopt;
  const QString refusal = RefusalOfText(record, *after);
  return Replacement{place, SearchField::Data, *after, *after, refusal};
}

std::optional<Replacement> RegReplacer::PlanDecoded(const SearchPlace& place, const ReplaceQuery& query) const {
  const RegValueRecord& record = document_.Values()[place.record];
  Replacement replacement{place, SearchField::Data, {}, {}, {}};
  std::string buffer;
  const std::string_view before = SearchedData(document_, record, coding_, buffer);
  const std::optional<RegData> data = DecodeAssignment(record.data, coding_);
  if (!data) {
    std::optional<std::string> text = query.matcher.Replaced(before, query.with, query.only);
    if (!text) return std::nullopt;
    replacement.after = std::move(*text);
    replacement.refusal = tr("The data are not understood.");
    return replacement;
  }
  const ReplacedData replaced = ReplaceInData(*data, before, query);
  replacement.after = replaced.shown;
  switch (replaced.outcome) {
    case ReplacedData::Outcome::Same:
      return std::nullopt;
    case ReplacedData::Outcome::AcrossStrings:
      replacement.refusal = tr("The hit goes over more than one string of the list.");
      return replacement;
    case ReplacedData::Outcome::NoNumber:
      replacement.refusal = tr("This is no number any more.");
      return replacement;
    case ReplacedData::Outcome::NoBytes:
      replacement.refusal = tr("These are no bytes any more.");
      return replacement;
    case ReplacedData::Outcome::Changed:
      break;
  }
  if (const std::optional<std::string> assignment = EncodeAssignment(replaced.data, coding_)) {
    replacement.stored = *assignment;
    replacement.refusal = RefusalOfCharacters(record.data, replacement.stored);
  } else {
    replacement.refusal = ReasonOf(FaultOf(replaced.data, coding_));
  }
  return replacement;
}

QString RegReplacer::ReasonOf(RegFault fault) {
  switch (fault) {
    case RegFault::NotInCodePage:
      return tr("The code page of this file does not have all of these characters.");
    case RegFault::EmptyString:
      return tr("An empty string would end the list.");
    case RegFault::OutOfRange:
      return tr("The number is too large for its type.");
    case RegFault::OnlyText:
      return tr("A value of this kind of file is one line of text.");
    default:
      return tr("The data cannot be written.");
  }
}

bool RegReplacer::Apply(const Replacement& replacement) {
  const std::size_t record = replacement.place.record;
  RegNode* node = EditedKeyAt(replacement.place);
  switch (replacement.field) {
    case SearchField::Name:
      document_.RenameValue(record, replacement.stored);
      return true;
    case SearchField::Data:
      if (IsWhole())
        document_.SetAssignment(record, replacement.stored);
      else
        document_.SetValueData(record, replacement.stored);
      return true;
    case SearchField::Comment:
      document_.SetComment(node, replacement.stored);
      return true;
    default:
      if (IsWhole())
        document_.RenameKey(node, replacement.stored);
      else
        document_.SetText(node, replacement.stored);
      return true;
  }
}

}  // namespace tme
