#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "documents/reg/RegDocument.h"

namespace tme {

enum class RegValueColumn : std::uint8_t { Name, Type, Data };

/// Returns the order in which these records of a document stand by a column: places in `records`. Texts compare without
/// regard to letter case (CaseFold) up to their first 512 bytes; data are numbers by size, then texts, then bytes, then
/// what is none of these. Equal ones keep their order. A million records take well under a second.
std::vector<std::uint32_t> OrderOfValues(const RegDocument& document, std::span<const std::size_t> records,
                                         RegValueColumn column, const RegCoding& coding);

/// Whole holding: the order of one key's records in the file, in which lines may have come between others. Empty where
/// that is the order in which they are given. Linear in the lines of the key, and else in the keys of the document.
std::vector<std::uint32_t> OrderInFile(const RegDocument& document, std::span<const std::size_t> records);

}  // namespace tme
