#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What a rich-text file holds, apart from its bytes and from any window. RtfReader fills it, RtfWriter writes it; a
/// window makes its view of it and gives one back. All lengths are twips (1/1440 inch), as in the file format, unless a
/// field says otherwise. All texts are UTF-8.
namespace tme::rtf {

enum class Underline : std::uint8_t {
  None,
  Single,
  Words,
  Double,
  Dotted,
  Dash,
  DashDot,
  DashDotDot,
  Thick,
  Wave,
  LongDash,
  ThickDotted,
  ThickDash,
  ThickDashDot,
  ThickDashDotDot,
  ThickLongDash,
  HeavyWave,
  DoubleWave,
};
enum class Script : std::uint8_t { Normal, Super, Sub };
enum class Capitals : std::uint8_t { None, All, Small };
enum class Strike : std::uint8_t { None, Single, Double };
/// Which of its fonts text has: \loch, \hich, \dbch.
enum class FontClass : std::uint8_t { Low, High, Double };

/// Properties of characters that a control word can set back to their defaults, as bits.
enum CharacterProperty : std::uint16_t {
  kFont = 1 << 0,
  kFontSize = 1 << 1,
  kColor = 1 << 2,
  kBackground = 1 << 3,
  kBold = 1 << 4,
  kItalic = 1 << 5,
  kHidden = 1 << 6,
  kStrike = 1 << 7,
  kDoubleStrike = 1 << 8,
  kUnderline = 1 << 9,
  kScript = 1 << 10,
  kCapitals = 1 << 11,
  kSmallCapitals = 1 << 12,
};
inline constexpr std::uint16_t kAllCharacterProperties = (1 << 13) - 1;

/// CharFormat::font plus this is the number of a font that is in no table.
inline constexpr std::uint32_t kMissingFont = 0x80000000;
inline constexpr std::int32_t kMaxFontNumber = 65'535;
constexpr bool IsMissingFont(std::uint32_t font) {
  return font >= kMissingFont && font - kMissingFont <= kMaxFontNumber;
}

/// The format of a run. Equal formats share one entry of RtfDocument::char_formats.
struct CharFormat {
  std::uint32_t font = 0;  ///< index into RtfDocument::fonts; past its end: kMissingFont, or the reader's default
  std::uint32_t half_points = 24;  ///< size, in half points
  std::uint32_t color = 0;         ///< index into RtfDocument::colors; 0 is automatic
  std::uint32_t background = 0;    ///< the same, behind the text
  std::uint32_t shading = 0;       ///< the same behind that, as a control word of `extra` says
  std::uint32_t field = 0;         ///< index into RtfDocument::fields plus 1; 0 outside any field
  std::uint32_t extra = 0;         ///< index into RtfDocument::extras plus 1: control words that are kept, not shown
  /// CharacterProperty: which have their default because control words said so. That counts where a style says other;
  /// None in a document without styles, but for the font where no default one is
  /// said.
  std::uint16_t said = 0;
  std::int16_t raise = 0;  ///< how far `script` is raised, in half points, without being made small; 0: as usual
  FontClass text_class = FontClass::Low;
  FontClass font_class = FontClass::Low;  ///< for which class of text `font` was named
  bool bold = false;
  bool italic = false;
  bool hidden = false;
  Strike strike = Strike::None;
  Underline underline = Underline::None;
  Script script = Script::Normal;
  Capitals capitals = Capitals::None;

  bool operator==(const CharFormat&) const = default;
};

/// CharacterProperty: those that a format has as text after \plain has them.
constexpr std::uint16_t DefaultsOf(const CharFormat& format, const CharFormat& plain) {
  const auto bit = [](bool is_default, CharacterProperty property) { return is_default ? property : 0; };
  return static_cast<std::uint16_t>(
      bit(format.font == plain.font, kFont) | bit(format.half_points == plain.half_points, kFontSize) |
      bit(format.color == 0, kColor) | bit(format.background == 0, kBackground) | bit(!format.bold, kBold) |
      bit(!format.italic, kItalic) | bit(!format.hidden, kHidden) | bit(format.strike != Strike::Single, kStrike) |
      bit(format.strike != Strike::Double, kDoubleStrike) | bit(format.underline == Underline::None, kUnderline) |
      bit(format.script == Script::Normal, kScript) | bit(format.capitals != Capitals::All, kCapitals) |
      bit(format.capitals != Capitals::Small, kSmallCapitals));
}

enum class Alignment : std::uint8_t { Left, Right, Center, Justify };

enum class ListKind : std::uint8_t {
  None,
  Bullet,
  Decimal,
  LowerLetter,
  UpperLetter,
  LowerRoman,
  UpperRoman,
  Padded,       ///< 01
  Ordinal,      ///< 1st
  Words,        ///< One
  OrdinalWords  ///< First
};

enum class TabKind : std::uint8_t { Left, Right, Center, Decimal, Bar };
enum class TabLeader : std::uint8_t { None, Dots, MiddleDots, Hyphens, Underline, Thick, Equal };
struct TabStop {
  std::int32_t position = 0;
  TabKind kind = TabKind::Left;
  TabLeader leader = TabLeader::None;
  bool operator==(const TabStop&) const = default;
};

/// Properties of a paragraph that a control word can set back to their defaults, as bits.
enum ParagraphProperty : std::uint16_t {
  kIndentLeft = 1 << 0,
  kIndentRight = 1 << 1,
  kIndentFirst = 1 << 2,
  kSpaceBefore = 1 << 3,
  kSpaceAfter = 1 << 4,
  kLineSpacing = 1 << 5,
  kAlignment = 1 << 6,
  kPageBreakBefore = 1 << 7,
  kList = 1 << 8,
  kLeadingIndents = 1 << 9,  ///< \lin and \rin, which do not turn with \rtlpar, stand beside \li and \ri
};

/// The format of a paragraph. Equal formats share one entry of RtfDocument::paragraph_formats.
struct ParagraphFormat {
  std::int32_t left = 0;
  std::int32_t right = 0;
  std::int32_t first_line = 0;  ///< relative to `left`
  std::int32_t space_before = 0;
  std::int32_t space_after = 0;
  /// As \sl: 0 automatic; above 0 at least this; below 0 exactly its absolute value; with `line_multiple` in 240ths of
  /// a line.
  std::int32_t line_spacing = 0;
  std::int32_t list_id = 0;  ///< \ls, naming an entry of the file's own list tables; 0: none, or a list without them
  std::int32_t list_start = 1;
  std::uint32_t extra = 0;  ///< index into RtfDocument::extras plus 1: control words that are kept, not shown
  /// The same: the {\*\pn …} group as it came, which says all of the list; 0 without one, or where the list is another.
  std::uint32_t list_group = 0;
  /// ParagraphProperty: which have their default because control words said so. That counts where a style says other.
  std::uint16_t said = 0;
  Alignment alignment = Alignment::Left;
  ListKind list = ListKind::None;
  std::uint8_t list_level = 0;  ///< 0 to 8
  bool line_multiple = false;
  bool page_break_before = false;
  /// What stands before a paragraph of the list: a byte below 9 is the number of that level, U+200B alone nothing at
  /// all. Empty: the number and a full stop, or a bullet.
  std::string list_text{};
  std::vector<TabStop> tabs{};

  bool operator==(const ParagraphFormat&) const = default;
};

/// ParagraphProperty: those that have their default, or none.
constexpr std::uint16_t DefaultsOf(const ParagraphFormat& format) {
  const auto bit = [](bool is_default, ParagraphProperty property) { return is_default ? property : 0; };
  return static_cast<std::uint16_t>(
      bit(format.left == 0, kIndentLeft) | bit(format.right == 0, kIndentRight) |
      bit(format.first_line == 0, kIndentFirst) | bit(format.space_before == 0, kSpaceBefore) |
      bit(format.space_after == 0, kSpaceAfter) | bit(format.line_spacing == 0 && !format.line_multiple, kLineSpacing) |
      bit(format.alignment == Alignment::Left, kAlignment) | bit(!format.page_break_before, kPageBreakBefore) |
      bit(format.list == ListKind::None && format.list_id == 0, kList) | kLeadingIndents);
}

/// A stretch of text of one format, or one object.
struct Run {
  std::uint32_t bytes = 0;   ///< of RtfDocument::text, following those of the run before; 0 for an object
  std::uint32_t format = 0;  ///< index into RtfDocument::char_formats
  std::uint32_t object = 0;  ///< index into RtfDocument::objects plus 1; 0 for text
};

/// What stands in the text without being text.
enum class ObjectKind : std::uint8_t {
  Picture,      ///< PNG or JPEG, shown
  Placeholder,  ///< anything else that a reader of the letter would see: other pictures, embedded objects, footnotes
  Invisible,    ///< bookmarks, index entries and the like: kept where they stood, never shown
  /// Ends its paragraph; what follows is another section. Its `rtf` is \sect and what the file says of that section:
  /// control words, headers and footers. In no table.
  SectionBreak,
};
/// The label of a section break: what a reader of the letter sees of it.
inline constexpr const char* kPageBreakLabel = "Page break";
inline constexpr const char* kSectionBreakLabel = "Section break";

/// The label of an embedded or linked object that shows neither text nor a picture.
inline constexpr const char* kObjectLabel = "Embedded object";
struct Object {
  ObjectKind kind = ObjectKind::Placeholder;
  /// The group as it came, with its braces, or several that stood side by side; written back as it is. Empty for a
  /// picture that was inserted here.
  std::string rtf{};
  /// Picture: the decoded bytes of the PNG or JPEG file.
  std::string picture{};
  std::int32_t width = 0;  ///< as shown, after scaling; 0: the picture's own
  std::int32_t height = 0;
  /// Placeholder: what it is, for people ("Picture (Windows metafile)", "Embedded object"); a footnote's text.
  std::string label{};
};

/// A field with a result: the runs whose format names it are what it shows.
struct Field {
  std::string url;           ///< of a hyperlink; empty for other fields
  std::string instruction;   ///< the {\*\fldinst …} group as it came; empty for a link made here
  std::uint32_t parent = 0;  ///< index into RtfDocument::fields plus 1 of the field whose result it stands in; 0: none
  std::string words{};       ///< what the field says of itself, as "\\fldlock"
};

inline constexpr std::int32_t kSymbolCharset = 2;
struct Font {
  std::int32_t number = 0;  ///< the N of \fN; kept, because kept groups name it
  std::string name;
  std::string family;           ///< "nil", "roman", "swiss", "modern", "script", "decor", "tech", "bidi"
  std::int32_t charset = 0;     ///< \fcharset; kSymbolCharset of a symbol font
  std::int32_t code_page = -1;  ///< of its text in the file that was read; -1: the document's own
  std::string words{};          ///< what its entry says before the name, as it came; empty for one made here
  std::string behind{};         ///< the same behind the name: another name, embedded data
};

/// One cell of a table row; its paragraphs name it.
struct Cell {
  std::uint32_t row = 0;          ///< index into RtfDocument::rows
  std::int32_t right_edge = 0;    ///< as \cellx
  std::uint16_t row_span = 1;     ///< of vertically merged cells; 0: merged into the one above, and empty
  std::uint16_t column_span = 1;  ///< of horizontally merged cells; 0: merged into the one before, and empty
};
struct Row {
  std::uint32_t table = 0;  ///< index into RtfDocument::tables
  /// The control words from \trowd to the last \cellx as they came; empty for a row made here.
  std::string definition;
};
struct Table {
  std::int32_t parent_cell = -1;  ///< index into RtfDocument::cells for a nested table
};

/// The tables that stand in RtfDocument::kept_header and can be added to, in the order in which they are written.
enum class HeaderTable : std::uint8_t { Styles, Lists, Overrides, Authors };
inline constexpr std::size_t kHeaderTables = 4;
/// An entry for one of them, that came with text of another document.
struct JoinedEntry {
  HeaderTable table = HeaderTable::Styles;
  std::int32_t number = 0;  ///< under which text names it; of Lists the \listid, of Authors the place in their table
  std::string rtf;          ///< its group
  std::string origin;       ///< the group in the document that it came from
};

struct Paragraph {
  std::uint32_t first_run = 0;    ///< its runs end where those of the next paragraph begin
  std::uint32_t format = 0;       ///< index into RtfDocument::paragraph_formats
  std::uint32_t mark_format = 0;  ///< of the paragraph's end, index into RtfDocument::char_formats
  std::int32_t cell = -1;         ///< the innermost cell that it stands in, index into RtfDocument::cells; -1: in none
};

/// What reading dropped, by reason; each is told to the user. Zero when everything is kept.
struct Losses {
  std::uint32_t unknown_characters = 0;  ///< bytes that the file's code page has no character for
  std::uint32_t limits = 0;              ///< parts over a limit (RtfReader.h), left out
  bool deep_tables = false;  ///< over RtfReader.h's limit; their text stands in the innermost that is within
  bool ended_early = false;  ///< the file ends inside a group, or has more ends than groups
  bool not_rtf = false;      ///< it does not begin with {\rtf; its bytes are shown as text
  bool operator==(const Losses&) const = default;
};

/// The entry that a number of a format or a run names, which is an index plus 1; null for 0 and what is past the end.
template <typename Entry>
const Entry* EntryOf(const std::vector<Entry>& entries, std::uint32_t number) {
  return number > 0 && number <= entries.size() ? &entries[number - 1] : nullptr;
}

/// Runs, paragraphs and cells stand in the order of the text. There is always at least one paragraph. Line breaks
/// inside a paragraph are U+2028, page breaks U+000C, tabs U+0009; special spaces and hyphens are their Unicode
/// characters.
struct RtfDocument {
  std::string text;
  std::vector<Run> runs;
  std::vector<Paragraph> paragraphs;
  std::vector<Cell> cells;
  std::vector<Row> rows;
  std::vector<Table> tables;
  std::vector<Object> objects;
  std::vector<Field> fields;
  std::vector<CharFormat> char_formats;            ///< first: the document's default
  std::vector<ParagraphFormat> paragraph_formats;  ///< first: the default
  std::vector<std::string> extras;                 ///< control words with their backslashes, "\\keepn\\s3"

  std::vector<Font> fonts;
  std::vector<std::uint32_t> colors;     ///< 0xRRGGBB; the first is automatic
  std::vector<std::string> color_words;  ///< by colour: what its entry says besides, as it came; may end sooner
  std::int32_t ansi_code_page = 1252;
  std::int32_t default_font = 0;     ///< the N of \deffN
  bool is_default_font_said = true;  ///< else some readers take a font of their own
  /// Groups between the colour table and the text that are kept as they came: style sheet, list tables, information.
  std::string kept_header;
  /// What is written into the tables of kept_header when text names it.
  std::vector<JoinedEntry> joined;
  /// Control words of the whole document, its first section and its page, as they came ("\\paperw12240\\margl1800").
  std::string document_controls;
  /// Headers and footers of the first section, as they came.
  std::string kept_section;
  /// Bytes behind the last brace, as they came.
  std::string kept_behind;
  Losses losses;

  /// Whether what formats name may say other than its default.
  bool HasStyles() const { return kept_header.find("\\stylesheet") != std::string::npos; }

  /// Where the runs of a paragraph end, an index into `runs`.
  std::size_t EndOfRuns(std::size_t paragraph) const {
    return paragraph + 1 < paragraphs.size() ? paragraphs[paragraph + 1].first_run : runs.size();
  }
  /// The section break that ends a paragraph, as Run::object; 0 where none does. of_runs: those that runs name.
  std::uint32_t SectionBreakAt(std::size_t paragraph, const std::vector<Object>& of_runs) const {
    const std::size_t end = EndOfRuns(paragraph);
    if (end == paragraphs[paragraph].first_run || paragraphs[paragraph].cell >= 0) return 0;
    const Object* last = EntryOf(of_runs, runs[end - 1].object);
    return last != nullptr && last->kind == ObjectKind::SectionBreak ? runs[end - 1].object : 0;
  }
  /// The same, itself; null where none does.
  const Object* SectionBreakOf(std::size_t paragraph) const {
    return EntryOf(objects, SectionBreakAt(paragraph, objects));
  }
};

}  // namespace tme::rtf
