#include "windows/reg/RegValueText.h"

#include <QLocale>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegHex.h"
#include "files/CodePage.h"
#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr std::size_t kMostDecoded = std::size_t{1} << 20;  // bytes of the file
constexpr std::size_t kShownBytes = 1024;
constexpr std::size_t kShownOfMore = 3 * 64;

/// The first bytes of hex data that are too long to decode for a row.
std::optional<RegData> StartOfLongHex(std::string_view assignment) {
  const RegMark mark = RegMarkOf(assignment);
  if (mark.form != RegForm::Hex) return std::nullopt;
  std::string_view start = assignment.substr(mark.size, kShownOfMore);
  start = start.substr(0, start.find_last_of(',') + 1);
  std::optional<std::string> bytes = BytesOfHex(start);
  if (!bytes) return std::nullopt;
  return RegData{.type = mark.type,
                 .content = RegContent::Bytes,
                 .text = {},
                 .strings = {},
                 .number = 0,
                 .bytes = std::move(*bytes)};
}

}  // namespace

RegCoding CodingOf(const RegDocument& document) { return {document.Version(), CodePageToUtf8, Utf8ToCodePage}; }

QString NameOfValue(const RegValueRecord& record) {
  return record.name.empty() ? RegValueText::tr("(Default)") : DisplayText(record.name);
}

RegValueText TextOfValue(const RegValueRecord& record, const RegCoding& coding) {
  RegValueText text;
  text.name = NameOfValue(record);
  if (record.data == "-" && coding.version != RegVersion::Regedit) {
    text.type = RegValueText::tr("Deletion");
    text.data = RegValueText::tr("(deleted when the file is imported)");
    text.picture = RegValueText::Picture::Deletion;
    return text;
  }
  const bool is_long = record.data.size() > kMostDecoded && record.type == RegType::Hex;
  const std::optional<RegData> decoded = is_long ? StartOfLongHex(record.data) : DecodeAssignment(record.data, coding);
  if (!decoded) {
    text.data = DisplayText(record.data);
    return text;
  }
  text.type = QString::fromStdString(RegTypeName(decoded->type));
  text.data = DisplayText(DisplayOf(*decoded, kShownBytes));
  if (is_long) text.data += u" …"_s;
  if (decoded->content == RegContent::Number) text.picture = RegValueText::Picture::Number;
  if (decoded->content == RegContent::Bytes) text.picture = RegValueText::Picture::Bytes;
  return text;
}

}  // namespace tme
