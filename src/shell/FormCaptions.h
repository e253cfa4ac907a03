#pragma once

#include <QString>
#include <array>
#include <vector>

#include "documents/SourceLines.h"
#include "files/TextEncoding.h"

namespace tme {

/// The encodings that a user can choose: the usual ones, and the present one where it is none of them.
std::vector<TextEncoding> OfferedEncodings(TextEncoding present);
/// The line ends that all lines can get.
inline constexpr std::array kOfferedLineEnds{LineEnds::CrLf, LineEnds::Lf};

/// As an item of a list or a menu.
QString CaptionOf(TextEncoding encoding);
QString CaptionOf(LineEnds ends);

}  // namespace tme
