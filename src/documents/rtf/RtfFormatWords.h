#pragma once

#include <cstdint>

#include "documents/rtf/RtfColorTable.h"
#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfLists.h"
#include "documents/rtf/RtfTokenizer.h"

/// What control words do to the format of characters and paragraphs. Internal to the reader.
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

/// Words of ControlClass::CharacterFormat. Fonts, \plain and words that are kept as they are, are none of its business.
void ApplyCharacterWord(const ControlWord& word, const Token& token, const ColorTable& colors, CharFormat& format);

/// Words of ControlClass::ParagraphFormat but \pard and words that are kept as they are; what is over a limit counts as
/// a loss.
void ApplyParagraphWord(const ControlWord& word, const Token& token, const ListTables& lists, ParagraphState& paragraph,
                        Losses& losses);

}  // namespace tme::rtf
