#pragma once

#include <cstdint>
#include <string_view>

namespace tme {

/// How names of keys are compared.
enum class RegLetters : std::uint8_t { Exact, AnyCase };

/// Whether two names are the same but for letter case (CaseFold). Bytes that are no UTF-8 are themselves.
bool SameRegName(std::string_view one, std::string_view other);
/// Equal for the same names.
std::uint32_t HashOfRegName(std::string_view name);

}  // namespace tme
