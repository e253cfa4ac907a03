#include "RtfInput.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "Shuffle.h"

namespace tme {

namespace {

constexpr std::string_view kHeader =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1033{\\fonttbl{\\f0\\froman\\fcharset0 Times New Roman;}"
    "{\\f1\\fswiss\\fcharset0 Arial;}{\\f2\\fmodern\\fcharset0 Courier New;}}\r\n"
    "{\\colortbl;\\red0\\green0\\blue0;\\red192\\green0\\blue0;\\red0\\green0\\blue192;}\r\n"
    "\\paperw11906\\paperh16838\\margl1417\\margr1417\r\n";
constexpr std::array<std::string_view, 24> kWords = {"the",     "letter",   "of",       "and",    "window", "to",
                                                     "machine", "a",        "paper",    "in",     "every",  "with",
                                                     "light",   "river",    "question", "answer", "before", "garden",
                                                     "for",     "tamarind", "tree",     "over",   "house",  "is"};
constexpr std::array<std::string_view, 6> kAccented = {
    "caf\\'e9", "\\'fcber", "na\\'efve", "\\u8364\\'80 12", "\\ldblquote so\\rdblquote ", "fa\\'e7ade"};
constexpr std::array<std::string_view, 7> kLooks = {"\\b ",       "\\i ",   "\\ul ",        "\\f1\\fs20 ",
                                                    "\\f2\\cf2 ", "\\cf3 ", "\\b\\i\\fs28 "};

void AppendWords(std::string& text, Shuffle& shuffle, std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) {
    text.append(shuffle.Below(30) == 0 ? shuffle.Pick(kAccented) : shuffle.Pick(kWords)).append(" ");
  }
}

void AppendParagraph(std::string& text, Shuffle& shuffle) {
  const std::uint32_t kind = shuffle.Below(20);
  if (kind == 0) {
    text.append("\\pard\\keepn\\qc\\sb240\\sa120\\f1\\fs32\\b ");
  } else if (kind < 4) {
    text.append(
        "\\pard{\\pntext\\f0\\'95\\tab}{\\*\\pn\\pnlvlblt\\pnf0\\pnindent0{\\pntxtb\\'95}}\\fi-360\\li720 "
        "\\plain\\f0\\fs24 ");
  } else {
    text.append("\\pard\\qj\\sa120\\plain\\f0\\fs24 ");
  }
  const std::uint32_t stretches = kind < 4 ? 1 : 1 + shuffle.Below(8);
  for (std::uint32_t i = 0; i < stretches; ++i) {
    AppendWords(text, shuffle, 4 + shuffle.Below(16));
    text.append("{").append(shuffle.Pick(kLooks));
    AppendWords(text, shuffle, 1 + shuffle.Below(4));
    text.append("}");
  }
  if (kind == 19) {
    text.append("{\\field{\\*\\fldinst HYPERLINK \"http://example.org/").append(shuffle.Number(1000));
    text.append("\"}{\\fldrslt\\ul\\cf3 page}}");
  }
  text.append("\\plain\\par\r\n");
}

void AppendTable(std::string& text, Shuffle& shuffle) {
  for (int row = 0; row < 4; ++row) {
    text.append("\\trowd\\trgaph70\\cellx3000\\cellx6000\\cellx9000\r\n\\pard\\intbl\\plain\\f1\\fs20 ");
    for (int cell = 0; cell < 3; ++cell) {
      AppendWords(text, shuffle, 1 + shuffle.Below(5));
      text.append("\\cell ");
    }
    text.append("\\row\r\n");
  }
}

}  // namespace

std::string MakeRtfInput(std::size_t bytes) {
  Shuffle shuffle;
  std::string text(kHeader);
  text.reserve(bytes + 8192);
  while (text.size() < bytes) {
    if (shuffle.Below(40) == 0)
      AppendTable(text, shuffle);
    else
      AppendParagraph(text, shuffle);
  }
  return text.append("}\r\n");
}

}  // namespace tme
