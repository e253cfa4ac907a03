#pragma once

#include <QString>
#include <cstdint>
#include <optional>

#include "documents/Holding.h"
#include "documents/SourceLines.h"
#include "files/TextEncoding.h"

namespace tme {

/// What the status line says of a document. Empty or none: the kind has no such thing.
struct DocumentState {
  QString kind{};
  std::optional<Holding> holding{};
  /// Why the line that the user is in is not understood; shown in the place of the path.
  QString fault{};
  /// Of the selected node in full, as it is copied; of the file where nothing below it is selected.
  QString path{};
  std::optional<TextEncoding> encoding{};
  std::optional<LineEnds> line_ends{};
  /// Why the user cannot change these; empty where that is possible.
  QString line_ends_stay{};
  /// "3 sections, 12 entries".
  QString count{};
  /// From 1, in characters.
  struct Place {
    std::int64_t line = 1;
    std::int64_t column = 1;
    /// How many the document has: lines that GoToLine takes.
    std::int64_t lines = 1;
  };
  std::optional<Place> place{};
  std::int64_t selected_characters = 0;
  /// Lines that have some of the selection; 0 where lines are not counted.
  std::int64_t selected_lines = 0;
};

/// The part of it that may take time in proportion to the document.
struct DocumentFigures {
  QString count{};
  std::optional<LineEnds> line_ends{};
};

}  // namespace tme
