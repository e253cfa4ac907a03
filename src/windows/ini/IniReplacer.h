#pragma once

#include <QCoreApplication>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "documents/ini/IniTree.h"
#include "windows/tree/Replacer.h"

namespace tme {

/// Replaces in an INI document. What would be read as something else is refused, and the name of another section or of
/// another key in the section: whoever reads the file compares them without their case.
class IniReplacer final : public Replacer {
  Q_DECLARE_TR_FUNCTIONS(IniReplacer)

 public:
  explicit IniReplacer(IniTree& tree) : tree_(tree) {}

  std::optional<Replacement> Plan(const SearchPlace& place, SearchField field, const ReplaceQuery& query) override;
  QString Check(const Replacement& replacement) override;
  bool Apply(const Replacement& replacement) override;

 private:
  /// As they are compared.
  using Names = std::unordered_multiset<std::string>;

  QString RefusalOfSection(const IniNode& node, const std::string& after);
  QString RefusalOfKey(const IniNode& node, const std::string& after);
  /// False when another node of this kind beside it has the name.
  bool TakeName(const IniNode& node, std::string_view after);
  std::string_view NameOf(const IniNode& node) const;

  IniTree& tree_;
  struct Taken {
    Names sections, keys;
  };
  /// With those of the plans, by the parent.
  std::unordered_map<const IniNode*, Taken> names_;
};

}  // namespace tme
