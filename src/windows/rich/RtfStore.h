#pragma once

#include <QTextFormat>
#include <cstdint>
#include <string>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme {

/// What a view of rich text carries in its formats besides what it shows. All are numbers that name a part of the
/// RtfStore, plus 1.
enum RtfProperty : int {
  kCharFormat = QTextFormat::UserProperty + 1,  ///< of char formats: RtfStore::document.char_formats
  kParagraphFormat,                             ///< of block formats: RtfStore::document.paragraph_formats
  kObject,                                      ///< of an object's char format: RtfStore::document.objects; kPageBreak
  kAttached,                                    ///< of char and block formats: RtfStore::attached
  kMarkFormat,       ///< of the first block of a cell or behind a table, whose char format is theirs
  kFiller,           ///< of a block that stands only because the view needs one beside a table
  kTable,            ///< of table formats: RtfStore::tables
  kFlatCell,         ///< of block formats: RtfStore::flat.cells, the cell of a table that is shown as lines
  kLongParagraph,    ///< of block formats: one number for all blocks that show a long paragraph
  kPiece,            ///< of these: grows from block to block
  kListLevel,        ///< of the format of a list that no file has made, itself: 0 to 8
  kListNumber,       ///< of the same, itself: its \ls
  kExtraWords,       ///< of block formats that no file has made: rtf::ParagraphFormat::extra, itself
  kSectionBreak,     ///< of the char format of one: whether a page begins, as RtfSectionBreak
  kPageBreakBefore,  ///< of block formats: on a new page, where there are pages: the view breaks none
};
enum class RtfSectionBreak : int { None, Page, SamePage };
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
    bool has_spans = false;  ///< of cells over several rows or columns
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

inline constexpr const char* kDefaultRtfFont = "Arial";
/// A document without text in the editor's default font.
rtf::RtfDocument EmptyRtfDocument();
/// Takes the text and its structure out of a document, which keeps the rest.
rtf::RtfDocument TakeRtfText(rtf::RtfDocument& from);

}  // namespace tme
