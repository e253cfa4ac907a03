#pragma once

#include <QRectF>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

#include "documents/rtf/RtfLists.h"
#include "documents/rtf/RtfNumbering.h"
#include "windows/rich/RtfStore.h"
#include "windows/rich/RtfTraceTexts.h"

class QPainter;
class QTextBlock;
class QTextCharFormat;
class QTextDocument;
class QTextFragment;

namespace tme {

/// Draws over a rich-text view what its document cannot show: the numbers and bullets of lists, tracked changes, and on
/// a screen also flags where comments stand and bands for headers, footers and borders of pages. The document itself
/// has nothing of it, so that no export sees it.
class RtfTraces {
 public:
  enum class Medium : std::uint8_t { Screen, Paper };

  /// Of the document that is drawn from now on; outlives this, or comes anew.
  void Reset(const RtfStore& store);
  /// Makes room for the bands at both ends of a document. Not for paper.
  void MakeRoom(QTextDocument& document) const;
  /// clip: in the document's coordinates, which the painter has, too. What stands there is laid out.
  void Draw(QPainter& painter, const QTextDocument& document, const QRectF& clip, Medium medium);
  /// Of the mark at a point of the document, as last drawn; empty for none.
  QString TipAt(const QPointF& point) const;
  /// From this block on, lists are counted anew.
  void NoteEdit(int block);
  bool HasLists() const { return has_lists_; }

 private:
  struct Spot {
    QRectF place;
    QString tip;
  };
  using Revision = RtfTraceTexts::Revision;
  /// Of the store's paragraph formats; kNoParagraph for a block that begins none.
  int FormatOf(const QTextBlock& block);
  /// What stands before a block, which is counted.
  QString NumberOf(const QTextBlock& block, rtf::RtfNumbering& counter);
  void ReadLists();
  /// Counts up to a block.
  rtf::RtfNumbering CounterBefore(const QTextDocument& document, const QTextBlock& block);
  void DrawNumber(QPainter& painter, const QTextBlock& block, const QPointF& origin, const QString& number);
  void DrawRuns(QPainter& painter, const QTextBlock& block, const QPointF& origin, Medium medium);
  void DrawRevision(QPainter& painter, const QTextBlock& block, const QPointF& origin, const QTextFragment& run,
                    const Revision& revision);
  /// A tracked end of a paragraph.
  void DrawRevisedEnd(QPainter& painter, const QTextBlock& block, const QPointF& origin);
  void DrawChangeBar(QPainter& painter, double top, double height, RtfTraceTexts::Mark mark);
  void DrawFlag(QPainter& painter, const QTextBlock& block, const QPointF& origin, int position, int attached);
  /// text_end: where the lower band stands; below the clip, where it is out of sight.
  void DrawBands(QPainter& painter, const QTextDocument& document, double text_end);
  const QString& AttachedText(int attached);
  /// index: of the format.
  const Revision& RevisionOf(int index, const QTextCharFormat& format);
  void AddMark(const QRectF& place, const QString& tip);

  static constexpr int kUnknown = -2, kNoParagraph = -1;

  const RtfStore* store_ = nullptr;
  bool has_lists_ = false;
  RtfTraceTexts::Band top_, bottom_;
  QRectF clip_;  ///< while it draws
  std::vector<Spot> marks_;
  std::vector<int> formats_;  ///< FormatOf by the index of a block's format, where it is known
  std::optional<RtfTraceTexts> texts_;
  rtf::ListTables lists_;
  std::size_t header_read_ = 0;                     ///< its size when lists_ were read from it
  std::vector<std::optional<Revision>> revisions_;  ///< by the index of a character's format
  std::vector<std::optional<QString>> attached_texts_;
  std::vector<rtf::RtfNumbering> counters_;  ///< before each block whose number is a multiple of kBlocksOfCounter
};

}  // namespace tme
