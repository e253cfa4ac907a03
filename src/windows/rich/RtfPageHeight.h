#pragma once

class QTextDocument;

namespace tme {

struct RtfStore;

/// Which height the only page of a view is given. Knows the formats that it has seen, so that asking again, as each
/// resize does, takes no time.
class RtfPageHeight {
 public:
  /// In pixels, as the layout takes it; below 0 for a page without end. percent: the zoom.
  double Of(const QTextDocument& view, const RtfStore& store, int percent);
  /// The view is another one.
  void Reset() { *this = {}; }

 private:
  void LookAtFormats(const QTextDocument& view);

  int formats_seen_ = 0;      ///< the toolkit takes none away
  double format_pixels_ = 0;  ///< that the formats add to a paragraph at most
};

}  // namespace tme
