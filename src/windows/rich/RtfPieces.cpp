#include "windows/rich/RtfPieces.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include "windows/rich/RtfShape.h"

namespace tme {
namespace {

constexpr auto kPieceCharacters = static_cast<int>(kBytesOfPiece);

/// end: behind the paragraph. The block there.
QTextBlock SplitParagraph(QTextDocument& document, RtfStore& store, QTextBlock block, const QTextBlock& end) {
  const int number = ++store.long_paragraphs;
  int piece = 0;
  const int behind = end.isValid() ? document.characterCount() - end.position() : 0;
  const auto is_end = [&] {
    return !block.isValid() || (behind > 0 && document.characterCount() - block.position() <= behind);
  };
  while (!is_end()) {
    const bool is_long = block.length() > 2 * kPieceCharacters;
    QTextBlockFormat format = block.blockFormat();
    format.setProperty(kLongParagraph, number);
    format.setProperty(kPiece, ++piece);
    ShowAsPiece(format, piece);
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

}  // namespace

bool GoesOn(const QTextBlockFormat& before, const QTextBlockFormat& format) {
  const int paragraph = format.intProperty(kLongParagraph);
  return paragraph > 0 && paragraph == before.intProperty(kLongParagraph) &&
         format.intProperty(kPiece) > before.intProperty(kPiece);
}

bool GoesOn(const QTextBlock& before, const QTextBlock& block) {
  return before.isValid() && block.isValid() && GoesOn(before.blockFormat(), block.blockFormat());
}

void ShowAsPiece(QTextBlockFormat& shown, int piece) {
  shown.clearProperty(QTextFormat::BlockBottomMargin);
  if (piece <= 1) return;
  shown.clearProperty(QTextFormat::BlockTopMargin);
  shown.clearProperty(QTextFormat::TextIndent);
  shown.clearProperty(QTextFormat::PageBreakPolicy);
}

void SplitLongParagraphs(QTextDocument& document, RtfStore& store, int first, int last) {
  QTextBlock block = document.findBlock(first);
  const int behind = document.characterCount() - last;
  while (GoesOn(block.previous(), block)) block = block.previous();
  while (block.isValid() && block.position() <= document.characterCount() - behind) {
    QTextBlock end = block;
    bool is_long = false;
    do {
      is_long = is_long || end.length() > static_cast<int>(kLongBytes);
      end = end.next();
    } while (GoesOn(end.previous(), end));
    block = is_long ? SplitParagraph(document, store, block, end) : end;
  }
}

}  // namespace tme
