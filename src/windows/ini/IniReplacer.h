#pragma once

#include <QCoreApplication>
#include <string>
#include <unordered_set>

#include "documents/ini/IniTree.h"
#include "windows/tree/Replacer.h"

namespace tme {

/// Replaces in an INI document. What would be read as something else is refused, and a section of a name that another
/// one has.
class IniReplacer final : public Replacer {
  Q_DECLARE_TR_FUNCTIONS(IniReplacer)

 public:
  explicit IniReplacer(IniTree& tree) : tree_(tree) {}

  std::optional<Replacement> Plan(const SearchPlace& place, SearchField field, const ReplaceQuery& query) override;
  bool Apply(const Replacement& replacement) override;

 private:
  QString Refusal(SearchField field, const std::string& before, const std::string& after);
  QString RefusalOfSection(const std::string& before, const std::string& after);
  QString RefusalOfKey(const std::string& after) const;

  IniTree& tree_;
  /// Of the sections, with those of the plans; empty until one is asked for.
  std::unordered_multiset<std::string> section_names_;
};

}  // namespace tme
