#pragma once

#include <string>
#include <string_view>

namespace tme {

/// Returns the lines of a text, blank ones left out, in an order that depends on the lines alone. Texts are compared
/// so, because a save sorts sections and entries. It is not the order of a tree.
std::string SortedIni(std::string_view text);

}  // namespace tme
