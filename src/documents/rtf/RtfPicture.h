#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tme::rtf {

/// What the reader finds out of a group that holds a picture and is kept as it came.
struct PictureGroup {
  std::string bytes;       ///< of a PNG or JPEG file; empty for any other picture
  std::int32_t width = 0;  ///< twips, after scaling; 0: the picture's own
  std::int32_t height = 0;
  std::string_view label = "Picture";  ///< what it is, for people
  bool is_there = false;
  bool too_large = false;
};
/// The first \pict of the group.
PictureGroup ReadPicture(std::string_view group);

/// The group of a picture that was inserted here: bytes of a PNG or JPEG file. width, height: twips; 0: the picture's
/// own, a pixel being 1/96 inch.
std::string RtfOfPicture(std::string_view bytes, std::int32_t width, std::int32_t height);

}  // namespace tme::rtf
