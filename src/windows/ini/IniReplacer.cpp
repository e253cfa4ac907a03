#include "windows/ini/IniReplacer.h"

#include "base/CaseFold.h"
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
  Replacement replacement{place, field, *after, *after, {}};
  replacement.refusal = Check(replacement);
  return replacement;
}

QString IniReplacer::Check(const Replacement& replacement) {
  const std::string& after = replacement.stored;
  const IniNode& node = *EditedNodeAt(replacement);
  if (after.find_first_of(kNoLine) != std::string::npos) return tr("A line has no end within.");
  switch (replacement.field) {
    case SearchField::Section:
      return RefusalOfSection(node, after);
    case SearchField::Comment:
      if ((tree_.Holding() == Holding::Whole ? SourceKindOf(after) : KindOf(after)) == IniLine::Comment) return {};
      return tr("A comment begins with a semicolon.");
    case SearchField::Key:
      return RefusalOfKey(node, after);
    default:
      // The dialog of an entry would delete it.
      if (after.empty() && tree_.Holding() == Holding::ByRules) return tr("An entry needs a value.");
      if (TrimIniBlanks(after) != after) return tr("A value has no blanks at its ends, but within quotes.");
      return {};
  }
}

std::string_view IniReplacer::NameOf(const IniNode& node) const {
  return node.Tag() == IniTag::Section ? node.Text() : TrimIniBlanks(tree_.KeyOf(node));
}

bool IniReplacer::TakeName(const IniNode& node, std::string_view after) {
  const auto [at, is_new] = names_.try_emplace(node.Parent());
  if (is_new) {
    for (int row = 0; row < node.Parent()->ChildCount(); ++row) {
      const IniNode& child = *node.Parent()->Child(row);
      if (child.Tag() == IniTag::Section) at->second.sections.insert(FoldedCase(NameOf(child)));
      if (child.Tag() == IniTag::Value) at->second.keys.insert(FoldedCase(NameOf(child)));
    }
  }
  Names& names = node.Tag() == IniTag::Section ? at->second.sections : at->second.keys;
  const std::string old_name = FoldedCase(NameOf(node)), name = FoldedCase(after);
  if (name == old_name) return true;
  if (names.contains(name)) return false;
  if (const auto old = names.find(old_name); old != names.end()) names.erase(old);
  names.insert(name);
  return true;
}

QString IniReplacer::RefusalOfSection(const IniNode& node, const std::string& after) {
  if (TrimIniBlanks(after).empty()) return tr("A section needs a name.");
  if (SourceHeaderName('[' + after + ']') != after) return tr("The name of a section ends at its \"]\".");
  return TakeName(node, after) ? QString() : tr("There is a section of this name already.");
}

QString IniReplacer::RefusalOfKey(const IniNode& node, const std::string& after) {
  if (TrimIniBlanks(after).empty()) return tr("An entry needs a key.");
  if (after.find('=') != std::string::npos) return tr("A key ends at its \"=\".");
  if (SourceKindOf(after) != IniLine::Entry) return tr("The line would no longer be an entry.");
  if (!TakeName(node, TrimIniBlanks(after))) return tr("The section has a key of this name already.");
  return {};
}

bool IniReplacer::Apply(const Replacement& replacement) {
  IniNode* node = EditedNodeAt(replacement);
  if (node->Tag() == IniTag::Section && replacement.field == SearchField::Comment)
    return tree_.SetHeaderComment(node, replacement.stored);
  const bool has_value = node->Text().find('=') != std::string_view::npos;
  if (replacement.field == SearchField::Value)
    return tree_.SetEntry(node, std::string(tree_.KeyOf(*node)), replacement.stored) != nullptr;
  if (replacement.field == SearchField::Key && has_value)
    return tree_.SetEntry(node, replacement.stored, std::string(tree_.ValueOf(*node))) != nullptr;
  return tree_.SetText(node, replacement.stored);
}

}  // namespace tme
