#include "files/ReadToEnd.h"

#include <algorithm>
#include <exception>

#include "files/FileBytes.h"

namespace tme {

std::optional<FileFailure> ReadToEnd(const ReadStep& step, std::size_t expected, std::string& bytes) {
  constexpr std::size_t kLeastRoom = std::size_t{1} << 16;
  std::error_code error;
  bytes.clear();
  try {
    // The end of what has the expected size shows in one call more, without growing.
    bytes.resize(expected > 0 ? expected + 1 : kLeastRoom);
    for (std::size_t used = 0, count = 1; count > 0 && !error; used += count) {
      if (used == bytes.size()) bytes.resize(std::min<std::size_t>(2 * used, kMaxFileBytes + 1));
      error = step(bytes.data() + used, bytes.size() - used, count);
      if (error) count = 0;
      if (count == 0) bytes.resize(used);
      if (used + count > kMaxFileBytes) error = std::make_error_code(std::errc::file_too_large);
    }
  } catch (const std::exception&) {  // bad_alloc, length_error
    error = std::make_error_code(std::errc::not_enough_memory);
  }
  if (!error) return std::nullopt;
  std::string().swap(bytes);
  return FailureOf(error);
}

}  // namespace tme
