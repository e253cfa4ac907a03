#pragma once

#include <string>

namespace tme {

/// What an error number (GetLastError, or an HRESULT) means in the system's words: UTF-8, one line, no full stop.
std::string SystemMessage(unsigned long error);

}  // namespace tme
