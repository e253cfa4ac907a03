// Sends one WM_COPYDATA to a window, as any program could: send_copy_data WINDOW DWDATA TEXT CBDATA
// CBDATA 0: as many bytes as the text has, and one. The text's bytes go as they are, then zeros.
// Ends with 0 when the message was dealt with, 1 when there was no such window, 3 on the wrong arguments.
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
  if (argc != 5) return 3;
  const auto window = reinterpret_cast<HWND>(std::strtoull(argv[1], nullptr, 10));
  std::string text = argv[3];
  const std::size_t asked = std::strtoul(argv[4], nullptr, 10);
  const std::size_t size = asked != 0 ? asked : text.size() + 1;
  text.resize(std::max(text.size(), size), '\0');
  COPYDATASTRUCT record{std::strtoul(argv[2], nullptr, 10), static_cast<DWORD>(size), text.data()};
  if (!IsWindow(window)) return 1;
  SendMessageA(window, WM_COPYDATA, reinterpret_cast<WPARAM>(GetModuleHandleA(nullptr)),
               reinterpret_cast<LPARAM>(&record));
  return 0;
}
