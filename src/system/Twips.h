#pragma once

namespace tme {

/// 1440 twips make an inch (twentieth of a point).
inline constexpr int kTwipsPerInch = 1440;

/// dpi: the screen's logical dots per inch (96 gives 15 twips a pixel). Rounded to nearest.
int TwipsToPixels(int twips, double dpi);
int PixelsToTwips(int pixels, double dpi);

/// Twips as lengths of text formats (dots of the primary screen), which layouts scale to the device's resolution.
double TwipsToUnits(int twips);
int UnitsToTwips(double units);

}  // namespace tme
