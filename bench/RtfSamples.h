#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace tme {

/// Rich text of shapes that take other ways through the reader, the view and a save than a letter does.
struct RtfSample {
  const char* name;
  std::string (*make)();  ///< a whole file
};

/// Files of about 20 MB, or of so many parts of one kind as no letter has.
std::span<const RtfSample> RtfSamples();

}  // namespace tme
