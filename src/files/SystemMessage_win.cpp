#include "files/SystemMessage_win.h"

#include <windows.h>

#include <array>
#include <string_view>

namespace tme {

std::string SystemMessage(unsigned long error) {
  constexpr DWORD kFlags =
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;  // no line breaks
  std::array<wchar_t, 1024> words;
  const DWORD size =
      ::FormatMessageW(kFlags, nullptr, error, 0, words.data(), static_cast<DWORD>(words.size()), nullptr);
  std::array<char, 3 * words.size()> text;
  const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, words.data(), static_cast<int>(size), text.data(),
                                          static_cast<int>(text.size()), nullptr, nullptr);
  const std::string_view said(text.data(), static_cast<std::size_t>(bytes));
  const std::size_t end = said.find_last_not_of(". \r\n");
  if (end == said.npos) return "System error " + std::to_string(error);
  return std::string(said.substr(0, end + 1));
}

}  // namespace tme
