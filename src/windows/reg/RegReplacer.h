#pragma once

#include <QCoreApplication>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "documents/reg/RegData.h"
#include "documents/reg/RegDocument.h"
#include "windows/tree/Replacer.h"

namespace tme {

/// The characters that a document's file has.
enum class RegCharacters : std::uint8_t { Any, OfCodePage };

/// Replaces in a registry document. Data of a whole document are encoded again: texts, each string of a list, numbers
/// and bytes as they are shown. What they no longer would be is refused, and names that another key or value has.
class RegReplacer final : public Replacer {
  Q_DECLARE_TR_FUNCTIONS(RegReplacer)

 public:
  explicit RegReplacer(RegDocument& document, RegCharacters characters = RegCharacters::Any);

  std::optional<Replacement> Plan(const SearchPlace& place, SearchField field, const ReplaceQuery& query) override;
  QString Check(const Replacement& replacement) override;
  bool Apply(const Replacement& replacement) override;

 private:
  /// As they are compared.
  using Names = std::unordered_multiset<std::string>;

  bool IsWhole() const { return document_.HeldAs() == Holding::Whole; }
  /// Where a text gets characters that the file does not have, without becoming another one.
  QString RefusalOfCharacters(std::string_view before, std::string_view after) const;
  QString RefusalOfKey(const RegNode& key, const std::string& after);
  QString RefusalOfName(const RegValueRecord& record, const std::string& after);
  /// By the rules: whether two values of one name would come together.
  bool SharesValues(const RegNode& key, const std::string& after);
  /// False when the name is another's.
  static bool TakeName(Names& names, const std::string& before, const std::string& after);
  Names& ValueNamesOf(const RegNode& key);
  /// By the rules: those of all keys with this last component, with those of the plans.
  Names& NamesOfComponent(std::string_view component);
  /// As names are compared: by the rules they are themselves.
  std::string Comparable(std::string_view name) const;
  std::optional<Replacement> PlanData(const SearchPlace& place, const ReplaceQuery& query) const;
  std::optional<Replacement> PlanDecoded(const SearchPlace& place, const ReplaceQuery& query) const;
  static QString RefusalOfText(const RegValueRecord& record, const std::string& after);
  static QString RefusalOfPath();
  static QString ReasonOf(RegFault fault);

  RegDocument& document_;
  const RegCoding coding_;
  const RegCharacters characters_;
  /// Of keys, with those of the plans, by the parent.
  std::unordered_map<const RegNode*, Names> key_names_;
  /// By the rules, the keys with values by their last components.
  std::unordered_map<std::string_view, std::vector<const RegNode*>> owners_;
  /// Of values, with those of the plans, by what they may not share them in.
  std::unordered_map<std::string, Names> value_names_;
};

}  // namespace tme
