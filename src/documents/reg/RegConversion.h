#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/reg/RegData.h"

namespace tme {

class RegDocument;

/// A value that cannot be said in another version of registry files.
struct RegUnsayable {
  /// From 1, of the document that was looked at.
  std::uint64_t line = 0;
  std::string name;
  RegFault fault = RegFault::None;
};

/// What stands behind "=" in another version: a text in hex is encoded anew, proper or not, all else stays, links too.
/// Null, and why in fault, when it cannot. Neither version is REGEDIT. from, to: with the functions of the code page.
std::optional<std::string> ConvertedAssignment(std::string_view assignment, const RegCoding& from, const RegCoding& to,
                                               RegFault& fault);

/// Lists the values of a whole document that RegDocument::ConvertTo would leave as they are because the target has no
/// bytes for them. coding: the functions; its version does not count. Linear.
std::vector<RegUnsayable> UnsayableIn(const RegDocument& document, RegVersion target, const RegCoding& coding);

/// The text of a REGEDIT document as a REGEDIT4 file: a block for each line.
std::string WithoutPairs(const RegDocument& document);

}  // namespace tme
