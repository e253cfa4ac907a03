#pragma once

#include <cerrno>
#include <system_error>

#include "files/FileSteps.h"

/// Between the numbers of the system's calls and ours.
namespace tme::native {

inline std::error_code Error(int number) { return {number, std::generic_category()}; }
/// Of the call that failed just now.
inline std::error_code LastError() { return Error(errno); }
/// Of a call that returns 0 when all is well.
inline std::error_code ResultOf(int result) { return result == 0 ? std::error_code() : LastError(); }
inline int Descriptor(FileHandle handle) { return static_cast<int>(handle); }

}  // namespace tme::native
