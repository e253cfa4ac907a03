#include "documents/rtf/RtfFormatOutput.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/Utf8.h"
#include "documents/rtf/RtfCharacterWords.h"
#include "documents/rtf/RtfCharset.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {

namespace {

constexpr std::int32_t kNewCellWidth = 1440;

constexpr std::string_view kUnderlines[] = {"\\ulnone",    "\\ul",      "\\ulw",       "\\uldb",      "\\uld",
                                            "\\uldash",    "\\uldashd", "\\uldashdd",  "\\ulth",      "\\ulwave",
                                            "\\ulldash",   "\\ulthd",   "\\ulthdash",  "\\ulthdashd", "\\ulthdashdd",
                                            "\\ulthldash", "\\ulhwave", "\\ululdbwave"};
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

struct LengthWord {
  std::string_view word;
  ParagraphProperty property;
  std::int32_t ParagraphFormat::*length;
};
constexpr LengthWord kLengths[] = {{"\\li", kIndentLeft, &ParagraphFormat::left},
                                   {"\\ri", kIndentRight, &ParagraphFormat::right},
                                   {"\\fi", kIndentFirst, &ParagraphFormat::first_line},
                                   {"\\sb", kSpaceBefore, &ParagraphFormat::space_before},
                                   {"\\sa", kSpaceAfter, &ParagraphFormat::space_after}};

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
  if (!document.is_default_font_said) plain.said = kFont;
  if (document.HasStyles()) plain.said = kAllCharacterProperties;
  return plain;
}

namespace {

/// What \f says; nothing for the reader's default.
std::optional<std::int32_t> FontNumber(const RtfDocument& document, std::uint32_t font) {
  if (font < document.fonts.size()) return document.fonts[font].number;
  return IsMissingFont(font) ? std::optional(static_cast<std::int32_t>(font - kMissingFont)) : std::nullopt;
}

}  // namespace

bool LeadsTo(const RtfDocument& document, const CharFormat& plain, const CharFormat& from, const CharFormat& to) {
  // Nothing takes kept control words back one by one, and nothing but \plain names a font that is in no table.
  const auto is_known = [&](std::uint32_t font) { return FontNumber(document, font).has_value(); };
  if (is_known(from.font) && !is_known(to.font) && !is_known(plain.font)) return false;
  if (plain.said != 0) {
    const auto said = static_cast<unsigned>(plain.said & (from.said | ~DefaultsOf(from, plain)));
    if ((said & DefaultsOf(to, plain) & ~unsigned{to.said}) != 0) return false;
  }
  // The font of a class of text stays with it when text of another one gets its own.
  const bool has_font = from.font_class != FontClass::Low || from.font != plain.font || (from.said & kFont) != 0;
  if (from.font_class != to.font_class && has_font && !NameFontOf(ExtraWords(document, to.extra), from.font_class))
    return false;
  return from.extra == to.extra ||
         AreCharacterWordsIn(ExtraWords(document, from.extra), ExtraWords(document, to.extra), to.font_class);
}

bool NeedsGroup(const RtfDocument& document, const CharFormat& format) {
  return (format.script == Script::Super && format.raise == 0) || IsOfRevision(ExtraWords(document, format.extra));
}

namespace {

/// Words between two formats; a property that was not said before is said.
class CharFormatOutput {
 public:
  CharFormatOutput(const CharFormat& from, const CharFormat& to, RtfOutput& out)
      : from_(from), to_(to), said_(static_cast<unsigned>(to.said & ~from.said)), out_(out) {}

  bool IsWanted(CharacterProperty property, bool differs) const { return differs || (said_ & property) != 0; }

  void Switch(CharacterProperty property, bool CharFormat::*attribute, std::string_view on,
              std::string_view off) const {
    if (IsWanted(property, from_.*attribute != to_.*attribute)) out_.Words(to_.*attribute ? on : off);
  }

  /// A choice that a property has words for.
  template <typename Choice>
  struct Option {
    CharacterProperty property;
    Choice choice;
    std::string_view on;
    std::string_view off;
  };
  /// One of two, or none. What is off comes first: for some readers its word takes back the other one.
  template <typename Choice>
  void Choose(Choice CharFormat::*attribute, const Option<Choice>& one, const Option<Choice>& other) const {
    const bool is_one = to_.*attribute == one.choice;
    for (const Option<Choice>* option : {is_one ? &other : &one, is_one ? &one : &other}) {
      const bool was = from_.*attribute == option->choice, is = to_.*attribute == option->choice;
      if (IsWanted(option->property, was != is)) out_.Words(is ? option->on : option->off);
    }
  }

  void Number(CharacterProperty property, std::uint32_t CharFormat::*attribute, std::string_view word) const {
    if (IsWanted(property, from_.*attribute != to_.*attribute)) out_.Word(word, to_.*attribute);
  }

  void ScriptOrRaise() const {
    if (!IsWanted(kScript, from_.script != to_.script || from_.raise != to_.raise)) return;
    const bool was_raised = from_.raise != 0;
    if (was_raised && to_.raise == 0) out_.Words("\\up0");
    if (to_.raise != 0) return out_.Word(to_.raise > 0 ? "\\up" : "\\dn", to_.raise > 0 ? to_.raise : -to_.raise);
    if (!was_raised || to_.script != Script::Normal) out_.Words(Pick(kScripts, to_.script));
  }

 private:
  const CharFormat& from_;
  const CharFormat& to_;
  const unsigned said_;  ///< what is to be said though it is the default
  RtfOutput& out_;
};

/// Fonts of classes of text, and the text's own one; none when it stays.
void WriteFonts(std::optional<std::int32_t> font, const CharFormat& format, const CharacterWordSteps& steps,
                RtfOutput& out) {
  FontClass text_class = steps.text_class;
  const auto enter = [&](FontClass font_class) {
    if (text_class != font_class) out.Words(WordOf(font_class));
    text_class = font_class;
  };
  out.Words(steps.fonts);
  if (!steps.fonts.empty()) text_class = steps.class_of_fonts;
  if (font) {
    enter(format.font_class);
    out.Word("\\f", *font);
  }
  if (steps.is_own_font_new || (font && !steps.own_font.empty())) {
    out.Words(steps.own_font);
    text_class = format.font_class;
  }
  enter(format.text_class);
}

}  // namespace

void WriteCharFormat(const RtfDocument& document, const CharFormat& plain, const CharFormat& from, const CharFormat& to,
                     RtfOutput& out) {
  CharFormat now = from;
  if (!LeadsTo(document, plain, from, to)) {
    out.Words("\\plain");
    now = plain;
    now.said = 0;
  }
  CharacterWordSteps steps{.text_class = now.text_class};
  if (now.extra != to.extra || (to.extra != 0 && (now.font != to.font || now.font_class != to.font_class)))
    steps = CharacterWordsBetween(ExtraWords(document, now.extra), ExtraWords(document, to.extra), to.font_class,
                                  now.text_class);
  out.Words(steps.words);
  const CharFormatOutput output(now, to, out);
  const auto shown = [&](std::uint32_t font) { return FontNumber(document, font) ? font : plain.font; };
  const bool is_font_new = shown(now.font) != shown(to.font) || now.font_class != to.font_class || steps.replaces_font;
  const std::optional<std::int32_t> font =
      output.IsWanted(kFont, is_font_new) ? FontNumber(document, shown(to.font)) : std::nullopt;
  // Words of other classes say for some readers what all that follows is about, too.
  const bool has_classes = !steps.fonts.empty() || !steps.own_font.empty() || steps.text_class != FontClass::Low ||
                           to.font_class != FontClass::Low || to.text_class != FontClass::Low;
  if (font && !has_classes) out.Word("\\f", *font);
  output.Number(kFontSize, &CharFormat::half_points, "\\fs");
  output.Switch(kBold, &CharFormat::bold, "\\b", "\\b0");
  output.Switch(kItalic, &CharFormat::italic, "\\i", "\\i0");
  if (output.IsWanted(kUnderline, now.underline != to.underline)) out.Words(Pick(kUnderlines, to.underline));
  output.Number(kColor, &CharFormat::color, "\\cf");
  output.Number(kBackground, &CharFormat::background, "\\highlight");
  output.Switch(kHidden, &CharFormat::hidden, "\\v", "\\v0");
  output.ScriptOrRaise();
  output.Choose<Strike>(&CharFormat::strike, {kStrike, Strike::Single, "\\strike", "\\strike0"},
                        {kDoubleStrike, Strike::Double, "\\striked1", "\\striked0"});
  output.Choose<Capitals>(&CharFormat::capitals, {kCapitals, Capitals::All, "\\caps", "\\caps0"},
                          {kSmallCapitals, Capitals::Small, "\\scaps", "\\scaps0"});
  if (has_classes) WriteFonts(font, to, steps, out);
}

std::string ParagraphControls(const RtfDocument& document, const ParagraphFormat& format) {
  std::string text;
  text.append(ExtraWords(document, format.extra)).append(Pick(kAlignments, format.alignment));
  if ((format.said & kAlignment) != 0) text.append("\\ql");
  const auto is_said = [&format](ParagraphProperty property) { return (format.said & property) != 0; };
  // Where the text runs to the left, the leading indent is that on the right.
  const bool is_turned = is_said(kLeadingIndents) && ExtraWords(document, format.extra).find("\\rtlpar") != text.npos;
  for (const auto& [word, property, length] : kLengths) {
    const bool is_left = property == kIndentLeft, is_right = property == kIndentRight;
    const std::int32_t value = !is_turned ? format.*length
                               : is_left  ? format.right
                               : is_right ? format.left
                                          : format.*length;
    if (value != 0 || is_said(property)) Add(text, word, value);
  }
  if (is_said(kLeadingIndents)) {
    Add(text, "\\lin", format.left);
    Add(text, "\\rin", format.right);
  }
  if (format.line_spacing != 0 || format.line_multiple || is_said(kLineSpacing)) {
    Add(text, "\\sl", format.line_spacing);
    text.append(format.line_multiple ? "\\slmult1" : "\\slmult0");
  }
  if (format.page_break_before || is_said(kPageBreakBefore))
    text.append(format.page_break_before ? "\\pagebb" : "\\pagebb0");
  for (const TabStop& tab : format.tabs)
    Add(text.append(Pick(kLeaders, tab.leader)), Pick(kTabs, tab.kind), tab.position);
  // What the tables say comes behind it and counts.
  if (format.list_group != 0) text.append(ExtraWords(document, format.list_group));
  if (format.list_id != 0 || is_said(kList)) Add(text, "\\ls", format.list_id);
  if (format.list_id != 0)
    Add(text, "\\ilvl", format.list_level);
  else if (format.list != ListKind::None || format.list_group != 0)
    AddUnless(text, "\\ilvl", format.list_level, 0);
  if (format.list_group == 0 && format.list_id == 0 && format.list != ListKind::None)
    AddPlainList(text, document, format);
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
  const bool is_made = font.words.empty() && !(font.family.empty() && font.charset == 0);
  if (is_made) {
    out.Words("\\f" + (font.family.empty() ? "nil" : font.family));
    out.Word("\\fcharset", font.charset);
  }
  out.Kept(font.words);
  std::string name = font.name;
  std::erase(name, ';');  // ends the entry
  out.Text(name);
  out.Kept(font.behind);
  out.Text(";");
  out.Close();
}

void WriteColor(const RtfDocument& document, std::size_t index, RtfOutput& out) {
  if (index > 0) {
    const std::uint32_t color = document.colors[index];
    if (index < document.color_words.size()) out.Words(document.color_words[index]);
    out.Word("\\red", color >> 16 & 0xFF);
    out.Word("\\green", color >> 8 & 0xFF);
    out.Word("\\blue", color & 0xFF);
  }
  out.Text(";");
}

void WriteTables(const RtfDocument& document, RtfOutput& out) {
  // One without fonts is another font for some readers than none.
  if (!document.fonts.empty()) {
    out.Open("\\fonttbl");
    for (const Font& font : document.fonts) WriteFont(font, out);
    out.Close();
    out.LineEnd();
  }
  if (document.colors.size() < 2) return;
  out.Open("\\colortbl");
  for (std::size_t i = 0; i < document.colors.size(); ++i) WriteColor(document, i, out);
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
