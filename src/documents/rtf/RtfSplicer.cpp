#include "documents/rtf/RtfSplicer.h"

#include <algorithm>
#include <utility>

#include "documents/rtf/RtfComparison.h"

namespace tme::rtf {

RtfSplicer::RtfSplicer(const RtfRewriter::Sides& sides, Patch& patch)
    : sides_(sides),
      before_(sides.before),
      source_(sides.source),
      after_(sides.after),
      plain_(PlainFormat(sides.after)),
      alphabets_(AlphabetsOf(sides.after.fonts)),
      before_text_(TextStarts(sides.before)),
      after_text_(TextStarts(sides.after)),
      sink_([this](std::string_view part) {
        snippet_.append(part);
        return true;
      }),
      out_(sink_),
      patch_(patch) {}

/// What came between two paragraphs needs one of the same cell to stand in: not between the number of a list's item and
/// its text, where another place is.
bool RtfSplicer::FindParagraph(RtfHunk& hunk) const {
  const std::size_t next = hunk.before_end;
  const bool begins_item = next < source_.marks.size() && source_.marks[next].label_end > 0;
  const auto is_next_item = [&] {
    const std::uint32_t format = after_.paragraphs[hunk.after_begin].format;
    return hunk.before_begin > 0 && after_.paragraph_formats[format].list != ListKind::None &&
           before_.paragraphs[hunk.before_begin - 1].format == format;
  };
  const bool goes_on = hunk.before_begin == next && (begins_item || is_next_item());
  return TakeNeighbour(hunk, sides_.before_blocks, sides_.after_blocks, goes_on ? Neighbour::Last : Neighbour::Next);
}

bool RtfSplicer::Splice(RtfHunk hunk) {
  if (!FindParagraph(hunk)) return false;
  hunk_ = hunk;
  const RtfItemRange old_part{before_,
                              after_.objects,
                              hunk.before_begin,
                              hunk.before_end,
                              before_text_[hunk.before_begin],
                              before_text_[hunk.before_end - 1]};
  RtfCommonEnds common;
  std::vector<RtfItem> after;
  if (hunk.after_begin < hunk.after_end) {
    const RtfItemRange new_part{after_,
                                after_.objects,
                                hunk.after_begin,
                                hunk.after_end,
                                after_text_[hunk.after_begin],
                                after_text_[hunk.after_end - 1]};
    common = CommonEndsOf(old_part, new_part);
    after = ItemsOf(new_part, common);
  }
  std::vector<RtfItem> before = ItemsOf(old_part, common);
  if (!FindPieces(before, hunk.before_begin)) return false;
  const std::vector<DiffStep> steps = DiffItems(before_, before, after_, after);
  labels_ = PlanLabels(sides_, hunk, before, after, steps);
  for (const std::size_t paragraph : labels_.removed)
    patch_.Replace(source_.marks[paragraph].label_begin, source_.marks[paragraph].label_end, {});
  std::size_t next_before = 0, next_after = 0;
  removed_end_ = 0;
  for (std::size_t i = 0; i < steps.size();) {
    const DiffChange change = steps[i].change;
    std::size_t count = 1;
    while (i + count < steps.size() && steps[i + count].change == change) ++count;
    const std::span old_items = std::span(before).subspan(next_before, change == DiffChange::Added ? 0 : count);
    const std::span new_items = std::span(after).subspan(next_after, change == DiffChange::Removed ? 0 : count);
    if (change == DiffChange::Added) {
      const std::optional<Place> place = PlaceFor(before, next_before, new_items);
      if (!place || !Insert(*place, new_items)) return false;
    } else if (change == DiffChange::Same) {
      KeepLabels(old_items, new_items);
      if (!Keep(old_items, new_items)) return false;
    } else if (!std::ranges::all_of(old_items, [this](const RtfItem& item) { return Remove(item); })) {
      return false;
    }
    if (change == DiffChange::Removed) removed_end_ = next_before + count;
    next_before += old_items.size();
    next_after += new_items.size();
    i += count;
  }
  return true;
}

/// Finds where items of the document before stand. False when they do not fit the source.
bool RtfSplicer::FindPieces(std::vector<RtfItem>& items, std::size_t first_paragraph) const {
  std::size_t piece = source_.marks[first_paragraph].first_piece;
  for (RtfItem& item : items) {
    if (item.kind == RtfItem::Kind::Mark) continue;
    while (piece < source_.pieces.size() && EndsBefore(piece, item)) ++piece;
    if (piece == source_.pieces.size()) return false;
    const RtfSource::Piece& found = source_.pieces[piece];
    const bool is_object = item.kind == RtfItem::Kind::Object;
    if (is_object ? found.object != item.object : found.object != 0 || found.text > item.text) return false;
    item.piece = static_cast<std::uint32_t>(piece);
  }
  return true;
}

bool RtfSplicer::EndsBefore(std::size_t piece, const RtfItem& item) const {
  const RtfSource::Piece& it = source_.pieces[piece];
  const bool is_object = item.kind == RtfItem::Kind::Object;
  if (it.object != 0) return !is_object || it.object < item.object;
  const bool is_last = piece + 1 == source_.pieces.size();
  return is_object || (is_last ? before_.text.size() : source_.pieces[piece + 1].text) <= item.text;
}

RtfSplicer::Range RtfSplicer::RangeOf(const RtfItem& item) const {
  if (item.kind == RtfItem::Kind::Mark) {
    const RtfSource::Mark& mark = source_.marks[item.paragraph];
    return {mark.begin, mark.end};
  }
  const RtfSource::Piece& piece = source_.pieces[item.piece];
  if (piece.kind != RtfSource::Kind::Plain) return {piece.begin, source_.pieces[LastPieceOf(item)].end};
  const std::uint32_t begin = piece.begin + (item.text - piece.text);
  return {begin, begin + item.size};
}

/// Neighbours that nobody sees are one object.
std::size_t RtfSplicer::LastPieceOf(const RtfItem& item) const {
  std::size_t last = item.piece;
  const auto goes_on = [&](std::size_t next) {
    return next < source_.pieces.size() && source_.pieces[next].object == item.object;
  };
  while (item.object != 0 && goes_on(last + 1)) ++last;
  return last;
}

bool RtfSplicer::IsFixed(const RtfItem& item) const {
  if (item.kind == RtfItem::Kind::Mark) return source_.marks[item.paragraph].kind == RtfSource::MarkKind::Fixed;
  return source_.pieces[item.piece].kind == RtfSource::Kind::Fixed;
}

/// With all that the file says of the section behind it.
void RtfSplicer::RemoveSection(const RtfItem& item) {
  const auto [begin, end] = RangeOf(item);
  patch_.Replace(begin, end, {});
  const std::vector<RtfSource::SectionPart>& parts = source_.section_parts;
  auto part = std::ranges::lower_bound(parts, item.object, {}, &RtfSource::SectionPart::object);
  for (; part != parts.end() && part->object == item.object; ++part) patch_.Replace(part->begin, part->end, {});
}

bool RtfSplicer::Remove(const RtfItem& item) {
  if (item.kind == RtfItem::Kind::Mark && item.object != 0) {
    RemoveSection(item);
    return true;
  }
  if (IsFixed(item)) return false;
  const std::size_t last = item.kind == RtfItem::Kind::Object ? LastPieceOf(item) : item.piece;
  for (std::size_t piece = item.piece; item.object != 0 && piece < last; ++piece)
    patch_.Replace(source_.pieces[piece].begin, source_.pieces[piece].end, {});
  const auto [begin, end] = RangeOf(item);
  patch_.Replace(item.object != 0 ? source_.pieces[last].begin : begin, end, {});
  return true;
}

bool RtfSplicer::Keep(std::span<const RtfItem> before, std::span<const RtfItem> after) {
  for (std::size_t i = 0, end = 0; i < before.size(); i = end) {
    end = i + 1;
    if (before[i].kind == RtfItem::Kind::Mark) {
      if (!KeepMark(before[i], after[i])) return false;
      continue;
    }
    const auto goes_on = [&](std::size_t at) {
      return before[at].kind != RtfItem::Kind::Mark && before[at].format == before[i].format &&
             after[at].format == after[i].format && RangeOf(before[at]).begin == RangeOf(before[at - 1]).end;
    };
    while (end < before.size() && goes_on(end)) ++end;
    if (before[i].format != after[i].format && !Wrap(before.subspan(i, end - i), after[i].format)) return false;
  }
  return true;
}

/// Whether bytes of text would be other letters in another font.
bool RtfSplicer::MayMeanOthers(std::span<const RtfItem> items, std::uint32_t format) const {
  if (after_.char_formats[items.front().format].font == after_.char_formats[format].font) return false;
  const auto is_text = [](const RtfItem& item) { return item.kind == RtfItem::Kind::Text; };
  const auto is_coded = [this](const RtfItem& item) {
    return source_.pieces[item.piece].kind == RtfSource::Kind::Coded;
  };
  return std::ranges::all_of(items, is_text) && std::ranges::any_of(items, is_coded);
}

/// Puts what stands side by side into a group with another format.
bool RtfSplicer::Wrap(std::span<const RtfItem> items, std::uint32_t format) {
  if (std::ranges::any_of(items, [this](const RtfItem& item) { return IsFixed(item); })) return false;
  out_.Open();
  if (!WriteFormat(items.front().format, format)) return false;
  const std::uint32_t begin = RangeOf(items.front()).begin, end = RangeOf(items.back()).end;
  if (MayMeanOthers(items, format)) {
    const std::uint32_t text = items.front().text, size = items.back().text + items.back().size - text;
    out_.SetUnicodeSkip(source_.pieces[items.front().piece].unicode_skip);
    out_.Text(std::string_view(before_.text).substr(text, size), AlphabetOf(format));
    out_.Close();
    patch_.Replace(begin, end, TakeSnippet());
    return true;
  }
  patch_.Replace(begin, begin, TakeSnippet());
  patch_.Replace(end, end, "}");
  return true;
}

/// The end of a paragraph that has another format stands in a group with it.
bool RtfSplicer::KeepMark(const RtfItem& before, const RtfItem& after) {
  const Paragraph& old_paragraph = before_.paragraphs[before.paragraph];
  const Paragraph& new_paragraph = after_.paragraphs[after.paragraph];
  if (!SameCell(before.paragraph, after.paragraph)) return false;
  const bool same_format = old_paragraph.format == new_paragraph.format;
  const auto [begin, end] = RangeOf(before);
  const bool is_group = begin < end;  // the end of the file has no bytes, and nothing behind it
  if (!same_format || before.format != after.format) {
    if (is_group) out_.Open();
    WriteParagraphFormat(before.paragraph, same_format ? kSame : new_paragraph.format);
    if (!WriteFormat(before.format, after.format)) return false;
    patch_.Replace(begin, begin, TakeSnippet());
    if (is_group) patch_.Replace(end, end, "}");
  }
  // Without an end an empty one would not be there.
  if (!is_group && after_.paragraphs.size() > 1 && !IsSeen(after.paragraph)) patch_.Replace(end, end, "\\par");
  return true;
}

/// Whether a paragraph of the edited document shows anything.
bool RtfSplicer::IsSeen(std::size_t paragraph) const {
  for (std::size_t i = after_.paragraphs[paragraph].first_run; i < after_.EndOfRuns(paragraph); ++i) {
    const Object* const object = EntryOf(after_.objects, after_.runs[i].object);
    if (after_.runs[i].bytes > 0 || (object != nullptr && object->kind != ObjectKind::Invisible)) return true;
  }
  return false;
}

bool RtfSplicer::SameField(std::uint32_t one, std::uint32_t other) const {
  return after_.char_formats[one].field == after_.char_formats[other].field;
}

/// Counted in the blocks that they stand in.
bool RtfSplicer::SameCell(std::size_t before, std::size_t after) const {
  if (hunk_.keeps_cells) return before - hunk_.before_begin == after - hunk_.after_begin;
  return sides_.before_blocks.CellOf(before) == sides_.after_blocks.CellOf(after);
}

Alphabet RtfSplicer::AlphabetOf(std::uint32_t format) const {
  const std::uint32_t font = after_.char_formats[format].font;
  return alphabets_[font < after_.fonts.size() ? font : plain_.font];
}

/// False for another field.
bool RtfSplicer::WriteFormat(std::uint32_t from, std::uint32_t to) {
  if (from == to) return true;
  if (!SameField(from, to)) return false;
  WriteCharFormat(after_, plain_, after_.char_formats[from], after_.char_formats[to], out_);
  return true;
}

/// format: kSame where it stays.
void RtfSplicer::WriteParagraphFormat(std::uint32_t paragraph, std::uint32_t format) {
  if (format == kSame) return;
  const auto depth = static_cast<std::int64_t>(sides_.before_blocks.DepthOf(paragraph));
  out_.Words("\\pard");
  if (depth > 0) out_.Words("\\intbl");
  if (depth > 1) out_.Word("\\itap", depth);
  out_.Words(ParagraphControls(after_, after_.paragraph_formats[format]));
}

std::string RtfSplicer::TakeSnippet() {
  out_.Finish();
  return std::exchange(snippet_, {});
}

}  // namespace tme::rtf
