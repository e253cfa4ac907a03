// How RtfPad lays its text out without keeping the user waiting, and at which size.

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextFormat>
#include <QTextList>
#include <algorithm>
#include <utility>

#include "shell/LongWork.h"
#include "system/Twips.h"
#include "windows/rich/RtfFormats.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/RtfPieces.h"
#include "windows/rich/RtfShape.h"

namespace tme {
namespace {

// So much is laid out without asking, between two checks of Cancel: some hundredths of a second.
constexpr int kCharactersAtOnce = 100'000;
constexpr int kBlocksAtOnce = 1'000;
constexpr int kLeastWrapPixels = 40;

}  // namespace

RtfPad::LargeEdit::LargeEdit(RtfPad& pad, std::size_t cost) {
  if (!pad.Complete() || std::max(cost, pad.SelectionCost()) < kMaxCostAtOnce || !pad.document()->isLayoutEnabled())
    return;
  pad_ = &pad;
  place_ = pad.LeavePlace();
  pad.document()->setLayoutEnabled(false);
}

RtfPad::LargeEdit::~LargeEdit() {
  if (!pad_) return;
  pad_->large_steps_.insert(pad_->document()->availableUndoSteps());
  pad_->document()->setLayoutEnabled(true);
  pad_->FitPage();
  pad_->ShowFrom(place_);
}

int RtfPad::FirstShown() const { return cursorForPosition({0, 0}).position(); }

bool RtfPad::LayOutTo(int position) {
  const QTextDocument* text = document();
  position = std::min(position, text->characterCount() - 1);
  if (!text->isLayoutEnabled()) return true;
  LongWork work(window(), tr("Laying out the text"));
  for (QTextBlock block = text->begin();;) {
    const QTextBlock far = text->findBlock(block.position() + kCharactersAtOnce);
    const QTextBlock next = text->findBlockByNumber(block.blockNumber() + kBlocksAtOnce);
    if (!far.isValid() && !next.isValid()) return true;
    block = !far.isValid() || (next.isValid() && next.position() < far.position()) ? next : far;
    if (block.position() >= position) return true;
    // Asked for a block, the layout goes on as far as that.
    text->documentLayout()->blockBoundingRect(block);
    if (!work.GoOn(static_cast<std::size_t>(block.position()), static_cast<std::size_t>(position))) return false;
    if (document() != text) return false;
  }
}

int RtfPad::LeavePlace() {
  if (verticalScrollBar()->value() == 0) return 0;
  const int place = FirstShown();
  verticalScrollBar()->setValue(0);
  return place;
}

void RtfPad::ShowFrom(int position) {
  if (position == 0 || !LayOutTo(position)) return;
  QTextCursor cursor(document());
  cursor.setPosition(std::min<int>(position, document()->characterCount() - 1));
  verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(cursor).top());
}

bool RtfPad::ShowCaret() {
  if (!LayOutTo(textCursor().position())) return false;
  ensureCursorVisible();
  return true;
}

void RtfPad::SetRightMargin(int twips) {
  if (std::exchange(right_margin_, twips) == twips) return;
  const int place = LeavePlace();
  if (twips >= kNoWrap) {
    LayOutUnwrapped();
  } else {
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setLineWrapColumnOrWidth(std::max(TwipsToPixels(twips, logicalDpiX()), kLeastWrapPixels));
    setLineWrapMode(FixedPixelWidth);
  }
  FitPage();
  ShowFrom(place);
}

/// Not NoWrap: that lays out to no width at all while it knows of no paragraph that needs one, and what is
/// right-aligned or centred then ends up to the left of the page. Longer paragraphs widen the page here too.
void RtfPad::LayOutUnwrapped() {
  setLineWrapMode(WidgetWidth);
  setWordWrapMode(QTextOption::NoWrap);
}

void RtfPad::SetZoom(int percent) {
  if (zoom_.Set(percent)) ZoomInPlace();
}

/// The layout measures on a device of another resolution; the document knows nothing of it.
void RtfPad::ApplyZoom() {
  QAbstractTextDocumentLayout* layout = document()->documentLayout();
  const int percent = zoom_.Value();
  if (percent == 100) {
    if (layout->paintDevice() == viewport()) return;
    layout->setPaintDevice(viewport());
  } else {
    zoom_device_ = QImage(1, 1, QImage::Format_RGB32);
    zoom_device_.setDotsPerMeterX(qRound(logicalDpiX() * percent / 100.0 / 0.0254));
    zoom_device_.setDotsPerMeterY(qRound(logicalDpiY() * percent / 100.0 / 0.0254));
    layout->setPaintDevice(&zoom_device_);
  }
  // As after a new page size: all is laid out anew, what is in sight first.
  document()->setPageSize({document()->pageSize().width(), page_height_.Of(*document(), *store_, percent)});
  viewport()->update();
}

void RtfPad::FitPage() {
  const QSizeF page(document()->pageSize().width(), page_height_.Of(*document(), *store_, zoom_.Value()));
  if (page != document()->pageSize()) document()->setPageSize(page);
}

void RtfPad::ZoomInPlace() {
  const int place = LeavePlace();
  ApplyZoom();
  ShowFrom(place);
}

void RtfPad::Undo() { Step(StepKind::Undo); }

void RtfPad::Redo() { Step(StepKind::Redo); }

void RtfPad::Step(StepKind kind) {
  if (!Complete()) return;
  const bool is_undo = kind == StepKind::Undo;
  const int commands = document()->availableUndoSteps();
  if (!(is_undo ? large_steps_ : large_redos_).contains(commands)) {
    is_undo ? QTextEdit::undo() : QTextEdit::redo();
    ShowCaret();
    return;
  }
  const std::set<int> large_steps = large_steps_;
  const int characters = document()->characterCount();
  QTextCursor place(document());
  {
    const LargeEdit edit(*this, kMaxCostAtOnce);
    // A caret that is moved outside of one lays all out up to its place.
    QTextCursor all(document());
    all.beginEditBlock();
    is_undo ? document()->undo(&place) : document()->redo(&place);
    all.endEditBlock();
  }
  if (is_undo) {
    large_steps_ = large_steps;  // no new ones
    large_redos_.insert(document()->availableUndoSteps());
  }
  // Where only formats came back, the selection stays: its far end may not be laid out for long.
  if (document()->characterCount() == characters || !LayOutTo(place.position())) return;
  setTextCursor(place);
  ensureCursorVisible();
}

std::size_t RtfPad::SelectionCost() const {
  const QTextCursor cursor = textCursor();
  const int first = cursor.selectionStart(), last = cursor.selectionEnd();
  const int blocks = document()->findBlock(last).blockNumber() - document()->findBlock(first).blockNumber();
  return static_cast<std::size_t>(last - first) + static_cast<std::size_t>(blocks) * kCostOfCell;
}

/// The edit's own key takes the space after an item away, and all formats of an empty paragraph.
void RtfPad::BeginParagraph() {
  QTextCursor cursor = textCursor();
  if (!cursor.hasSelection() && !LayOutTo(cursor.position())) return;
  {
    const LargeEdit edit(*this);
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    QTextBlockFormat format = cursor.blockFormat();
    QTextList* list = cursor.currentList();
    if (list && cursor.block().length() == 1) {
      list->remove(cursor.block());
      // The text goes on where it stands outside of lists.
      format.setObjectIndex(-1);
      format.clearProperty(QTextFormat::ListStyle);
      format.clearProperty(QTextFormat::BlockLeftMargin);
      cursor.setBlockFormat(format);
    } else {
      // Within a paragraph, the end that there was is that of its second half.
      const QTextCharFormat here = cursor.charFormat(), end = cursor.block().charFormat();
      const bool is_within = !cursor.atBlockEnd() && here != end && !format.hasProperty(kPiece);
      const bool has_own_end = RtfFormats::HasOwnEnd(cursor.block()) && !format.hasProperty(kMarkFormat);
      cursor.insertBlock(format, is_within ? end : here);
      QTextCursor before(cursor.block().previous());
      // What is attached to the paragraph's end stays there.
      format.clearProperty(kAttached);
      if (before.blockFormat().hasProperty(kAttached)) before.setBlockFormat(format);
      if (is_within && has_own_end) {
        before.setBlockCharFormat(here);
      } else if (is_within) {
        QTextBlockFormat first = before.blockFormat();
        first.setProperty(kMarkFormat, static_cast<int>(RtfFormats(*store_).Read(here)) + 1);
        before.setBlockFormat(first);
      }
    }
    cursor.endEditBlock();
    setTextCursor(cursor);
  }
  ShowCaret();
}

void RtfPad::AfterInsertion(int first) {
  const QTextBlock begin = document()->findBlock(first);
  const int flat = begin.blockFormat().intProperty(kFlatCell);
  const int last = textCursor().position();
  if (flat > 0) {
    // What is put into a cell stays in it.
    for (QTextBlock block = begin.next(); block.isValid() && block.position() <= last; block = block.next()) {
      if (QTextCursor(block).currentTable() != QTextCursor(begin).currentTable()) continue;
      QTextBlockFormat format = block.blockFormat();
      format.setProperty(kFlatCell, flat);
      format.setBackground(begin.blockFormat().background());
      QTextCursor(block).setBlockFormat(format);
    }
  }
  SplitLongParagraphs(*document(), *store_, first, last);
}

}  // namespace tme
