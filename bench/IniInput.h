#pragma once

#include <cstddef>
#include <string>

namespace tme {

/// INI text with CR LF line ends: neither sections nor entries in order, keys unique within their section, about 33
/// bytes a line. The same on every run and system.
std::string MakeIniInput(std::size_t sections, std::size_t entries_per_section);

}  // namespace tme
