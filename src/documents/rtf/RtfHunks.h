#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// Paragraphs of two documents that differ; either range may be empty.
struct RtfHunk {
  std::size_t before_begin = 0;
  std::size_t before_end = 0;
  std::size_t after_begin = 0;
  std::size_t after_end = 0;
};

/// A number for each paragraph. Those of documents with the same tables of formats and objects are equal exactly when
/// their paragraphs say the same, as far as a hash can tell.
std::vector<std::uint64_t> ParagraphHashes(const RtfDocument& document);

/// What differs between two documents of which these are the numbers, in its order.
std::vector<RtfHunk> HunksBetween(const std::vector<std::uint64_t>& before, const std::vector<std::uint64_t>& after);

}  // namespace tme::rtf
