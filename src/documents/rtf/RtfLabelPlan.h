#pragma once

#include <cstddef>
#include <set>
#include <vector>

#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfItems.h"
#include "documents/rtf/RtfRewriter.h"

namespace tme::rtf {

/// What an edit does to the groups that say the numbers of a list's items.
struct RtfLabelPlan {
  std::vector<std::size_t> removed;  ///< of which paragraphs before the edit
  std::set<std::size_t> wanted;      ///< which paragraphs after it need a new one
};

/// steps: what leads from the items of the hunk's paragraphs before to those after.
RtfLabelPlan PlanLabels(const RtfRewriter::Sides& sides, const RtfHunk& hunk, const std::vector<RtfItem>& before,
                        const std::vector<RtfItem>& after, const std::vector<DiffStep>& steps);

}  // namespace tme::rtf
