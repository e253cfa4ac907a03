#pragma once

#include <string>
#include <string_view>

namespace tme::rtf {

/// Where a HYPERLINK field leads, with "#" and the place in it; empty for other fields. `instruction`: the text of its
/// \fldinst group.
std::string UrlOfInstruction(std::string_view instruction);

}  // namespace tme::rtf
