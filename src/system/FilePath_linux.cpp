#include <array>
#include <string>

#include "base/Utf8.h"
#include "system/FilePath.h"

namespace tme {
namespace {

/// What QString has for a byte of a name that is no UTF-8: a lone surrogate, which no other name has.
constexpr char32_t kFirstStrayByte = 0xDC80;
constexpr char32_t kLastStrayByte = 0xDCFF;

}  // namespace

std::filesystem::path FilePath(const QString& path) {
  std::string name;
  name.reserve(static_cast<std::size_t>(path.size()));
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  for (qsizetype at = 0; at < path.size(); ++at) {
    const QChar unit = path[at];
    const bool is_pair = unit.isHighSurrogate() && at + 1 < path.size() && path[at + 1].isLowSurrogate();
    const char32_t character = is_pair ? QChar::surrogateToUcs4(unit, path[++at]) : unit.unicode();
    if (character >= kFirstStrayByte && character <= kLastStrayByte)
      name += static_cast<char>(character - 0xDC00);
    else
      name.append(bytes.data(), utf8::PutCharacter(character, bytes.data()));
  }
  return name;
}

}  // namespace tme
