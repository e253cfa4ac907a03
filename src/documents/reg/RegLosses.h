#pragma once

#include <cstddef>
#include <cstdint>

#include "documents/reg/RegWriter.h"

namespace tme {

/// What a save of a document leaves out, or writes so that it is read back otherwise. All of it is intended, and the
/// user is told.
struct RegLosses {
  // In no line of the file.
  /// Branches without values that nothing written stands below. 0 for the expanded layout.
  std::size_t empty_keys = 0;
  /// Hives that no key stands below.
  std::size_t empty_hives = 0;
  /// Branches that bear the root's text and that nothing written stands below.
  std::size_t keys_of_title = 0;
  /// Values under the root, a hive or a key that bears the root's text; deleted ones do not count.
  std::size_t values = 0;
  /// Those of them that stand under a key that bears the root's text.
  std::size_t values_of_title = 0;

  // In the file, but otherwise.
  /// Deleted values of which a line with an empty name is left.
  std::size_t deleted_values = 0;
  /// See RegDocument::KeysSharingAName.
  std::size_t shared_keys = 0;
  /// Hives of no known name with keys that are written: a reader ends at the first of these.
  std::size_t unknown_hives = 0;

  /// A hash of what is in no line; equal for equal losses, 0 for none.
  std::uint64_t fingerprint = 0;
};

/// Counts what a save in this layout would lose, as the document stands. Linear.
RegLosses LossesOf(const RegDocument& document, RegLayout layout);

}  // namespace tme
