#pragma once

#include <cstdint>
#include <string_view>

/// The control words that the reader knows. Internal to the reader.
namespace tme::rtf {

/// What a control word does; ControlWord::value says more where it is named.
enum class Control : std::uint8_t {
  Unknown,
  Ignored,        ///< says nothing that is shown or worth keeping
  Character,      ///< value: the character
  Paragraph,      ///< \par
  Section,        ///< \sect
  Page,           ///< \page
  Line,           ///< \line
  DynamicText,    ///< \chpgn and the like; kept, shown as a placeholder
  InvisibleMark,  ///< kept in its place, not shown: \chftn
  // The file.
  CodePage,      ///< value: the page, or 0 for that of the word's number
  DefaultFont,   ///< \deff
  DocumentWord,  ///< value: a number of its own
  SectionReset,  ///< \sectd
  SectionBreak,  ///< \sbknone and its kin; value: as for DocumentWord
  SectionWord,   ///< value: as for DocumentWord
  UnicodeSkip,   ///< \uc
  Unicode,       ///< \u
  // Looks of characters.
  Plain,
  FontNumber,
  FontSize,
  Color,
  Background,
  Bold,
  Italic,
  Underlined,     ///< value: Underline
  Struck,         ///< value: Strike
  Scripted,       ///< value: Script
  Raised,         ///< value: the sign
  Capital,        ///< value: Capitals
  Hidden,         ///< \v
  LeftToRight,    ///< takes back \rtlch
  CharacterWord,  ///< kept, not shown; the last one of its name counts
  // Looks of paragraphs.
  ParagraphReset,
  Aligned,  ///< value: Alignment
  IndentLeft,
  IndentRight,
  IndentFirst,
  SpaceBefore,
  SpaceAfter,
  LineSpacing,
  LineMultiple,
  TabAt,          ///< value: whether it is a bar
  TabKindNext,    ///< value: TabKind
  TabLeaderNext,  ///< value: the leader
  PageBreakBefore,
  ListOverride,   ///< \ls
  ListLevel,      ///< \ilvl
  ParagraphWord,  ///< kept, not shown; the last one of its name counts
  BorderWord,     ///< kept, not shown; all count, in their order
  // Tables.
  InTable,
  TableDepth,
  RowStart,  ///< \trowd
  RowWord,   ///< kept in the row's definition
  CellEdge,
  VerticalMerge,    ///< value: 1 first, 2 continued
  HorizontalMerge,  ///< value: 1 first, 2 continued
  CellEnd,
  NestedCellEnd,
  RowEnd,
  NestedRowEnd,
  // Colour table and font table.
  Red,
  Green,
  Blue,
  FontCharset,
  FontCodePage,
  FontFamily,
  // Groups.
  FontTable,
  ColorTable,
  SkippedGroup,
  HeaderGroup,      ///< kept_header, wherever it stands
  ListTable,        ///< the same, and read
  OverrideTable,    ///< the same, and read
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
  Picture,
  ShownPicture,        ///< \shppict
  AlternativePicture,  ///< \nonshppict
  Object,
  Drawing,      ///< \shp, \do
  DrawingText,  ///< \shptxt, \dptxbxtext and \result: what is read of an object for its label
  Footnote,
};

struct ControlWord {
  std::string_view name{};
  Control control = Control::Unknown;
  std::int32_t value = 0;
};

/// By its exact letters. Never null; Control::Unknown, without a name, for others.
const ControlWord& FindControl(std::string_view name);

/// How many different values DocumentWord and SectionWord have.
int DocumentWordCount();

}  // namespace tme::rtf
