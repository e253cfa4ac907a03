#pragma once

#include <string>
#include <string_view>

#include "documents/rtf/RtfDocument.h"

/// Control words that are kept with characters, as RtfDocument::extras holds them. In front stand those that readers
/// understand by their place: in a pair of \rtlch and \ltrch what is meant for text of the other direction, behind
/// \hich, \dbch and \loch the font of such characters; then all others in their order. Each stands there once; border
/// words belong to the \chbrdr before them.
namespace tme::rtf {

/// What \af is about.
enum class FontPlace : std::uint8_t { OtherDirection, Low, High, Double };

/// Takes in a control word that is called `name`, in the place of the one of its name. \ltrch takes back \rtlch.
/// place: of a font; the place of others goes by their name. One that is called "f" comes in where none is yet.
std::string WithCharacterWord(std::string_view words, std::string_view word, std::string_view name, FontPlace place);
/// Takes out a word by its name.
std::string WithoutCharacterWord(std::string_view words, std::string_view name);

/// Whether the words name a font for a class of text.
bool NameFontOf(std::string_view words, FontClass font_class);

/// Whether each word of one has one of its name in the other, so that nothing of it is left behind the other's.
/// font_class: that for which the other's text names its font, which counts for one.
bool AreCharacterWordsIn(std::string_view words, std::string_view others, FontClass font_class);
/// What leads from some words to others that hold all of their names.
struct CharacterWordSteps {
  std::string words{};                        ///< but for the fonts
  std::string fonts{};                        ///< of other classes of text, behind all other words
  std::string own_font{};                     ///< of the text's class, behind its \f, which takes it back
  FontClass text_class = FontClass::Low;      ///< in which `words` end
  FontClass class_of_fonts = FontClass::Low;  ///< in which `fonts` end
  bool replaces_font = false;                 ///< the text's own font is to be named, for it had one among the words
  bool is_own_font_new = false;
  bool IsEmpty() const { return words.empty() && fonts.empty() && !replaces_font && !is_own_font_new; }
};
/// font_class: as above. text_class: that of text before them.
CharacterWordSteps CharacterWordsBetween(std::string_view from, std::string_view to, FontClass font_class,
                                         FontClass text_class);

/// Whether the words are about a tracked change.
bool IsOfRevision(std::string_view words);

/// The control word that makes what follows text of this class.
std::string_view WordOf(FontClass font_class);

}  // namespace tme::rtf
