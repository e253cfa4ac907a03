#pragma once

#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextListFormat>
#include <unordered_map>
#include <vector>

#include "documents/rtf/RtfDocument.h"

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
  kFlatCell,       ///< of block formats: RtfStore::flat.cells, the cell of a table that is shown as lines
  kLongParagraph,  ///< of block formats: one number for all blocks that show a long paragraph
  kPiece,          ///< of these: grows from block to block
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
    // Of the view's tables that are one in the file: the same number, and which of them it is. 0: it is one alone.
    int group = 0;
    int part = 0;
  };
  /// Tables whose cells are shown as lines. A table's rows and a row's cells stand side by side, in their order.
  struct FlatTables {
    struct Row {
      std::uint32_t table = 0;  ///< index into parents
      std::uint32_t first_cell = 0;
      std::uint32_t end_cell = 0;
      std::string definition;
    };
    std::vector<rtf::Cell> cells;  ///< their `row` is an index into rows
    std::vector<Row> rows;
    std::vector<std::int32_t> parents;  ///< by table: index into cells; -1 where what is around is shown
  };

  /// Without text, runs, paragraphs, cells, rows and tables, but while it is written.
  rtf::RtfDocument document;
  std::vector<std::vector<Attached>> attached;
  std::vector<KeptTable> tables;
  FlatTables flat;
  int long_paragraphs = 0;  ///< the last number given
  int parted_tables = 0;    ///< the same
};

/// Whether a block goes on with the paragraph of the one right before it.
bool GoesOn(const QTextBlockFormat& before, const QTextBlockFormat& format);

/// A document without text in the editor's default font.
rtf::RtfDocument EmptyRtfDocument();

/// Turns looks into formats and back. What a format cannot show is taken back from the look that it was made of.
class RtfLooks {
 public:
  explicit RtfLooks(RtfStore& store);

  QTextCharFormat Show(std::uint32_t char_format) const;
  QTextBlockFormat Show(const rtf::ParagraphFormat& look, std::uint32_t number) const;
  static QTextListFormat::Style StyleOf(rtf::ListKind kind);
  /// For a block that shows a piece of a paragraph (kPiece): without what belongs to the paragraph's ends.
  static void ShowAsPiece(QTextBlockFormat& shown, int piece);

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
