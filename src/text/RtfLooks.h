#pragma once

#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextListFormat>
#include <unordered_map>
#include <vector>

#include "text/rtf/RtfDocument.h"

class QTextList;

namespace tme {

/// What a view of rich text carries in its formats besides what it shows. All are numbers that name a part of the
/// RtfStore, plus 1.
enum RtfProperty : int {
  kCharLook = QTextFormat::UserProperty + 1,  ///< of char formats: RtfStore::document.char_formats
  kParagraphLook,                             ///< of block formats: RtfStore::document.paragraph_formats
  kObject,                                    ///< of an object's char format: RtfStore::document.objects; kPageBreak
  kAttached,                                  ///< of char and block formats: RtfStore::attached
  kMarkLook,                                  ///< of the first block of a cell, whose char format is the cell's own
  kFiller,                                    ///< of a block that stands only because the view needs one beside a table
  kTable,                                     ///< of table formats: RtfStore::tables
};
inline constexpr int kPageBreak = -1;
/// Type of the one kind of inline object: pictures, placeholders and page breaks.
inline constexpr int kRtfObjectType = QTextFormat::UserObject + 1;

/// What a document keeps beside its view. Its parts are only ever added to, so that the numbers in formats stay good
/// through undo.
struct RtfStore {
  /// An invisible object, or text that is hidden. Stands before the text, or at the end of the paragraph, that names
  /// it.
  struct Attached {
    std::uint32_t object = 0;  ///< index into document.objects plus 1; 0: hidden text
    std::uint32_t format = 0;  ///< index into document.char_formats
    std::string hidden_text;
  };
  struct KeptRow {
    std::string definition;
    std::vector<rtf::Cell> cells;  ///< their `row` means nothing here
  };
  struct KeptTable {
    int columns = 0;  ///< of the view's table
    std::vector<KeptRow> rows;
  };

  /// Without text, runs, paragraphs, cells, rows and tables, but while it is written.
  rtf::RtfDocument document;
  std::vector<std::vector<Attached>> attached;
  std::vector<KeptTable> tables;
};

/// A document without text in the editor's default font.
rtf::RtfDocument EmptyRtfDocument();

/// Twips as lengths of text formats, which layouts scale from the screen's resolution to the device's.
qreal TwipsToUnits(int twips);
int UnitsToTwips(qreal units);

/// Turns looks into formats and back. What a format cannot show is taken back from the look that it was made of.
class RtfLooks {
 public:
  explicit RtfLooks(RtfStore& store);

  QTextCharFormat Show(std::uint32_t char_format) const;
  QTextBlockFormat Show(const rtf::ParagraphFormat& look, std::uint32_t number) const;
  static QTextListFormat::Style StyleOf(rtf::ListKind kind);

  /// Index into the store's char_formats; new looks, fonts and colours are added.
  std::uint32_t Read(const QTextCharFormat& shown);
  /// Index into the store's paragraph_formats. list: null for a paragraph outside any.
  std::uint32_t Read(const QTextBlockFormat& shown, const QTextList* list);

  std::uint32_t Add(const rtf::CharFormat& look);
  std::uint32_t Add(const rtf::ParagraphFormat& look);
  /// Index of the font of that name, added when it is new.
  std::uint32_t FontOf(const rtf::Font& font);
  /// Index of a 0xRRGGBB colour, added when it is new.
  std::uint32_t ColorOf(std::uint32_t rgb);

 private:
  struct Hash {
    std::size_t operator()(const rtf::CharFormat& look) const;
    std::size_t operator()(const rtf::ParagraphFormat& look) const;
  };
  QBrush BrushOf(std::uint32_t color) const;
  std::uint32_t ColorOf(const QBrush& brush);
  void ReadFont(const QTextCharFormat& shown, const QTextCharFormat& was, rtf::CharFormat& look);
  void ReadIndents(const QTextBlockFormat& shown, const QTextBlockFormat& was, rtf::ParagraphFormat& look) const;

  RtfStore& store_;
  std::unordered_map<rtf::CharFormat, std::uint32_t, Hash> char_numbers_;
  std::unordered_map<rtf::ParagraphFormat, std::uint32_t, Hash> paragraph_numbers_;
};

}  // namespace tme
