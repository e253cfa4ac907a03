#pragma once

#include <string>
#include <string_view>

namespace tme {

/// The lines of a text in an order that depends on the lines alone, blank ones left out, for comparisons: a save sorts
/// sections and entries, so that otherwise more than what changed would differ. Not the order of a tree.
std::string SortedIni(std::string_view text);

}  // namespace tme
