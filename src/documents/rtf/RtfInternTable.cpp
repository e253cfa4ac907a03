#include "documents/rtf/RtfInternTable.h"

namespace tme::rtf {

std::size_t HashOf(const CharFormat& format) {
  std::size_t hash = MixHash(format.font, format.half_points);
  hash = MixHash(hash, (std::uint64_t{format.color} << 32) | format.background);
  hash = MixHash(hash, (std::uint64_t{format.field} << 32) | format.extra);
  hash = MixHash(hash, std::uint64_t{format.shading} << 32 | std::uint64_t{format.said} << 16 |
                           static_cast<std::uint16_t>(format.raise));
  const auto bits = static_cast<unsigned>(format.bold) | static_cast<unsigned>(format.italic) << 1 |
                    static_cast<unsigned>(format.hidden) << 2 | static_cast<unsigned>(format.strike) << 4 |
                    static_cast<unsigned>(format.underline) << 8 | static_cast<unsigned>(format.script) << 16 |
                    static_cast<unsigned>(format.capitals) << 20 | static_cast<unsigned>(format.text_class) << 24 |
                    static_cast<unsigned>(format.font_class) << 26;
  return MixHash(hash, bits);
}

std::size_t HashOf(const ParagraphFormat& format) {
  std::size_t hash = 0;
  for (const std::int32_t number :
       {format.left, format.right, format.first_line, format.space_before, format.space_after, format.line_spacing,
        format.list_id, format.list_start, static_cast<std::int32_t>(format.extra),
        static_cast<std::int32_t>(format.list_group)}) {
    hash = MixHash(hash, static_cast<std::uint32_t>(number));
  }
  hash = MixHash(hash, static_cast<std::uint64_t>(format.alignment) | static_cast<std::uint64_t>(format.list) << 8 |
                           std::uint64_t{format.list_level} << 16 | std::uint64_t{format.line_multiple} << 24 |
                           std::uint64_t{format.page_break_before} << 25 | std::uint64_t{format.said} << 32);
  for (const TabStop& tab : format.tabs) {
    hash = MixHash(hash, static_cast<std::uint32_t>(tab.position) | static_cast<std::uint64_t>(tab.kind) << 32 |
                             static_cast<std::uint64_t>(tab.leader) << 40);
  }
  return hash;
}

}  // namespace tme::rtf
