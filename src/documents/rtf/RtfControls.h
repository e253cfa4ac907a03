#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// The control words that the reader knows. Internal to the reader.
namespace tme::rtf {

/// Which part of the reader a control word is for.
enum class ControlClass : std::uint8_t {
  Unknown,          ///< not in the table
  Ignored,          ///< says nothing that is shown or worth keeping
  Text,             ///< stands for text, or ends a paragraph
  CharacterFormat,  ///< says how the text that follows looks
  ParagraphFormat,  ///< the same of the paragraph
  Border,           ///< of a paragraph, or of a cell while a row is being defined
  Row,              ///< of a table
  File,             ///< of the document, its sections and pages
  TableEntry,       ///< of a font or a colour; means nothing outside their tables
  Group,            ///< says what the group is that it begins
};

/// What a control word does; ControlWord::value says more where it is named.
enum class Control : std::uint8_t {
  None,       ///< of an unknown or ignored word
  FieldWord,  ///< of ControlClass::Ignored, and kept with its field
  // ControlClass::Text
  Character,      ///< value: the character
  Paragraph,      ///< \par
  Section,        ///< \sect
  Break,          ///< \line, \page; value: the character
  DynamicText,    ///< \chpgn and the like; kept, shown as a placeholder
  InvisibleMark,  ///< kept in its place, not shown: \chftn
  UnicodeSkip,    ///< \uc
  Unicode,        ///< \u
  // ControlClass::CharacterFormat
  Plain,
  FontNumber,
  FontSize,
  Color,
  Background,
  Shading,  ///< kept, too
  Bold,
  Italic,
  Underlined,       ///< value: Underline
  Struck,           ///< value: Strike
  Scripted,         ///< value: Script
  Raised,           ///< value: the sign
  Capital,          ///< value: Capitals
  Hidden,           ///< \v
  Direction,        ///< \ltrch, \rtlch
  FontClassWord,    ///< value: FontClass
  OtherFont,        ///< \af
  CharacterBorder,  ///< kept with the border words right behind it
  CharacterWord,    ///< kept, not shown; the last one of its name counts
  // ControlClass::ParagraphFormat
  ParagraphReset,
  Aligned,      ///< value: Alignment
  IndentLeft,   ///< value: 1 where it turns with the direction of the text
  IndentRight,  ///< the same
  IndentFirst,
  SpaceBefore,
  SpaceAfter,
  LineSpacing,
  LineMultiple,
  TabAt,          ///< value: whether it is a bar
  TabKindNext,    ///< value: TabKind
  TabLeaderNext,  ///< value: the leader
  PageBreakBefore,
  ListOverride,  ///< \ls
  ListLevel,     ///< \ilvl
  InTable,
  TableDepth,
  ParagraphWord,  ///< kept, not shown; the last one of its name counts
  // ControlClass::Border
  BorderWord,  ///< kept, not shown; all count, in their order
  // ControlClass::Row
  RowStart,  ///< \trowd
  RowWord,   ///< kept in the row's definition
  CellEdge,
  VerticalMerge,    ///< value: 1 first, 2 continued
  HorizontalMerge,  ///< value: 1 first, 2 continued
  CellEnd,          ///< value: 1 in a nested table
  RowEnd,           ///< the same
  // ControlClass::File
  CodePage,      ///< value: the page, or 0 for that of the word's number
  DefaultFont,   ///< \deff
  DocumentWord,  ///< value: a number of its own, below kDocumentWordCount
  SectionReset,  ///< \sectd
  SectionBreak,  ///< \sbknone and its kin
  SectionWord,
  PageBorder,  ///< of a section; the border words behind it are about it
  // ControlClass::TableEntry
  ColorPart,  ///< value: how far it is shifted in RtfDocument::colors
  FontCharset,
  FontCodePage,
  FontFamily,
  // ControlClass::Group
  FontTable,
  ColorTable,
  SkippedGroup,
  HeaderGroup,      ///< kept_header, wherever it stands
  ListTable,        ///< the same, and read; value: 1 for the overrides
  SectionGroup,     ///< headers and footers
  InvisibleGroup,   ///< kept in its place
  LegacyNumbering,  ///< \pn
  ListText,         ///< \pntext, \listtext
  Field,
  FieldInstruction,
  TransparentGroup,  ///< its text is the text
  TwoForms,          ///< \upr
  UnicodeForm,       ///< \ud
  NestedTableProperties,
  Picture,       ///< \pict, \nonshppict
  ShownPicture,  ///< \shppict
  Object,
  Drawing,      ///< \shp, \do
  DrawingText,  ///< \shptxt, \dptxbxtext and \result: what is read of an object for its label
  Footnote,
  Formula,
};

struct ControlWord {
  constexpr ControlWord() = default;
  constexpr explicit ControlWord(std::string_view its_name) : name(its_name) {}
  constexpr ControlWord(std::string_view its_name, Control its_control, std::int32_t its_value = 0)
      : name(its_name), value(its_value), control(its_control) {}

  std::string_view name{};
  std::int32_t value = 0;
  Control control = Control::None;
  ControlClass control_class = ControlClass::Unknown;
};

/// What a field says of itself.
inline constexpr std::array<std::string_view, 4> kFieldWords = {"fldedit", "flddirty", "fldlock", "fldpriv"};

/// By its exact letters. ControlClass::Unknown, without a name, for others.
const ControlWord& FindControl(std::string_view name);

/// How many different values there are of Control::DocumentWord.
extern const std::size_t kDocumentWordCount;

}  // namespace tme::rtf
