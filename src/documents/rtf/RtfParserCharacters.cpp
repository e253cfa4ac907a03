// What the parser does with control words of characters.
#include <algorithm>
#include <utility>

#include "documents/rtf/RtfParser.h"

namespace tme::rtf {
namespace {

constexpr std::int32_t kMaxHalfPoints = 3276;
constexpr std::uint32_t kDefaultHalfPoints = 24;
constexpr std::int32_t kDefaultRaise = 6;
constexpr std::int32_t kMaxRaise = 3276;

/// Words that switch an attribute on or off.
constexpr std::pair<Control, bool CharFormat::*> kSwitches[] = {
    {Control::Bold, &CharFormat::bold}, {Control::Italic, &CharFormat::italic}, {Control::Hidden, &CharFormat::hidden}};

/// What a word of ControlClass::CharacterFormat says; 0 for one that is kept.
constexpr std::uint16_t PropertyOf(const ControlWord& word) {
  switch (word.control) {
    case Control::FontNumber:
      return kFont;
    case Control::FontSize:
      return kFontSize;
    case Control::Color:
      return kColor;
    case Control::Background:
      return kBackground;
    case Control::Bold:
      return kBold;
    case Control::Italic:
      return kItalic;
    case Control::Hidden:
      return kHidden;
    case Control::Struck:
      return static_cast<Strike>(word.value) == Strike::Double ? kDoubleStrike : kStrike;
    case Control::Underlined:
      return kUnderline;
    case Control::Scripted:
    case Control::Raised:
      return kScript;
    case Control::Capital:
      return static_cast<Capitals>(word.value) == Capitals::Small ? kSmallCapitals : kCapitals;
    default:
      return 0;
  }
}

/// Words of ControlClass::CharacterFormat. Fonts, \plain and words that are kept as they are, are none of its business.
void ApplyCharacterWord(const ControlWord& word, const Token& token, const ColorTable& colors, CharFormat& format) {
  const bool is_on = token.IsOn();
  for (const auto& [control, attribute] : kSwitches) {
    if (control == word.control) format.*attribute = is_on;
  }
  switch (word.control) {
    case Control::FontSize:
      format.half_points =
          token.value > 0 ? static_cast<std::uint32_t>(std::min(token.value, kMaxHalfPoints)) : kDefaultHalfPoints;
      return;
    case Control::Color:
      format.color = colors.IndexOf(token.value);
      return;
    case Control::Background:
      format.background = colors.IndexOf(token.value);
      return;
    case Control::Shading:
      format.shading = colors.IndexOf(token.value);
      return;
    case Control::Underlined:
      format.underline = is_on ? static_cast<Underline>(word.value) : Underline::None;
      return;
    case Control::Struck:
      format.strike = is_on ? static_cast<Strike>(word.value) : Strike::None;
      return;
    case Control::Scripted:
      format.script = is_on ? static_cast<Script>(word.value) : Script::Normal;
      format.raise = 0;
      return;
    case Control::Raised: {
      const std::int32_t raise = std::clamp(token.has_value ? token.value : kDefaultRaise, -kMaxRaise, kMaxRaise);
      format.raise = static_cast<std::int16_t>(raise * word.value);
      format.script = format.raise == 0 ? Script::Normal : format.raise > 0 ? Script::Super : Script::Sub;
      return;
    }
    case Control::Capital:
      format.capitals = is_on ? static_cast<Capitals>(word.value) : Capitals::None;
      return;
    default:
      return;
  }
}

}  // namespace

void Parser::ReadCharacterWord(const ControlWord& word) {
  if (said_properties_ != 0) NoteSaid(word);
  switch (word.control) {
    case Control::Plain: {
      CharFormat plain;
      plain.font = fonts_.Default();
      plain.field = Top().character.field;
      Character() = plain;
      Top().is_font_of_class = false;
      Top().font_word = {};
      Top().has_class_fonts = false;
      Top().encoding.page = &fonts_.PageOf(plain.font);
      return;
    }
    case Control::FontNumber:
      return SetFont(token_.value);
    case Control::Direction:
      return ReadDirection();
    case Control::FontClassWord:
      return ReadFontClass(static_cast<FontClass>(word.value));
    case Control::CharacterBorder:
      character_border_end_ = tokens_.Position();
      return KeepWithCharacters(token_.text);
    case Control::OtherFont:
    case Control::CharacterWord:
      return KeepWithCharacters(token_.text);
    case Control::Shading:
      KeepWithCharacters(token_.text);
      [[fallthrough]];
    default:
      return ApplyCharacterWord(word, token_, colors_, Character());
  }
}

/// What a style may say other than the default.
void Parser::NoteSaid(const ControlWord& word) {
  CharFormat& format = Top().character;
  format.said = static_cast<std::uint16_t>(format.said | (PropertyOf(word) & said_properties_));
}

/// Of two words side by side the first says what follows is for text of the other direction.
void Parser::ReadDirection() {
  State& state = Top();
  state.is_font_of_class = false;
  if (state.character.text_class != FontClass::Low) Character().text_class = FontClass::Low;
  if (state.character.extra != 0 || token_.text == "rtlch") KeepWithCharacters(token_.text);
}

void Parser::ReadFontClass(FontClass font_class) {
  Top().is_font_of_class = true;
  if (Top().character.text_class != font_class) Character().text_class = font_class;
}

/// Whether nothing stands between a border word and one about the border of characters.
bool Parser::IsOfCharacterBorder() const {
  const std::size_t end = character_border_end_;
  return end <= word_begin_ &&
         tokens_.Bytes().substr(end, word_begin_ - end).find_first_not_of("\r\n") == std::string_view::npos;
}

/// `name`: of the word that it takes the place of.
void Parser::KeepWithCharacters(std::string_view name) {
  CharFormat& format = Character();
  const bool is_of_class = Top().is_font_of_class && name == "af";
  if (is_of_class) Top().has_class_fonts = true;
  const auto place = static_cast<FontPlace>(is_of_class ? 1 + static_cast<int>(format.text_class) : 0);
  format.extra = builder_.AddExtra(format.extra, RawWord(), name, place);
}

void Parser::SetFont(std::int32_t number) {
  const std::uint32_t font = fonts_.FontOf(number);
  State& state = Top();
  CharFormat& format = Character();
  const auto place_of = [](FontClass font_class) { return static_cast<FontPlace>(1 + static_cast<int>(font_class)); };
  if (format.font_class != format.text_class) {
    // The font of another class of text stays.
    if (!state.font_word.empty())
      format.extra = builder_.AddExtra(format.extra, state.font_word, "f", place_of(format.font_class));
    format.font_class = format.text_class;
    state.has_class_fonts = true;
  }
  if (state.has_class_fonts) format.extra = builder_.AddExtra(format.extra, {}, "af", place_of(format.text_class));
  state.font_word = RawWord();
  format.font = font;
  Top().encoding.page = &fonts_.PageOf(font);
}

/// To all text that names no font.
void Parser::ApplyDefaultFont() {
  const std::uint32_t before = fonts_.Default();
  if (!fonts_.ResolveDefault()) return;
  for (State& state : states_) {
    if (IsMissingFont(state.character.font)) state.encoding.page = &fonts_.PageOf(fonts_.Default());
    if (state.character.font != before) continue;
    state.character.font = fonts_.Default();
    state.character_id = kStale;
    state.encoding.page = &fonts_.PageOf(fonts_.Default());
  }
}

}  // namespace tme::rtf
