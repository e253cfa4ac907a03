#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfCharset.h"
#include "documents/rtf/RtfControls.h"
#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfSymbols.h"
#include "documents/rtf/RtfTextDecoder.h"

namespace tme::rtf {

/// Reads \fonttbl and knows of each font its code page, and of text without a font which one it has. Internal to the
/// reader.
class FontTable {
 public:
  static constexpr std::uint32_t kNoFont = 0xFFFFFFFF;

  /// Fills the fonts of `document`; both outlive this.
  FontTable(RtfDocument& document, const DecodeCodePage& decode) : document_(document), pages_(decode) {}

  /// Knows the fonts of a document that was read, which is not touched and need not stay.
  void Take(const RtfDocument& read);

  /// A control word of the table, `raw` as it stands in the file; the encoding becomes that of the font's name.
  void ReadWord(const ControlWord& word, std::int32_t value, std::string_view raw, TextEncoding& encoding);
  /// A word or group that the font's entry keeps as it stands in the file.
  void Keep(std::string_view raw);
  /// A part of the font's name, whose semicolon ends the entry.
  void ReadText(std::string_view text);
  void EndEntry();

  /// Of the \fN, an index into RtfDocument::fonts; kNoFont when there is none.
  std::uint32_t IndexOf(std::int32_t number) const;
  /// The same, or what stands for a font that is in no table: it has the default one's page.
  std::uint32_t FontOf(std::int32_t number) const;
  CodePage& PageOf(std::uint32_t index);
  /// Which signs the font of an \fN has.
  SymbolFont SymbolsOf(std::int32_t number) const;

  /// The page of text whose font says no other.
  int AnsiPage() const { return ansi_page_; }
  void SetAnsiPage(int page) { ansi_page_ = page; }

  /// \deffN
  std::int32_t DefaultNumber() const { return default_number_; }
  void SetDefaultNumber(std::int32_t number) {
    default_number_ = number;
    is_default_said_ = true;
  }
  /// The font of text that names none, as last resolved; kNoFont until then.
  std::uint32_t Default() const { return default_; }
  /// Finds the default font by its number. False while the table does not have it.
  bool ResolveDefault();
  /// From now on text without a font stands in the document.
  void FixDefault() { is_default_fixed_ = true; }

  /// When all is read: a font that text has goes under a number of its own when its number has come to mean another,
  /// and so does a missing one.
  void NumberFonts();

 private:
  RtfDocument& document_;
  CodePages pages_;
  int ansi_page_ = 1252;
  std::vector<int> page_of_font_;               ///< by index into RtfDocument::fonts; -1: the document's own
  std::vector<std::uint32_t> index_of_number_;  ///< by \f; kNoFont when it is none

  std::int32_t default_number_ = 0;
  bool is_default_said_ = false;
  std::uint32_t default_ = kNoFont;
  bool is_default_fixed_ = false;

  Font entry_{};
  int entry_page_ = -1;
  bool is_in_entry_ = false;
};

}  // namespace tme::rtf
