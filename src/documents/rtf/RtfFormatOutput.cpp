#include "documents/rtf/RtfFormatOutput.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/Utf8.h"
#include "documents/rtf/RtfCharset.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {

namespace {

constexpr std::int32_t kNewCellWidth = 1440;

constexpr std::string_view kUnderlines[] = {"\\ulnone", "\\ul",      "\\ulw",      "\\uldb", "\\uld",
                                            "\\uldash", "\\uldashd", "\\uldashdd", "\\ulth", "\\ulwave"};
constexpr std::string_view kScripts[] = {"\\nosupersub", "\\super", "\\sub"};
constexpr std::string_view kAlignments[] = {"", "\\qr", "\\qc", "\\qj"};
/// By ListKind.
constexpr std::string_view kListKinds[] = {"",
                                           "\\pnlvlblt",
                                           "\\pnlvlbody\\pndec",
                                           "\\pnlvlbody\\pnlcltr",
                                           "\\pnlvlbody\\pnucltr",
                                           "\\pnlvlbody\\pnlcrm",
                                           "\\pnlvlbody\\pnucrm",
                                           "\\pnlvlbody\\pndec",
                                           "\\pnlvlbody\\pnord",
                                           "\\pnlvlbody\\pncard",
                                           "\\pnlvlbody\\pnordt"};
/// By TabKind, before the position.
constexpr std::string_view kTabs[] = {"\\tx", "\\tqr\\tx", "\\tqc\\tx", "\\tqdec\\tx", "\\tb"};
/// By TabLeader, before the kind.
constexpr std::string_view kLeaders[] = {"", "\\tldot", "\\tlmdot", "\\tlhyph", "\\tlul", "\\tlth", "\\tleq"};

template <std::size_t count, typename Choice>
std::string_view Pick(const std::string_view (&words)[count], Choice choice) {
  return words[std::min(static_cast<std::size_t>(choice), count - 1)];
}

std::string_view ExtraWords(const RtfDocument& document, std::uint32_t number) {
  const std::string* words = EntryOf(document.extras, number);
  return words != nullptr ? std::string_view(*words) : std::string_view();
}

void Add(std::string& text, std::string_view control, std::int64_t number) {
  text.append(control).append(std::to_string(number));
}

void AddUnless(std::string& text, std::string_view control, std::int64_t number, std::int64_t usual) {
  if (number != usual) Add(text, control, number);
}

/// What stands around the number of a list, as control words and ASCII.
std::string ListAffix(std::string_view word, std::string_view utf8_text) {
  std::string text = "{" + std::string(word);
  if (!utf8_text.empty() && IsLetter(utf8_text.front())) text += ' ';
  while (const std::optional<char32_t> character = utf8::TakeCharacter(utf8_text)) {
    const bool is_plain =
        *character >= ' ' && *character < 0x7F && *character != '\\' && *character != '{' && *character != '}';
    if (is_plain)
      text += static_cast<char>(*character);
    else
      text.append("\\u").append(std::to_string(static_cast<std::int16_t>(*character))).append("*");
  }
  return text + "}";
}

/// A list as rich-edit controls write it.
void AddPlainList(std::string& text, const RtfDocument& document, const ParagraphFormat& format) {
  AddUnless(text, "\\ilvl", format.list_level, 0);
  text.append("{\\*\\pn").append(Pick(kListKinds, format.list)).append("\\pnindent0");
  if (format.list != ListKind::Bullet) {
    Add(text, "\\pnstart", format.list_start);
    const std::string_view form = format.list_text;
    const std::size_t number = std::min(form.find(static_cast<char>(format.list_level)), form.size());
    if (number > 0) text.append(ListAffix("\\pntxtb", form.substr(0, number)));
    text.append(form.empty() ? "{\\pntxta.}" : ListAffix("\\pntxta", form.substr(std::min(number + 1, form.size()))))
        .append("}");
    return;
  }
  if (!format.list_text.empty()) {
    text.append(ListAffix("\\pntxtb", format.list_text)).append("}");
    return;
  }
  const bool has_bullet = document.ansi_code_page >= 1250 && document.ansi_code_page <= 1258;
  text.append("{\\pntxtb").append(has_bullet ? "\\'95}}" : "\\u8226*}}");
}

}  // namespace

CharFormat PlainFormat(const RtfDocument& document) {
  CharFormat plain;
  // Of several with one number the last counts, as for a reader.
  std::size_t font = document.fonts.size();
  for (std::size_t i = 0; i < document.fonts.size(); ++i) {
    if (document.fonts[i].number == document.default_font) font = i;
  }
  plain.font = static_cast<std::uint32_t>(font);
  return plain;
}

void WriteCharFormat(const RtfDocument& document, const CharFormat& plain, const CharFormat& from, const CharFormat& to,
                     RtfOutput& out) {
  const auto shown = [&](std::uint32_t font) { return font < document.fonts.size() ? font : plain.font; };
  const std::string_view kept = to.extra != from.extra ? ExtraWords(document, to.extra) : std::string_view();
  const std::string_view kept_before = to.extra != from.extra ? ExtraWords(document, from.extra) : std::string_view();
  // Nothing takes kept control words back one by one, and nothing but \plain names a font that is in no table.
  const bool from_plain = (!kept_before.empty() && kept_before != kept) ||
                          (shown(from.font) != shown(to.font) && shown(to.font) >= document.fonts.size());
  const CharFormat& now = from_plain ? plain : from;
  if (from_plain) out.Words("\\plain");
  if (from_plain || kept != kept_before) out.Words(ExtraWords(document, to.extra));
  if (shown(now.font) != shown(to.font)) out.Word("\\f", document.fonts[shown(to.font)].number);
  if (now.half_points != to.half_points) out.Word("\\fs", to.half_points);
  if (now.bold != to.bold) out.Words(to.bold ? "\\b" : "\\b0");
  if (now.italic != to.italic) out.Words(to.italic ? "\\i" : "\\i0");
  if (now.underline != to.underline) out.Words(Pick(kUnderlines, to.underline));
  if (now.color != to.color) out.Word("\\cf", to.color);
  if (now.background != to.background) out.Word("\\highlight", to.background);
  if (now.hidden != to.hidden) out.Words(to.hidden ? "\\v" : "\\v0");
  if (now.script != to.script) out.Words(Pick(kScripts, to.script));
  if (now.strike != to.strike) {
    if (now.strike == Strike::Double) out.Words("\\striked0");
    if (to.strike == Strike::Double) out.Words("\\striked1");
    if (to.strike == Strike::Single) out.Words("\\strike");
    if (now.strike == Strike::Single) out.Words("\\strike0");
  }
  if (now.capitals != to.capitals) {
    if (now.capitals == Capitals::All) out.Words("\\caps0");
    if (now.capitals == Capitals::Small) out.Words("\\scaps0");
    if (to.capitals == Capitals::All) out.Words("\\caps");
    if (to.capitals == Capitals::Small) out.Words("\\scaps");
  }
}

std::string ParagraphControls(const RtfDocument& document, const ParagraphFormat& format) {
  std::string text;
  text.append(ExtraWords(document, format.extra)).append(Pick(kAlignments, format.alignment));
  AddUnless(text, "\\li", format.left, 0);
  AddUnless(text, "\\ri", format.right, 0);
  AddUnless(text, "\\fi", format.first_line, 0);
  AddUnless(text, "\\sb", format.space_before, 0);
  AddUnless(text, "\\sa", format.space_after, 0);
  if (format.line_spacing != 0 || format.line_multiple) {
    Add(text, "\\sl", format.line_spacing);
    text.append(format.line_multiple ? "\\slmult1" : "\\slmult0");
  }
  if (format.page_break_before) text.append("\\pagebb");
  for (const TabStop& tab : format.tabs)
    Add(text.append(Pick(kLeaders, tab.leader)), Pick(kTabs, tab.kind), tab.position);
  if (format.list_id != 0) {
    Add(text, "\\ls", format.list_id);
    Add(text, "\\ilvl", format.list_level);
  } else if (format.list != ListKind::None) {
    AddPlainList(text, document, format);
  }
  return text;
}

std::string RowControls(const RtfDocument& document, std::span<const std::uint32_t> cells) {
  std::string text = "\\trowd\\trgaph108";
  std::int32_t edge = 0;
  for (const std::uint32_t number : cells) {
    const Cell& cell = document.cells[number];
    if (cell.row_span != 1) text.append(cell.row_span == 0 ? "\\clvmrg" : "\\clvmgf");
    if (cell.column_span != 1) text.append(cell.column_span == 0 ? "\\clmrg" : "\\clmgf");
    // Edges go up, or word processors leave the cell out.
    edge = cell.right_edge > edge ? cell.right_edge : edge + kNewCellWidth;
    Add(text, "\\cellx", edge);
  }
  return text;
}

std::string CompletedDefinition(const RtfDocument& document, std::span<const std::uint32_t> cells) {
  constexpr std::string_view kEdge = "\\cellx";
  std::string text = document.rows[document.cells[cells.front()].row].definition;
  std::size_t defined = 0;
  for (std::size_t at = text.find(kEdge); at != std::string::npos; at = text.find(kEdge, at + kEdge.size())) ++defined;
  for (; defined < cells.size(); ++defined) Add(text, kEdge, document.cells[cells[defined]].right_edge);
  return text;
}

void WriteFont(const Font& font, RtfOutput& out) {
  out.Open();
  out.Word("\\f", font.number);
  out.Words("\\f" + (font.family.empty() ? "nil" : font.family));
  out.Word("\\fcharset", font.charset);
  std::string name = font.name;
  std::erase(name, ';');  // ends the entry
  out.Text(name);
  out.Text(";");
  out.Close();
}

void WriteColor(std::span<const std::uint32_t> colors, std::size_t index, RtfOutput& out) {
  if (index > 0) {
    out.Word("\\red", colors[index] >> 16 & 0xFF);
    out.Word("\\green", colors[index] >> 8 & 0xFF);
    out.Word("\\blue", colors[index] & 0xFF);
  }
  out.Text(";");
}

void WriteTables(const RtfDocument& document, RtfOutput& out) {
  out.Open("\\fonttbl");
  for (const Font& font : document.fonts) WriteFont(font, out);
  out.Close();
  out.LineEnd();
  if (document.colors.size() < 2) return;
  out.Open("\\colortbl");
  for (std::size_t i = 0; i < document.colors.size(); ++i) WriteColor(document.colors, i, out);
  out.Close();
  out.LineEnd();
}

std::vector<Alphabet> AlphabetsOf(const std::vector<Font>& fonts) {
  std::vector<Alphabet> alphabets;
  alphabets.reserve(fonts.size() + 1);
  for (const Font& font : fonts) {
    const int page = CodePageOfFont(font.charset, font.name);
    alphabets.push_back(page == kSymbolPage          ? Alphabet::GreekSymbol
                        : page == kPrivateSymbolPage ? Alphabet::Symbols
                                                     : Alphabet::Unicode);
  }
  alphabets.push_back(Alphabet::Unicode);
  return alphabets;
}

}  // namespace tme::rtf
