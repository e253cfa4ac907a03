#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfBuilder.h"
#include "documents/rtf/RtfCharset.h"
#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfObjects.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfTokenizer.h"

/// The reader at work. Internal to it.
namespace tme::rtf {

/// What a document and the texts inside its kept groups have in common.
struct FontContext {
  explicit FontContext(const DecodeCodePage& decode) : pages(decode) {}

  CodePages pages;
  int ansi_page = 1252;
  std::vector<int> page_of_font;               ///< by index into RtfDocument::fonts; -1: the document's own
  std::vector<std::uint32_t> index_of_number;  ///< by \f; kNoFont when it is none

  static constexpr std::uint32_t kNoFont = 0xFFFFFFFF;
  std::uint32_t IndexOf(std::int32_t number) const;
  CodePage& PageOf(std::uint32_t index);
};

/// A label is the text alone of one group that is kept as it came.
enum class Reading : std::uint8_t { Document, Label };

class Parser {
 public:
  Parser(std::string_view bytes, RtfDocument& document, FontContext& fonts, Reading reading);

  void ReadDocument();

  /// Where text goes that stands outside \shptxt and its like.
  enum class Destination : std::uint8_t { Body, Nowhere, FontTable, ColorTable };
  std::string ReadLabel(Destination outside, CodePage& page, std::uint8_t unicode_skip);

 private:
  struct State {
    CharFormat character{};
    std::uint32_t character_id = kStale;  ///< kStale: to be looked up
    std::uint32_t paragraph = 0;          ///< index into paragraphs_
    CodePage* page = nullptr;
    std::size_t begin = 0;  ///< where the group's brace stands
    std::size_t output_before = 0;
    std::size_t effects_before = 0;
    std::size_t fields_before = 0;
    Destination destination = Destination::Body;
    Destination outer_destination = Destination::Body;
    std::uint8_t unicode_skip = 1;
    bool owns_paragraph = false;  ///< else `paragraph` is that of the group around
    bool is_untouched = true;     ///< nothing but control words so far
    bool is_field = false;
    bool is_nested_properties = false;
  };
  struct ParagraphState {
    ParagraphFormat format{};
    std::int32_t table_depth = 0;
    bool is_in_table = false;
    TabKind next_tab = TabKind::Left;
    TabLeader next_leader = TabLeader::None;

    int TableLevel() const { return table_depth > 0 ? table_depth : is_in_table ? 1 : 0; }
  };
  static constexpr std::uint32_t kStale = 0xFFFFFFFF;

  // RtfParser.cpp: tokens, groups and text.
  void Run();
  void OpenGroup();
  void CloseGroup();
  void CloseRoot();
  void EndField(const State& field);
  void ReadSymbol();
  void ReadStar();
  void ReadText(std::string_view text);
  void ReadByte(unsigned char byte);
  void ReadUnicode(std::int32_t value);
  void FlushBytes();
  void EmitCharacter(char32_t character);
  void Emit(std::string_view text);
  void EmitDecoded(std::string_view text);
  void EmitBody(std::string_view text);
  void StartBody();
  void BreakSection();
  bool SkipFallback();
  std::uint32_t CharacterId();
  void EndParagraph(int table_level);
  void EndRow(int level);
  /// Something was done that would be done again if the group were kept with it.
  void Touch() {
    Top().is_untouched = false;
    ++effects_;
  }
  State& Top() { return states_.back(); }

  // RtfParserWords.cpp: control words.
  void ReadWord(const ControlWord& word);
  void ReadLabelWord(const ControlWord& word);
  bool ReadTextWord(const ControlWord& word);
  bool ReadCharacterWord(const ControlWord& word);
  bool ReadParagraphWord(const ControlWord& word);
  bool ReadTableWord(const ControlWord& word);
  bool ReadFileWord(const ControlWord& word);
  void KeepWord(const ControlWord& word);
  void KeepDocumentWord(std::int32_t number);
  void AddTab(TabKind kind);
  void FindList(ParagraphFormat& format);
  RowDefinition& RowDefinitionOf(int level);
  ParagraphState& Paragraph() { return paragraphs_[Top().paragraph]; }
  ParagraphState& OwnParagraph();
  CharFormat& Character();
  std::string_view RawWord() const;
  bool IsOn() const { return !token_.has_value || token_.value != 0; }
  void SetFont(std::int32_t number);
  void ReadFontWord(const ControlWord& word);
  void EndFont();
  void NumberFonts();
  void ApplyDefaultFont();
  void EmitFontName(std::string_view text);
  void EmitColors(std::string_view text);
  void EndColors();
  std::uint32_t ColorOf(std::int32_t number) const;

  // RtfParserGroups.cpp: control words that say what their group is.
  void ReadGroupWord(const ControlWord& word);
  void ReadBodyGroup(const ControlWord& word);
  void AddFootnote();
  void AddShownPicture();
  void ReadLabelGroupWord(const ControlWord& word);
  void ReadUnknownGroup();
  std::string TakeGroup();
  void SkipGroup();
  std::string LabelOf(std::string_view group, Destination outside);
  void AddObject(ObjectKind kind, std::string group, std::string label);
  void AddPicture(std::string group);
  void AddDrawing(std::string group, std::string_view what);
  void AddField();
  void KeepInvisible(std::string group);
  bool IsFieldTooDeep(std::uint32_t parent) const;

  Tokenizer tokens_;
  RtfDocument& document_;
  FontContext& fonts_;
  Reading reading_;
  Builder builder_;
  Token token_;
  std::size_t word_begin_ = 0;  ///< of the control word, its \* included

  std::vector<State> states_;
  std::vector<ParagraphState> paragraphs_;
  std::size_t effects_ = 0;  ///< grows with what a group does beyond its own end
  std::string label_;
  std::string pending_bytes_;  ///< of a character of several bytes
  char32_t pending_surrogate_ = 0;
  int fallback_left_ = 0;  ///< how much of the fallback of a \u is still to be passed over

  bool is_closed_ = false;              ///< the last brace came
  std::size_t text_behind_braces_ = 0;  ///< where more text is known to stand
  bool is_body_ = false;
  bool is_section_pending_ = false;
  bool section_begins_page_ = true;
  bool is_first_section_ = true;
  std::int32_t default_font_number_ = 0;
  CharFormat default_character_{};

  Font font_{};
  int font_code_page_ = -1;
  bool is_in_font_ = false;
  std::uint32_t color_ = 0;
  bool is_color_given_ = false;
  std::uint32_t first_color_ = 0;
  std::uint32_t color_of_zero_ = 0;  ///< index of what \cf0 means

  ListTables lists_;
  ListKind list_of_text_ = ListKind::None;  ///< of the paragraph's \pntext or \listtext
  std::vector<RowDefinition> row_definitions_;
  std::uint32_t open_row_ = 0;  ///< the level whose definition is being read, 0: none

  std::vector<std::string_view> document_words_;
  std::vector<std::uint32_t> document_word_places_;  ///< index plus 1 by ControlWord::value
};

}  // namespace tme::rtf
