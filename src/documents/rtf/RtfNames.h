#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tme::rtf {

/// What the number of a control word names.
enum class RtfName : std::uint8_t { Font, Color, Style, List, ListId, ListPicture, Author };

struct RtfNamed {
  RtfName name = RtfName::Font;
  std::int32_t number = 0;
};

/// Calls `take` for each control word of a part of a file that names something, groups in it included.
void ForEachName(std::string_view rtf, const std::function<void(const RtfNamed&)>& take);

/// The part with other numbers; without the control word where there is none.
using MapName = std::function<std::optional<std::int32_t>(const RtfNamed&)>;
std::string WithNames(std::string_view rtf, const MapName& map);

/// Makes a group with characters by their numbers say how many bytes stand behind each of them for other readers.
/// Behind the group's own word, which readers want first.
void SayUnicodeSkip(std::string& group, int skip);

}  // namespace tme::rtf
