#include "windows/rich/RtfJoinedText.h"

#include <QTextBlock>
#include <QTextDocument>
#include <algorithm>

#include "windows/rich/RtfPieces.h"

namespace tme {

RtfJoinedText::RtfJoinedText(const QTextDocument& document, const RtfStore& store) : text_(document.toRawText()) {
  if (store.long_paragraphs == 0) return;
  for (QTextBlock block = document.begin().next(); block.isValid(); block = block.next())
    if (GoesOn(block.previous(), block)) seams_.push_back(block.position() - 1);
  qsizetype to = 0;
  auto seam = seams_.begin();
  for (qsizetype from = 0; from < text_.size(); ++from) {
    if (seam != seams_.end() && *seam == from)
      ++seam;
    else
      text_[to++] = text_.at(from);
  }
  text_.truncate(to);
}

PadPosition RtfJoinedText::IndexOf(PadPosition position) const {
  return position - (std::lower_bound(seams_.begin(), seams_.end(), position) - seams_.begin());
}

PadPosition RtfJoinedText::PositionOf(PadPosition index) const {
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
