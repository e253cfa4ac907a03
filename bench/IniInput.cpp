#include "IniInput.h"

#include <array>
#include <string_view>

#include "Shuffle.h"

namespace tme {

namespace {

constexpr std::array<std::string_view, 16> kSubjects = {"Window", "Font", "Printer", "Colour", "Default", "Device",
                                                        "Last",   "Menu", "net",     "driver", "Sound",   "Show",
                                                        "Auto",   "keyb", "Cache",   "User"};
constexpr std::array<std::string_view, 16> kAspects = {"Size",   "Name",  "Path",  "Width", "Mode", "Port",
                                                       "Height", "Delay", "File",  "Left",  "Top",  "Enabled",
                                                       "Type",   "Bold",  "Count", "Order"};
constexpr std::array<std::string_view, 8> kValues = {
    "1",  "C:\\WINDOWS\\SYSTEM\\vga.drv", "255 255 255", "MS Sans Serif,8",
    "no", "D:\\DATA\\letter.doc",         "0x0000A000",  "Generic / Text Only on LPT1"};

}  // namespace

std::string MakeIniInput(std::size_t sections, std::size_t entries_per_section) {
  Shuffle shuffle;
  std::string text;
  text.reserve(sections * (entries_per_section + 1) * 40);
  for (std::size_t section = 0; section < sections; ++section) {
    text.append("[").append(shuffle.Pick(kSubjects)).append(" ").append(shuffle.Pick(kAspects));
    text.append(" ").append(std::to_string(section)).append("]\r\n");
    for (std::size_t entry = 0; entry < entries_per_section; ++entry) {
      text.append(shuffle.Pick(kSubjects)).append(shuffle.Pick(kAspects)).append(std::to_string(entry)).append("=");
      text.append(shuffle.Pick(kValues)).append(",").append(shuffle.Number(1000)).append("\r\n");
    }
  }
  return text;
}

}  // namespace tme
