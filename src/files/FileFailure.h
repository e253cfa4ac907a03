#pragma once

#include <string>
#include <system_error>

namespace tme {

/// Why a file could not be read or written. Reasons of the system are in its language; ours are English and are not
/// translated on this floor.
struct FileFailure {
  std::string reason;
  /// A write got no temporary file or could not put it in place, because the folder or who holds the file does not
  /// allow it or a new file would have other rights or links, and changed nothing; WriteFileInPlace may still work.
  bool folder_refused = false;
  /// A write in place failed, and so did putting the old bytes back: the file holds neither these nor the new ones. Or
  /// the system took the old file away and could not put the new one there, which is left beside it then (Windows).
  bool file_damaged = false;
};

/// Gives the reason in the system's words ("Permission denied"), without a line end.
FileFailure FailureOf(const std::error_code& error);

}  // namespace tme
