// How the source looks, in light and dark palettes.
#include <QPalette>
#include <array>

#include "windows/tree/SourceView.h"

namespace tme {
namespace {

/// Of the highlight's colour in the background of marked lines.
constexpr double kMarkShare = 0.2;
constexpr int kHalfLight = 128;

/// By SourceStyle, but Plain; each has a contrast of 4.5 or more to its background, marked or not.
struct SourceColors {
  std::array<QRgb, kSourceStyles - 1> styles;
  QRgb fault;
};
constexpr SourceColors kOnLight{{0xFF3F6B1F, 0xFF0A4C98, 0xFFA3211B, 0xFF6B2C8F, 0xFF8A3B00}, 0xFFC42B1C};
constexpr SourceColors kOnDark{{0xFF9BCB7B, 0xFF8CC4FF, 0xFFFF9E94, 0xFFDDB8FF, 0xFFFFB87A}, 0xFFFF8A80};

int Bgr(const QColor& color) { return color.red() | color.green() << 8 | color.blue() << 16; }

QColor Mixed(const QColor& base, const QColor& other, double share) {
  const auto mix = [share](int from, int to) { return static_cast<int>(from + (to - from) * share); };
  return {mix(base.red(), other.red()), mix(base.green(), other.green()), mix(base.blue(), other.blue())};
}

}  // namespace

void SourceView::SetUpMarks() {
  Send(SCI_MARKERDEFINE, 0, SC_MARK_BACKGROUND);
  Send(SCI_INDICSETSTYLE, INDIC_CONTAINER, INDIC_SQUIGGLE);
  ShowLineNumbers(true);
}

void SourceView::ApplyColors() {
  TextPad::ApplyColors();
  const auto of_palette = [this](QPalette::ColorRole role) { return palette().color(QPalette::Active, role); };
  const QColor base = of_palette(QPalette::Base);
  const SourceColors& colors = qGray(base.rgb()) < kHalfLight ? kOnDark : kOnLight;
  for (std::size_t style = 1; style < kSourceStyles; ++style)
    Send(SCI_STYLESETFORE, style, Bgr(QColor::fromRgb(colors.styles[style - 1])));
  for (const SourceStyle style : {SourceStyle::Section, SourceStyle::Deletion})
    Send(SCI_STYLESETBOLD, static_cast<std::uintptr_t>(style), 1);
  Send(SCI_MARKERSETBACK, 0, Bgr(Mixed(base, of_palette(QPalette::Highlight), kMarkShare)));
  Send(SCI_INDICSETFORE, INDIC_CONTAINER, Bgr(QColor::fromRgb(colors.fault)));
}

}  // namespace tme
