#pragma once

#include <cstdint>

#include "documents/reg/RegData.h"

namespace tme {

/// The data as a value of another type: in that type's own form where it keeps its meaning (texts and numbers written
/// out, lists and lines), else as its bytes. What is empty becomes what is empty there.
RegData ConvertRegData(const RegData& data, std::uint32_t to, const RegCoding& coding);

/// What a dialog begins with for a new value: no text, no strings, 0, no bytes.
RegData EmptyRegData(std::uint32_t type);

/// The same value as bytes; its text's bytes are UTF-16 where the code page does not have it.
RegData AsBytes(const RegData& data, const RegCoding& coding);

/// The largest number that a type of numbers holds.
constexpr std::uint64_t LargestNumberOf(std::uint32_t type) {
  return type == reg_type::kQword ? UINT64_MAX : UINT32_MAX;
}

}  // namespace tme
