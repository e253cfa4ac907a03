#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "documents/rtf/RtfBuilder.h"
#include "documents/rtf/RtfColorTable.h"
#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfDocumentControls.h"
#include "documents/rtf/RtfFontTable.h"
#include "documents/rtf/RtfLabel.h"
#include "documents/rtf/RtfListTexts.h"
#include "documents/rtf/RtfLists.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfSource.h"
#include "documents/rtf/RtfTextDecoder.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {

/// What control words have said about a paragraph.
struct ParagraphState {
  ParagraphFormat format{};
  std::int32_t table_depth = 0;
  bool is_in_table = false;
  TabKind next_tab = TabKind::Left;
  TabLeader next_leader = TabLeader::None;

  /// How many tables it stands in.
  int TableLevel() const { return table_depth > 0 ? table_depth : is_in_table ? 1 : 0; }
};

/// Reads the groups, control words and text of a file into a document. Internal to the reader.
class Parser : private TextDecoder::Sink {
 public:
  /// All outlive this.
  /// source: null when nobody wants to know.
  Parser(std::string_view bytes, RtfDocument& document, const DecodeCodePage& decode, RtfSource* source);

  /// A whole file, or what may stand in one.
  enum class Form : std::uint8_t { File, Fragment };
  void Read(Form form);

 private:
  /// Where text goes.
  enum class Destination : std::uint8_t { Body, Nowhere, FontTable, ColorTable };

  /// What holds until the end of a group.
  struct State {
    CharFormat character{};
    std::uint32_t character_id = kStale;  ///< kStale: to be looked up
    std::uint32_t paragraph = 0;          ///< index into paragraphs_
    TextEncoding encoding{};
    std::size_t begin = 0;  ///< where the group's brace stands
    std::size_t output_before = 0;
    std::size_t effects_before = 0;
    std::size_t fields_before = 0;
    Destination destination = Destination::Body;
    Destination outer_destination = Destination::Body;
    bool owns_paragraph = false;  ///< else `paragraph` is that of the group around
    bool has_only_words = true;   ///< nothing but control words so far
    bool is_field = false;
    std::uint8_t field_words = 0;   ///< which of kFieldWords came, as bits
    std::string_view font_word{};   ///< the \f that named the font, as it came; empty for the default
    bool has_class_fonts = false;   ///< kept words may name fonts of classes of text
    bool is_font_of_class = false;  ///< \af is about text of the character's class
    bool is_nested_properties = false;
  };
  static constexpr std::uint32_t kStale = 0xFFFFFFFF;
  static constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);

  // RtfParser.cpp: tokens, groups and text.
  void ReadToken();
  void ReadStar();
  void OpenGroup();
  void CloseGroup();
  void CloseRoot();
  void EndField(const State& field);
  void Text(std::string_view text, const TextDecoder::Place& place) override;
  void UnknownCharacter(const TextDecoder::Place& place) override;
  void FallbackPassed(std::size_t end, bool takes_next) override;
  void NotePiece(RtfSource::Kind kind, std::size_t begin, std::size_t end, bool takes_next = false);
  void NoteMark(std::size_t before, RtfSource::MarkKind kind);
  void NoteHeader(std::size_t end);
  void NoteHeaderEnd();
  void NoteTable(Destination table);
  void NoteKeptTable(HeaderTable table);
  void NoteLabel();
  /// at: where what begins it stands.
  void StartBody(std::size_t at);
  void EndParagraph(int table_level, RtfSource::MarkKind kind = RtfSource::MarkKind::Fixed);
  State& Top() { return states_.back(); }
  bool IsBody() { return Top().destination == Destination::Body; }
  ParagraphState& Paragraph() { return paragraphs_[Top().paragraph]; }
  ParagraphState& OwnParagraph();
  CharFormat& Character();
  std::uint32_t CharacterId();
  /// Something was done that would be done again if the group were kept with it.
  void NoteEffect() {
    Top().has_only_words = false;
    ++effects_;
  }

  // RtfParserCharacters.cpp: control words of characters.
  void ReadCharacterWord(const ControlWord& word);
  void NoteSaid(const ControlWord& word);
  void ReadDirection();
  void ReadFontClass(FontClass font_class);
  bool IsOfCharacterBorder() const;
  void KeepWithCharacters(std::string_view name);
  void SetFont(std::int32_t number);
  void ApplyDefaultFont();

  // RtfParserWords.cpp: other control words.
  void ReadWord(const ControlWord& word);
  void ReadBodyWord(const ControlWord& word);
  void ReadTextWord(const ControlWord& word);
  void ReadParagraphWord(const ControlWord& word);
  void ReadBorderWord(const ControlWord& word);
  void ReadRowWord(const ControlWord& word);
  void ReadUnknownWord(const ControlWord& word);
  void AddRowWord(const ControlWord& word);
  /// `level`: how many tables stand around the cell or row.
  void EndCell(int level);
  void EndRow(int level);
  void ReadFieldWord();
  void KeepWithParagraph(Extra how);
  std::string_view RawWord() const;

  // RtfParserSections.cpp: words of the document and its sections.
  void ReadFileWord(const ControlWord& word);
  void KeepWordWithSection();
  void KeepGroupWithSection();
  void NoteSectionPart(std::size_t begin);
  void BreakSection();
  void SetSectionStart(bool begins_page);

  // RtfParserGroups.cpp: control words that say what their group is.
  void ReadDeepWord(const ControlWord& word);
  void ReadGroupWord(const ControlWord& word);
  void ReadBodyGroup(const ControlWord& word);
  void ReadUnknownGroup();
  std::string TakeGroup();
  void SkipGroup();
  void PassGroup();
  void LeaveGroup();
  std::string LabelOfGroup(std::string_view group, LabelText which);
  void ReadLabel();
  void AddObject(Object&& object);
  void AddPicture(std::string group);
  void AddShownPicture();
  void AddDrawing(std::string_view what);
  void AddNote(std::string_view what);
  void BeginField();
  void AddField();
  void ReadHeaderGroup(const ControlWord& word);
  void ReadLists(const ControlWord& word);
  void KeepInvisible(std::string group);
  bool IsFieldTooDeep(std::uint32_t parent) const;

  RtfDocument& document_;
  Tokenizer tokens_;
  Token token_;
  std::size_t word_begin_ = 0;  ///< of the control word, its \* included
  TextDecoder decoder_;
  FontTable fonts_;
  ColorTable colors_;
  ListTables lists_;
  RowDefinitions rows_;
  DocumentControls document_controls_;
  Builder builder_;
  RtfSource* const source_;
  std::uint32_t first_piece_ = 0;                    ///< of the paragraph
  std::size_t object_begin_ = kUnknown;              ///< where the bytes of the next object begin
  std::pair<std::uint32_t, std::uint32_t> label_{};  ///< of the paragraph, as in its mark

  std::vector<State> states_;
  std::vector<ParagraphState> paragraphs_;
  std::size_t effects_ = 0;                      ///< grows with what a group does beyond its own end
  std::size_t character_border_end_ = kUnknown;  ///< where the last word about it ends
  std::uint16_t said_properties_ = kFont;        ///< of CharFormat::said: those that count
  std::string text_of_list_;                     ///< what the paragraph's \pntext or \listtext says
  ListTexts lists_of_text_;

  std::size_t too_deep_ = 0;            ///< how many groups over the limit are open
  bool is_closed_ = false;              ///< the last brace came
  bool is_header_known_ = false;        ///< where the control words at the beginning end
  std::size_t root_end_ = 0;            ///< where that stands
  std::size_t last_brace_ = kUnknown;   ///< of those that end no group behind the first of them
  std::size_t text_behind_braces_ = 0;  ///< where more text is known to stand
  bool is_body_ = false;                ///< the text has begun
  std::uint32_t section_ = 0;      ///< the break before it: index into RtfDocument::objects plus 1; 0 for the first one
  std::size_t section_begin_ = 0;  ///< how many paragraphs there were behind that
  bool section_begins_page_ = true;
  bool is_page_border_ = false;  ///< border words are about one
};

}  // namespace tme::rtf
