#include "windows/rich/RtfFormatStore.h"

#include <QString>
#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "documents/rtf/RtfCharacterWords.h"

namespace tme {
namespace {

/// From `number` on; a font that is in no table keeps its own.
int FreeNumber(int number, const rtf::RtfDocument& document) {
  std::vector<bool> is_missing(rtf::kMaxFontNumber + 1);
  for (const rtf::CharFormat& format : document.char_formats)
    if (rtf::IsMissingFont(format.font)) is_missing[format.font - rtf::kMissingFont] = true;
  while (number <= rtf::kMaxFontNumber && is_missing[static_cast<std::size_t>(number)]) ++number;
  return number;
}

}  // namespace

RtfFormatStore::RtfFormatStore(RtfStore& store) : document_(store.document) {
  const rtf::RtfDocument empty = EmptyRtfDocument();
  if (document_.fonts.empty()) document_.fonts = empty.fonts;
  if (document_.colors.empty()) document_.colors = empty.colors;
  if (document_.char_formats.empty()) document_.char_formats = empty.char_formats;
  if (document_.paragraph_formats.empty()) document_.paragraph_formats = empty.paragraph_formats;
  for (rtf::CharFormat& format : document_.char_formats)
    if (format.font >= document_.fonts.size() && !rtf::IsMissingFont(format.font)) format.font = DefaultFont();
  char_formats_.Learn(document_.char_formats);
  paragraph_formats_.Learn(document_.paragraph_formats);
}

std::uint32_t RtfFormatStore::DefaultFont() const {
  const auto found = std::ranges::find(document_.fonts, document_.default_font, &rtf::Font::number);
  return found == document_.fonts.end() ? 0U : static_cast<std::uint32_t>(found - document_.fonts.begin());
}

std::uint32_t RtfFormatStore::Add(const rtf::Font& font) {
  auto& fonts = document_.fonts;
  const QString name = QString::fromStdString(font.name);
  int free_number = 0;
  for (std::size_t index = 0; index < fonts.size(); ++index) {
    if (fonts[index].charset == font.charset &&
        name.compare(QString::fromStdString(fonts[index].name), Qt::CaseInsensitive) == 0)
      return static_cast<std::uint32_t>(index);
    free_number = std::max(free_number, fonts[index].number + 1);
  }
  fonts.push_back(font);
  fonts.back().number = FreeNumber(free_number, document_);
  return static_cast<std::uint32_t>(fonts.size() - 1);
}

std::uint32_t RtfFormatStore::AddColor(std::uint32_t rgb) {
  auto& colors = document_.colors;
  const auto found = std::find(colors.begin() + 1, colors.end(), rgb);
  if (found != colors.end()) return static_cast<std::uint32_t>(found - colors.begin());
  colors.push_back(rgb);
  return static_cast<std::uint32_t>(colors.size() - 1);
}

std::uint32_t RtfFormatStore::WithoutWord(std::uint32_t extra, std::string_view name) {
  const std::string* words = rtf::EntryOf(document_.extras, extra);
  if (!words) return 0;
  const std::string left = rtf::WithoutCharacterWord(*words, name);
  if (left == *words || left.empty()) return left.empty() ? 0 : extra;
  const auto found = std::ranges::find(document_.extras, left);
  const auto index = found - document_.extras.begin();
  if (found == document_.extras.end()) document_.extras.push_back(left);
  return static_cast<std::uint32_t>(index + 1);
}

std::uint32_t RtfFormatStore::AddLink(std::string url) {
  document_.fields.emplace_back().url = std::move(url);
  return static_cast<std::uint32_t>(document_.fields.size());
}

}  // namespace tme
