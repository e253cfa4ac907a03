#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "documents/rtf/RtfBlocks.h"
#include "documents/rtf/RtfBodyWriter.h"
#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfOutput.h"
#include "documents/rtf/RtfPatch.h"
#include "documents/rtf/RtfSource.h"

namespace tme::rtf {

/// Writes paragraphs, or tables as wholes, anew in their place in a file. Internal to RtfOriginal.
class RtfRewriter {
 public:
  /// What a file held, and what it is to hold. All outlive what uses them.
  struct Sides {
    std::string_view bytes;
    const RtfDocument& before;  ///< text and structure alone; what they name is in the tables of after
    const RtfBlocks& before_blocks;
    const RtfSource& source;
    const RtfDocument& after;
    const RtfBlocks& after_blocks;
  };

  RtfRewriter(const Sides& sides, Patch& patch);

  /// False when it has no place.
  bool Rewrite(RtfHunk hunk);

 private:
  std::uint32_t EndSection(const RtfDocument& document, std::size_t begin, std::size_t& end) const;
  bool RewriteCells(RtfHunk hunk);
  bool RewritePart(const RtfHunk& hunk, std::size_t depth);
  std::uint32_t BeginOf(std::size_t paragraph) const;
  bool FollowsOpenEnd(const RtfHunk& hunk) const;
  std::string Written(const RtfHunk& hunk, RtfPart part);

  const Sides& sides_;
  Patch& patch_;
  const std::vector<std::uint32_t> after_text_;
  std::string written_;
  const PartSink sink_;
  RtfOutput out_;
  RtfBodyWriter writer_;
};

}  // namespace tme::rtf
