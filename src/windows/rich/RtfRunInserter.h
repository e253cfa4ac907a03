#pragma once

#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "windows/rich/RtfFormats.h"
#include "windows/rich/RtfImport.h"

class QTextCursor;

namespace tme {

/// Inserts text and objects of a document into a view, what is not seen as a part of the store, and the text of a long
/// paragraph in pieces.
class RtfRunInserter {
 public:
  /// All outlive this; the importer moves the cursor from block to block.
  RtfRunInserter(const rtf::RtfDocument& source, RtfStore& store, const RtfFormats& formats, QTextCursor& cursor,
                 const RtfImportStep& step);

  /// Of char_formats, by its index; the first for what is past the end.
  const QTextCharFormat& FormatOf(std::uint32_t number);
  /// Whether a view does not show a run.
  bool IsUnseen(const rtf::Run& run) const;
  /// Keeps what a view does not show, from run to run; the number of kAttached. offset: of the first, in the text.
  int Attach(std::size_t first, std::size_t last, std::uint32_t offset);

  /// Inserts runs; the first begins at Offset, which goes along.
  void InsertRuns(std::size_t first, std::size_t last);
  std::uint32_t Offset() const { return offset_; }
  void SetOffset(std::uint32_t offset) { offset_ = offset; }

  /// The paragraph that follows is a long one. format: of its first block, and made that of a piece. mark: of
  /// char_formats.
  void BeginPieces(QTextBlockFormat& format, std::uint32_t mark);
  /// attached: what the last piece gets; 0: nothing.
  void EndPieces(int attached);
  std::size_t LongParagraphs() const { return long_paragraphs_; }

  /// Tells how far it is.
  void Step();
  bool GivenUp() const { return given_up_; }

 private:
  void NextPiece();
  void TakeRoomForRun();
  void InsertText(std::string_view text, const QTextCharFormat& format);
  void InsertObject(int object, QTextCharFormat format);

  const rtf::RtfDocument& source_;
  RtfStore& store_;
  const RtfFormats& formats_;
  QTextCursor& cursor_;
  const RtfImportStep& step_;
  std::vector<std::optional<QTextCharFormat>> char_formats_;  ///< where they are known
  std::uint32_t offset_ = 0;                                  ///< in the text, of the next run
  std::size_t long_paragraphs_ = 0;
  // Of the piece that is being filled; endless outside long paragraphs.
  std::size_t room_;
  std::size_t room_runs_;
  QTextBlockFormat next_piece_;
  std::uint32_t piece_mark_ = 0;
  bool given_up_ = false;
};

}  // namespace tme
