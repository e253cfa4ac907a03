#include "documents/reg/RegValueConflict.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "documents/reg/RegKeyWalk.h"

namespace tme {
namespace {

/// The names of values by the name of their key.
using NamesOfKeys = std::unordered_map<std::string_view, std::unordered_set<std::string_view>>;

std::optional<std::string> FirstOf(const RegDocument& document, const NamesOfKeys& names) {
  if (names.empty()) return std::nullopt;
  const RegNode* owner = nullptr;
  auto of_owner = names.end();
  for (const RegValueRecord& value : document.Values()) {
    if (value.owner != owner) of_owner = names.find(value.owner->Text());
    owner = value.owner;
    if (of_owner != names.end() && of_owner->second.contains(value.name)) return std::string(value.name);
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> ValueInTheWay(const RegDocument& document, const RegDocument& from,
                                         std::span<RegNode* const> nodes) {
  NamesOfKeys names;
  const auto enter = [&](const RegNode& node) {
    from.ForEachValueOf(&node, [&](const RegValueRecord& value) {
      if (!value.deleted) names[node.Text()].insert(value.name);
    });
    return true;
  };
  for (const RegNode* node : nodes) WalkKeys(*node, enter);
  return FirstOf(document, names);
}

std::optional<std::string> ValueInTheWay(const RegDocument& document, const RegNode& key, const RegDocument& from,
                                         std::span<const std::size_t> records) {
  NamesOfKeys names;
  for (const std::size_t record : records)
    if (const RegValueRecord& value = from.Values()[record]; !value.deleted) names[key.Text()].insert(value.name);
  return FirstOf(document, names);
}

}  // namespace tme
