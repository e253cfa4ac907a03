#include "windows/ini/IniReplacer.h"

#include "documents/ini/IniLine.h"
#include "documents/ini/IniSourceLine.h"
#include "windows/ini/IniSearch.h"

namespace tme {
namespace {

constexpr std::string_view kNoLine{"\r\n\0", 3};

IniNode* EditedNodeAt(const Replacement& replacement) {
  return const_cast<IniNode*>(static_cast<const IniNode*>(replacement.place.node));
}

}  // namespace

std::optional<Replacement> IniReplacer::Plan(const SearchPlace& place, SearchField field, const ReplaceQuery& query) {
  std::string before;
  ForEachFieldOf(tree_, *static_cast<const IniNode*>(place.node), [&](SearchField present, std::string_view text) {
    if (present == field) before = text;
  });
  std::optional<std::string> after = query.matcher.Replaced(before, query.with, query.only);
  if (!after || *after == before) return std::nullopt;
  const QString refusal = Refusal(field, before, *after);
  return Replacement{place, field, *after, *after, refusal};
}

QString IniReplacer::Refusal(SearchField field, const std::string& before, const std::string& after) {
  if (after.find_first_of(kNoLine) != std::string::npos) return tr("A line has no end within.");
  switch (field) {
    case SearchField::Section:
      return RefusalOfSection(before, after);
    case SearchField::Comment:
      if ((tree_.Holding() == Holding::Whole ? SourceKindOf(after) : KindOf(after)) == IniLine::Comment) return {};
      return tr("A comment begins with a semicolon.");
    case SearchField::Key:
      return RefusalOfKey(after);
    default:
      // The dialog of an entry would delete it.
      if (after.empty() && tree_.Holding() == Holding::ByRules) return tr("An entry needs a value.");
      return {};
  }
}

QString IniReplacer::RefusalOfSection(const std::string& before, const std::string& after) {
  if (TrimIniBlanks(after).empty()) return tr("A section needs a name.");
  if (SourceHeaderName('[' + after + ']') != after) return tr("The name of a section ends at its \"]\".");
  if (section_names_.empty())
    for (int row = 0; row < tree_.Root()->ChildCount(); ++row)
      if (const IniNode* child = tree_.Root()->Child(row); child->Tag() == IniTag::Section)
        section_names_.emplace(child->Text());
  if (section_names_.contains(after)) return tr("There is a section of this name already.");
  if (const auto old = section_names_.find(before); old != section_names_.end()) section_names_.erase(old);
  section_names_.insert(after);
  return {};
}

QString IniReplacer::RefusalOfKey(const std::string& after) const {
  if (TrimIniBlanks(after).empty()) return tr("An entry needs a key.");
  if (after.find('=') != std::string::npos) return tr("A key ends at its \"=\".");
  if (SourceKindOf(after) != IniLine::Entry) return tr("The line would no longer be an entry.");
  return {};
}

bool IniReplacer::Apply(const Replacement& replacement) {
  IniNode* node = EditedNodeAt(replacement);
  const bool has_value = node->Text().find('=') != std::string_view::npos;
  if (replacement.field == SearchField::Value)
    return tree_.SetEntry(node, std::string(tree_.KeyOf(*node)), replacement.stored) != nullptr;
  if (replacement.field == SearchField::Key && has_value)
    return tree_.SetEntry(node, replacement.stored, std::string(tree_.ValueOf(*node))) != nullptr;
  return tree_.SetText(node, replacement.stored);
}

}  // namespace tme
