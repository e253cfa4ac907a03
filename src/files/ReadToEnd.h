#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <system_error>

#include "files/FileFailure.h"

namespace tme {

/// Puts at most `size` bytes at `place` and says in `count` how many; 0 at the end.
using ReadStep = std::function<std::error_code(char* place, std::size_t size, std::size_t& count)>;

/// Reads all that there is, at most kMaxFileBytes. expected: its size in bytes, as far as it is known; it may be
/// another by now. `bytes` is empty after a failure.
std::optional<FileFailure> ReadToEnd(const ReadStep& step, std::size_t expected, std::string& bytes);

}  // namespace tme
