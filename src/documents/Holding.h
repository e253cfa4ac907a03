#pragma once

#include <cstdint>

namespace tme {

/// How an INI or registry document is held.
enum class Holding : std::uint8_t {
  ByRules,  ///< as the system always did: what its rules do not take is left out, and the rest is put in their form
  Whole,    ///< every byte of the file stays, in its order, and an edit changes its own lines alone
};

}  // namespace tme
