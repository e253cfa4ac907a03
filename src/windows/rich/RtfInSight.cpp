#include "windows/rich/RtfInSight.h"

#include <QAbstractTextDocumentLayout>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <algorithm>

namespace tme {
namespace {

/// The outermost table around a position; null for none.
const QTextTable* TableAround(const QTextDocument& document, int position) {
  const QTextTable* outermost = nullptr;
  for (QTextFrame* frame = document.frameAt(position); frame; frame = frame->parentFrame())
    if (const auto* table = qobject_cast<QTextTable*>(frame)) outermost = table;
  return outermost;
}

/// The first block of all cells that reach into the row of a block.
QTextBlock FirstOfRow(const QTextBlock& block) {
  const QTextTable* table = TableAround(*block.document(), block.position());
  const QTextTableCell at = table ? table->cellAt(block.position()) : QTextTableCell();
  if (!at.isValid()) return block;
  int first = block.position();
  for (int column = 0; column < table->columns(); ++column)
    first = std::min(first, table->cellAt(at.row(), column).firstPosition());
  return block.document()->findBlock(first);
}

}  // namespace

double TopInDocument(const QTextBlock& block) {
  const QTextDocument& document = *block.document();
  const QTextTable* table = TableAround(document, block.position());
  const QTextTableCell at = table ? table->cellAt(block.position()) : QTextTableCell();
  const QTextBlock first =
      table && at.isValid() ? document.findBlock(table->cellAt(at.row(), 0).firstPosition()) : block;
  return document.documentLayout()->blockBoundingRect(first).top();
}

QTextBlock FirstBlockBelow(const QTextDocument& document, double top) {
  // Blocks before `begin` end above, those from `end` on begin below.
  int begin = 0, end = 1;
  const auto is_above = [&](int block) { return TopInDocument(document.findBlockByNumber(block)) <= top; };
  for (; end < document.blockCount() && is_above(end); end *= 2) begin = end;
  end = std::min(end, document.blockCount());
  while (end - begin > 1) {
    const int middle = begin + (end - begin) / 2;
    (is_above(middle) ? begin : end) = middle;
  }
  return FirstOfRow(document.findBlockByNumber(begin));
}

}  // namespace tme
