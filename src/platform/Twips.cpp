#include "platform/Twips.h"

#include <cmath>

namespace tme {

int TwipsToPixels(int twips, double dpi) { return static_cast<int>(std::lround(twips * dpi / kTwipsPerInch)); }

int PixelsToTwips(int pixels, double dpi) { return static_cast<int>(std::lround(pixels * kTwipsPerInch / dpi)); }

}  // namespace tme
