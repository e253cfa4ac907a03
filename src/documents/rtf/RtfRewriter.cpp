#include "documents/rtf/RtfRewriter.h"

#include <algorithm>
#include <utility>

#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfSkeleton.h"

namespace tme::rtf {
namespace {

using Level = RtfHunk::Level;
using MarkKind = RtfSource::MarkKind;

constexpr std::string_view kEndOfLast = "\\par";

}  // namespace

RtfRewriter::RtfRewriter(const Sides& sides, Patch& patch)
    : sides_(sides),
      patch_(patch),
      after_text_(TextStarts(sides.after)),
      sink_([this](std::string_view part) {
        written_.append(part);
        return true;
      }),
      out_(sink_),
      writer_(sides.after, out_) {}

/// The breaks of sections stay where they are, and what stands between them is written by itself.
bool RtfRewriter::Rewrite(RtfHunk hunk) {
  while (hunk.before_begin < hunk.before_end || hunk.after_begin < hunk.after_end) {
    RtfHunk part = hunk;
    const std::uint32_t before = EndSection(sides_.before, part.before_begin, part.before_end);
    if (before != EndSection(sides_.after, part.after_begin, part.after_end)) return false;
    if (!(hunk.level == Level::Blocks ? RewritePart(part, 0) : RewriteCells(part))) return false;
    hunk.before_begin = part.before_end;
    hunk.after_begin = part.after_end;
  }
  return true;
}

/// Makes paragraphs end with the first break of a section in them, which it gives, as Run::object; 0 where none is.
std::uint32_t RtfRewriter::EndSection(const RtfDocument& document, std::size_t begin, std::size_t& end) const {
  for (std::size_t i = begin; i < end; ++i) {
    const std::uint32_t section = document.SectionBreakAt(i, sides_.after.objects);
    if (section == 0) continue;
    end = i + 1;
    return section;
  }
  return 0;
}

/// Each cell's paragraphs by themselves.
bool RtfRewriter::RewriteCells(RtfHunk hunk) {
  const RtfBlocks &before = sides_.before_blocks, &after = sides_.after_blocks;
  const auto cell_end = [](const RtfBlocks& blocks, std::size_t at, std::size_t end) {
    const std::int32_t cell = blocks.CellOf(at);
    while (at < end && blocks.CellOf(at) == cell) ++at;
    return at;
  };
  while (hunk.before_begin < hunk.before_end && hunk.after_begin < hunk.after_end) {
    RtfHunk part = hunk;
    part.before_end = cell_end(before, part.before_begin, hunk.before_end);
    part.after_end = cell_end(after, part.after_begin, hunk.after_end);
    if (before.CellOf(part.before_begin) != after.CellOf(part.after_begin)) return false;
    if (!RewritePart(part, before.DepthOf(part.before_begin))) return false;
    hunk.before_begin = part.before_end;
    hunk.after_begin = part.after_end;
  }
  // Text outside of tables can go with all its paragraphs; a cell cannot.
  const bool is_text_alone = hunk.before_begin < hunk.before_end && before.CellOf(hunk.before_begin) < 0 &&
                             before.CellOf(hunk.before_end - 1) < 0;
  if (hunk.after_begin < hunk.after_end) {
    // Before, behind or between tables it can come as well.
    const auto is_text = [&](std::size_t paragraph) { return after.CellOf(paragraph) < 0; };
    for (std::size_t i = hunk.after_begin; i < hunk.after_end; ++i)
      if (!is_text(i)) return false;
    return RewritePart(hunk, 0);
  }
  return hunk.before_begin == hunk.before_end || (is_text_alone && RewritePart(hunk, 0));
}

/// Behind what stands before a paragraph.
std::uint32_t RtfRewriter::BeginOf(std::size_t paragraph) const {
  const RtfSource::Header& header = sides_.source.header;
  if (paragraph == 0) return std::max(header.begin, header.end);
  const RtfSource::Mark& mark = sides_.source.marks[paragraph - 1];
  return std::max(mark.end, mark.whole_end);
}

bool RtfRewriter::RewritePart(const RtfHunk& hunk, std::size_t depth) {
  const RtfSource& source = sides_.source;
  RtfPart part{.begin = hunk.after_begin, .end = hunk.after_end, .depth = depth};
  part.text = part.begin < after_text_.size() ? after_text_[part.begin] : 0;
  RtfStretch stretch{.begin = BeginOf(hunk.before_begin), .has_tables = hunk.level == Level::Blocks};
  const bool is_first = hunk.before_begin == 0 && hunk.before_end == 0;
  if (is_first && source.header.body > 0) stretch.begin = source.header.body;
  if (is_first && source.marks.front().label_end > 0)
    stretch.begin = std::min(stretch.begin, source.marks.front().label_begin);
  std::uint32_t end = stretch.end = stretch.begin;
  if (hunk.before_begin < hunk.before_end) {
    const std::size_t last = hunk.before_end - 1;
    const RtfSource::Mark& mark = source.marks[last];
    stretch.first_piece = source.marks[hunk.before_begin].first_piece;
    stretch.end_piece = source.EndOfPieces(last);
    const bool ends_table = stretch.has_tables && sides_.before_blocks.CellOf(last) >= 0;
    const bool is_written = ends_table || mark.kind == MarkKind::Paragraph;
    const bool ends_file = mark.begin == mark.end;
    if (!is_written && !ends_file) {
      if (part.begin == part.end) return false;
      part.mark = sides_.bytes.substr(mark.begin, mark.end - mark.begin);
    }
    end = ends_table ? std::max(mark.end, mark.whole_end) : mark.end;
    stretch.end = is_written ? end : mark.begin;
    for (std::size_t i = hunk.before_begin; i < last; ++i)
      if (source.marks[i].kind == MarkKind::Fixed && sides_.before_blocks.CellOf(i) < 0) return false;
  }
  // The break of a section may end text of a cell as well.
  if (stretch.end < stretch.begin) return false;
  const std::string skeleton = SkeletonOf(sides_.bytes, source, stretch);
  patch_.Replace(stretch.begin, end, skeleton);
  if (FollowsOpenEnd(hunk)) patch_.Replace(end, end, kEndOfLast);
  patch_.Replace(end, end, Written(hunk, part));
  // Objects may stand between the end of the last cell and that of its row.
  for (std::size_t i = stretch.first_piece; i < stretch.end_piece; ++i)
    if (source.pieces[i].begin >= end) patch_.Replace(source.pieces[i].begin, source.pieces[i].end, {});
  return true;
}

/// Whether it comes behind a paragraph that the end of the file ends.
bool RtfRewriter::FollowsOpenEnd(const RtfHunk& hunk) const {
  if (hunk.before_begin < hunk.before_end || hunk.before_begin == 0) return false;
  const RtfSource::Mark& mark = sides_.source.marks[hunk.before_begin - 1];
  return mark.begin == mark.end;
}

std::string RtfRewriter::Written(const RtfHunk& hunk, RtfPart part) {
  if (part.begin == part.end) return {};
  const std::vector<RtfSource::Mark>& marks = sides_.source.marks;
  const std::size_t around = std::min(std::max(hunk.before_end, std::size_t{1}) - 1, marks.size() - 1);
  out_.Open();
  if (marks[around].unicode_skip != 1) out_.Words("\\uc1");
  writer_.WritePart(part);
  out_.Close();
  out_.Finish();
  return std::exchange(written_, {});
}

}  // namespace tme::rtf
