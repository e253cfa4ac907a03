#include "windows/rich/RtfSelectionFormats.h"

#include <QTextDocument>

namespace tme {

void RtfSelectionFormats::Follow(const QTextCursor& selection, std::uint64_t revision) {
  const int start = selection.selectionStart(), end = selection.selectionEnd();
  if (start_ == start && end_ == end && revision_ == revision) return;
  start_ = start;
  end_ = end;
  revision_ = revision;
  next_ = selection.document()->findBlock(start);
  last_ = selection.document()->findBlock(end - 1);
  seen_.clear();
  formats_.clear();
}

const QTextCharFormat* RtfSelectionFormats::At(std::size_t index) {
  while (formats_.size() <= index && next_.isValid()) LookAtBlock();
  return index < formats_.size() ? &formats_[index] : nullptr;
}

void RtfSelectionFormats::LookAtBlock() {
  // Asked for the place of each, the toolkit would take most of the time for that.
  const bool is_whole = next_ != last_ && next_.position() >= start_;
  for (QTextBlock::iterator it = next_.begin(); !it.atEnd(); ++it) {
    const QTextFragment fragment = it.fragment();
    const auto number = static_cast<std::size_t>(fragment.charFormatIndex());
    if (number < seen_.size() && seen_[number]) continue;
    if (!is_whole && (fragment.position() >= end_ || fragment.position() + fragment.length() <= start_)) continue;
    if (number >= seen_.size()) seen_.resize(number + 1);
    seen_[number] = true;
    formats_.push_back(fragment.charFormat());
  }
  next_ = next_ == last_ ? QTextBlock() : next_.next();
}

}  // namespace tme
