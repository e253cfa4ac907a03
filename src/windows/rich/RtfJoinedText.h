#pragma once

#include <QString>
#include <vector>

#include "windows/rich/RtfStore.h"
#include "windows/text/Pad.h"

class QTextDocument;

namespace tme {

/// A view's text as one searches it: a long paragraph in one piece. Its indices count UTF-16 units, as the positions of
/// the view do.
class RtfJoinedText {
 public:
  RtfJoinedText(const QTextDocument& document, const RtfStore& store);

  const QString& Text() const { return text_; }
  PadPosition IndexOf(PadPosition position) const;
  PadPosition PositionOf(PadPosition index) const;

 private:
  QString text_;
  std::vector<PadPosition> seams_;  ///< between pieces
};

}  // namespace tme
