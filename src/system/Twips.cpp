#include "system/Twips.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace tme {
namespace {

double UnitsPerInch() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen ? screen->logicalDotsPerInchY() : 96;
}

}  // namespace

int TwipsToPixels(int twips, double dpi) { return static_cast<int>(std::lround(twips * dpi / kTwipsPerInch)); }

int PixelsToTwips(int pixels, double dpi) { return static_cast<int>(std::lround(pixels * kTwipsPerInch / dpi)); }

double TwipsToUnits(int twips) { return twips * UnitsPerInch() / kTwipsPerInch; }

int UnitsToTwips(double units) { return static_cast<int>(std::lround(units * kTwipsPerInch / UnitsPerInch())); }

}  // namespace tme
