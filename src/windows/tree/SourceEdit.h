#pragma once

#include <optional>
#include <string_view>

#include "documents/SourceLines.h"

namespace tme {

/// The lines in which a text differs from the pieces of a document, and the pieces in whose place they stand; at least
/// one, unless there is none.
struct SourceEdit {
  SourceLines::Piece first = SourceLines::kEnds;
  SourceLines::Piece last = SourceLines::kEnds;
  /// Of the text.
  std::string_view lines;
};
/// Null where nothing differs. Linear.
std::optional<SourceEdit> EditOf(const SourceLines& pieces, std::string_view text);

}  // namespace tme
