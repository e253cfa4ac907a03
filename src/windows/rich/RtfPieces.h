#pragma once

#include <QTextBlockFormat>

#include "windows/rich/RtfStore.h"

class QTextBlock;
class QTextDocument;

/// A long paragraph is shown in several blocks of a view, its pieces; RtfShape.h says how long that is.
namespace tme {

/// Whether a block goes on with the paragraph of the one right before it.
bool GoesOn(const QTextBlockFormat& before, const QTextBlockFormat& format);
/// False when one of the two is not there.
bool GoesOn(const QTextBlock& before, const QTextBlock& block);

/// Takes from the format of a piece, the first of which is 1, what belongs to the paragraph's ends.
void ShowAsPiece(QTextBlockFormat& shown, int piece);

/// Parts the long ones of the paragraphs that stand between two positions.
void SplitLongParagraphs(QTextDocument& document, RtfStore& store, int first, int last);

}  // namespace tme
