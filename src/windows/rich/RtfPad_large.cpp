// What keeps RtfPad usable with long paragraphs and large documents.

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>

#include "shell/LongWork.h"
#include "windows/rich/RtfPad.h"
#include "windows/rich/RtfShape.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

// So much is laid out without asking, between two looks at Cancel: some hundredths of a second.
constexpr int kCharactersAtOnce = 100'000;
constexpr int kBlocksAtOnce = 1'000;
constexpr auto kPieceCharacters = static_cast<int>(kBytesOfPiece);

bool GoesOnFrom(const QTextBlock& before, const QTextBlock& block) {
  return before.isValid() && block.isValid() && GoesOn(before.blockFormat(), block.blockFormat());
}

}  // namespace

RtfPad::LargeEdit::LargeEdit(RtfPad& pad, std::size_t cost) {
  if (std::max(cost, pad.SelectionCost()) < kMaxCostAtOnce || !pad.document()->isLayoutEnabled()) return;
  pad_ = &pad;
  place_ = pad.LeavePlace();
  pad.document()->setLayoutEnabled(false);
}

RtfPad::LargeEdit::~LargeEdit() {
  if (!pad_) return;
  pad_->large_steps_.insert(pad_->document()->availableUndoSteps());
  pad_->document()->setLayoutEnabled(true);
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

void RtfPad::Undo() {
  Step([this] { QTextEdit::undo(); }, document()->availableUndoSteps());
}

void RtfPad::Redo() {
  Step([this] { QTextEdit::redo(); }, document()->availableUndoSteps() + 1);
}

void RtfPad::Step(const std::function<void()>& step, int number) {
  const std::set<int> large_steps = large_steps_;
  {
    const LargeEdit edit(*this, large_steps.contains(number) ? kMaxCostAtOnce : 0);
    step();
  }
  large_steps_ = large_steps;  // no new ones
  ShowCaret();
}

std::size_t RtfPad::SelectionCost() const {
  const QTextCursor cursor = textCursor();
  const int first = cursor.selectionStart(), last = cursor.selectionEnd();
  const int blocks = document()->findBlock(last).blockNumber() - document()->findBlock(first).blockNumber();
  return static_cast<std::size_t>(last - first) + static_cast<std::size_t>(blocks) * kCostOfCell;
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
  SplitLongParagraphs(first, last);
}

void RtfPad::SplitLongParagraphs(int first, int last) {
  QTextBlock block = document()->findBlock(first);
  const int behind = document()->characterCount() - last;
  while (GoesOnFrom(block.previous(), block)) block = block.previous();
  while (block.isValid() && block.position() <= document()->characterCount() - behind) {
    QTextBlock end = block;
    bool is_long = false;
    do {
      is_long = is_long || end.length() > static_cast<int>(kLongBytes);
      end = end.next();
    } while (GoesOnFrom(end.previous(), end));
    block = is_long ? SplitParagraph(block, end) : end;
  }
}

QTextBlock RtfPad::SplitParagraph(QTextBlock block, const QTextBlock& end) {
  const int number = ++store_->long_paragraphs;
  int piece = 0;
  const int behind = end.isValid() ? document()->characterCount() - end.position() : 0;
  const auto is_end = [&] {
    return !block.isValid() || (behind > 0 && document()->characterCount() - block.position() <= behind);
  };
  while (!is_end()) {
    const bool is_long = block.length() > 2 * kPieceCharacters;
    QTextBlockFormat format = block.blockFormat();
    format.setProperty(kLongParagraph, number);
    format.setProperty(kPiece, ++piece);
    RtfLooks::ShowAsPiece(format, piece);
    QTextBlockFormat before = format;
    if (is_long) before.clearProperty(kAttached);  // at the paragraph's end
    QTextCursor cursor(block);
    cursor.setBlockFormat(before);
    if (is_long) {
      const QString text = block.text();
      qsizetype cut = text.lastIndexOf(u' ', kPieceCharacters) + 1;
      if (cut < kPieceCharacters / 2) cut = kPieceCharacters;
      if (text.at(cut).isLowSurrogate()) --cut;
      cursor.setPosition(block.position() + static_cast<int>(cut));
      format.setObjectIndex(-1);
      cursor.insertBlock(format);
    }
    block = block.next();
  }
  return block;
}

RtfPad::JoinedText::JoinedText(const QTextDocument& document, bool has_long_paragraphs) : text(document.toRawText()) {
  if (!has_long_paragraphs) return;
  for (QTextBlock block = document.begin().next(); block.isValid(); block = block.next())
    if (GoesOnFrom(block.previous(), block)) seams_.push_back(block.position() - 1);
  qsizetype to = 0;
  auto seam = seams_.begin();
  for (qsizetype from = 0; from < text.size(); ++from) {
    if (seam != seams_.end() && *seam == from)
      ++seam;
    else
      text[to++] = text.at(from);
  }
  text.truncate(to);
}

PadPosition RtfPad::JoinedText::IndexOf(PadPosition position) const {
  return position - (std::lower_bound(seams_.begin(), seams_.end(), position) - seams_.begin());
}

PadPosition RtfPad::JoinedText::PositionOf(PadPosition index) const {
  // A seam before which `n` others stand has the index of its position less n.
  PadPosition position = index;
  std::size_t low = 0, high = seams_.size();
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (seams_[middle] - static_cast<PadPosition>(middle) <= index)
      low = middle + 1;
    else
      high = middle;
  }
  return position + static_cast<PadPosition>(low);
}

}  // namespace tme
