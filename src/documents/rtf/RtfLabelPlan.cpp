#include "documents/rtf/RtfLabelPlan.h"

#include <optional>
#include <utility>

namespace tme::rtf {
namespace {

/// Goes through a hunk in the order of the file. Of the labels that come to stand in one paragraph, the last one before
/// its text stays.
class Planner {
 public:
  Planner(const RtfRewriter::Sides& sides, const RtfHunk& hunk) : sides_(sides), hunk_(hunk), old_(hunk.before_begin) {
    Meet();
  }

  void Pass(const RtfItem& item, DiffChange change) {
    const bool is_mark = item.kind == RtfItem::Kind::Mark;
    if (change == DiffChange::Removed && is_mark) NextOld();
    if (change == DiffChange::Removed) return;
    has_text_ = true;
    if (is_mark) EndParagraph(item.paragraph, change);
  }
  RtfLabelPlan Take() {
    // Of a paragraph that went as a whole.
    if (label_) plan_.removed.push_back(*label_);
    return std::move(plan_);
  }

 private:
  bool IsInList(const RtfDocument& document, std::size_t paragraph) const {
    return sides_.after.paragraph_formats[document.paragraphs[paragraph].format].list != ListKind::None;
  }
  /// Whether items like that have no label in the file.
  bool HasBareLike(std::size_t item) const {
    for (std::size_t i = hunk_.before_begin; i < hunk_.before_end; ++i)
      if (sides_.before.paragraphs[i].format == sides_.after.paragraphs[item].format)
        return sides_.source.marks[i].label_end == 0;
    return false;
  }
  void NextOld() {
    ++old_;
    Meet();
  }
  void Meet() {
    if (old_ >= hunk_.before_end || sides_.source.marks[old_].label_end == 0) return;
    if (has_text_) return plan_.removed.push_back(old_);
    if (label_) plan_.removed.push_back(*label_);
    label_ = old_;
  }
  /// item: the number of the paragraph after the edit.
  void EndParagraph(std::size_t item, DiffChange change) {
    const bool is_new = is_new_ || (change == DiffChange::Same && !IsInList(sides_.before, old_));
    const bool is_in_list = IsInList(sides_.after, item);
    if (label_ && !is_in_list && IsInList(sides_.before, *label_)) plan_.removed.push_back(*label_);
    if (!label_ && is_in_list && is_new && !HasBareLike(item)) plan_.wanted.insert(item);
    label_.reset();
    has_text_ = false;
    is_new_ = change == DiffChange::Added;
    if (change == DiffChange::Same) NextOld();
  }

  const RtfRewriter::Sides& sides_;
  const RtfHunk& hunk_;
  RtfLabelPlan plan_;
  std::size_t old_;                   ///< the paragraph before the edit that it stands in
  std::optional<std::size_t> label_;  ///< whose label begins the paragraph after it
  bool has_text_ = false;
  bool is_new_ = false;  ///< the paragraph after it begins where none began
};

}  // namespace

RtfLabelPlan PlanLabels(const RtfRewriter::Sides& sides, const RtfHunk& hunk, const std::vector<RtfItem>& before,
                        const std::vector<RtfItem>& after, const std::vector<DiffStep>& steps) {
  Planner planner(sides, hunk);
  std::size_t next_before = 0, next_after = 0;
  for (const DiffStep& step : steps) {
    if (step.change == DiffChange::Removed) {
      planner.Pass(before[next_before++], step.change);
      continue;
    }
    if (step.change == DiffChange::Same) ++next_before;
    planner.Pass(after[next_after++], step.change);
  }
  return planner.Take();
}

}  // namespace tme::rtf
