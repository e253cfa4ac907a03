#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "documents/reg/RegData.h"
#include "windows/tree/Replacer.h"

namespace tme {

/// Decoded data in which something was replaced.
struct ReplacedData {
  enum class Outcome : std::uint8_t { Same, Changed, AcrossStrings, NoNumber, NoBytes };
  Outcome outcome = Outcome::Same;
  /// Where it is Changed.
  RegData data;
  /// As DisplayOf would show it, or what it would be if it could.
  std::string shown;
};

/// before: what DisplayOf gives for the data, in which the query has its positions.
ReplacedData ReplaceInData(const RegData& data, std::string_view before, const ReplaceQuery& query);

}  // namespace tme
