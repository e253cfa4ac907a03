#include "documents/rtf/RtfSplicer.h"

#include <algorithm>
#include <utility>

#include "base/Utf8.h"
#include "documents/rtf/RtfComparison.h"

namespace tme::rtf {
namespace {

/// Bytes behind a \u; a group that says otherwise is longer than more of them.
constexpr std::size_t kMostSkipped = 3;

}  // namespace

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

/// What came between two paragraphs needs one of the same cell to stand in.
bool RtfSplicer::FindParagraph(RtfHunk& hunk) const {
  if (hunk.before_begin < hunk.before_end) return true;
  const auto is_near = [&](std::size_t before, std::size_t after) {
    return before < before_.paragraphs.size() && SameCell(before, after);
  };
  const bool has_last = hunk.before_begin > 0 && is_near(hunk.before_begin - 1, hunk.after_begin);
  // Not between the number of a list's item and its text, where another place is.
  const bool begins_item = hunk.before_end < source_.marks.size() && source_.marks[hunk.before_end].label_end > 0;
  const auto is_next_item = [&] {
    const std::uint32_t format = after_.paragraphs[hunk.after_begin].format;
    return after_.paragraph_formats[format].list != ListKind::None &&
           before_.paragraphs[hunk.before_begin - 1].format == format;
  };
  const bool goes_on = has_last && (begins_item || is_next_item());
  if (!goes_on && is_near(hunk.before_end, hunk.after_end - 1)) {
    ++hunk.before_end;
    ++hunk.after_end;
    return true;
  }
  if (!has_last) return false;
  --hunk.before_begin;
  --hunk.after_begin;
  return true;
}

bool RtfSplicer::Splice(RtfHunk hunk) {
  if (!FindParagraph(hunk)) return false;
  const RtfItemRange old_part{before_, hunk.before_begin, hunk.before_end, before_text_[hunk.before_begin],
                              before_text_[hunk.before_end - 1]};
  RtfCommonEnds common;
  std::vector<RtfItem> after;
  if (hunk.after_begin < hunk.after_end) {
    const RtfItemRange new_part{after_, hunk.after_begin, hunk.after_end, after_text_[hunk.after_begin],
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
  if (piece.kind != RtfSource::Kind::Plain) return {piece.begin, piece.end};
  const std::uint32_t begin = piece.begin + (item.text - piece.text);
  return {begin, begin + item.size};
}

bool RtfSplicer::IsFixed(const RtfItem& item) const {
  if (item.kind == RtfItem::Kind::Mark) return source_.marks[item.paragraph].kind == RtfSource::MarkKind::Fixed;
  return source_.pieces[item.piece].kind == RtfSource::Kind::Fixed;
}

/// Has no format of its own.
bool RtfSplicer::IsSectionBreak(const RtfItem& item) const {
  const Object* object = EntryOf(after_.objects, item.object);
  return object != nullptr && object->kind == ObjectKind::SectionBreak;
}

bool RtfSplicer::Remove(const RtfItem& item) {
  if (IsFixed(item)) return false;
  const auto [begin, end] = RangeOf(item);
  patch_.Replace(begin, end, {});
  return true;
}

bool RtfSplicer::Keep(std::span<const RtfItem> before, std::span<const RtfItem> after) {
  for (std::size_t i = 0, end = 0; i < before.size(); i = end) {
    end = i + 1;
    if (before[i].kind == RtfItem::Kind::Mark) {
      if (!KeepMark(before[i], after[i])) return false;
      continue;
    }
    if (IsSectionBreak(before[i])) continue;
    const auto goes_on = [&](std::size_t at) {
      return !IsSectionBreak(before[at]) && before[at].kind != RtfItem::Kind::Mark &&
             before[at].format == before[i].format && after[at].format == after[i].format &&
             RangeOf(before[at]).begin == RangeOf(before[at - 1]).end;
    };
    while (end < before.size() && goes_on(end)) ++end;
    if (before[i].format != after[i].format && !Wrap(before.subspan(i, end - i), after[i].format)) return false;
  }
  return true;
}

/// Puts what stands side by side into a group with another format.
bool RtfSplicer::Wrap(std::span<const RtfItem> items, std::uint32_t format) {
  if (std::ranges::any_of(items, [this](const RtfItem& item) { return IsFixed(item); })) return false;
  out_.Open();
  if (!WriteFormat(items.front().format, format)) return false;
  const std::uint32_t begin = RangeOf(items.front()).begin, end = RangeOf(items.back()).end;
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
  if (same_format && before.format == after.format) return true;
  const auto [begin, end] = RangeOf(before);
  const bool is_group = begin < end;  // the end of the file has no bytes, and nothing behind it
  if (is_group) out_.Open();
  WriteParagraphFormat(before.paragraph, same_format ? kSame : new_paragraph.format);
  if (!WriteFormat(before.format, after.format)) return false;
  patch_.Replace(begin, begin, TakeSnippet());
  if (is_group) patch_.Replace(end, end, "}");
  return true;
}

std::optional<RtfSplicer::Place> RtfSplicer::PlaceBehind(const RtfItem& item) const {
  if (item.kind == RtfItem::Kind::Mark || IsFixed(item)) return std::nullopt;
  return PlaceAt(RangeOf(item).end, item, source_.pieces[item.piece].unicode_skip);
}

std::optional<RtfSplicer::Place> RtfSplicer::PlaceBefore(const RtfItem& item) const {
  const bool is_mark = item.kind == RtfItem::Kind::Mark;
  if (!is_mark && IsFixed(item)) return std::nullopt;
  const std::uint8_t skip =
      is_mark ? source_.marks[item.paragraph].unicode_skip : source_.pieces[item.piece].unicode_skip;
  return PlaceAt(RangeOf(item).begin, item, skip);
}

/// Objects may stand between the end of the last cell and that of its row, where text cannot.
RtfSplicer::Place RtfSplicer::PlaceAt(std::uint32_t at, const RtfItem& item, std::uint8_t unicode_skip) const {
  return {std::min(at, source_.marks[item.paragraph].begin), item.format, item.paragraph, unicode_skip};
}

/// Behind what stands before, or before what comes next, where the format fits better.
std::optional<RtfSplicer::Place> RtfSplicer::PlaceFor(const std::vector<RtfItem>& before, std::size_t next,
                                                      std::span<const RtfItem> added) const {
  const std::uint32_t first = added.front().format;
  const std::optional<Place> behind = next > 0 ? PlaceBehind(before[next - 1]) : std::nullopt;
  const std::optional<Place> in_front = next < before.size() ? PlaceBefore(before[next]) : std::nullopt;
  const bool fits_in_front = in_front && SameField(in_front->format, first);
  if (!behind || !SameField(behind->format, first)) return fits_in_front ? in_front : std::nullopt;
  return behind->format != first && fits_in_front && in_front->format == first ? in_front : behind;
}

/// A paragraph that became an item of a list gets its number.
void RtfSplicer::KeepLabels(std::span<const RtfItem> before, std::span<const RtfItem> after) {
  for (std::size_t i = 0; i < before.size() && !labels_.wanted.empty(); ++i) {
    if (!labels_.wanted.contains(after[i].paragraph)) continue;
    WriteLabel(after[i].paragraph);
    const std::uint32_t begin = RangeOf(before[i]).begin;
    patch_.Replace(begin, begin, TakeSnippet());
  }
}

/// Where one is wanted.
void RtfSplicer::WriteLabel(std::size_t paragraph) {
  if (labels_.wanted.erase(paragraph) == 0) return;
  std::string label;
  for (; numbered_ <= paragraph; ++numbered_)
    label = numbering_.Next(after_.paragraph_formats[after_.paragraphs[numbered_].format]);
  if (label.empty()) return;
  out_.Open(after_.paragraph_formats[after_.paragraphs[paragraph].format].list_id != 0 ? "\\listtext" : "\\pntext");
  out_.Text(label);
  out_.Text("\t");
  out_.Close();
}

bool RtfSplicer::Insert(const Place& place, std::span<const RtfItem> added) {
  for (std::size_t i = 0, end = 0; i < added.size(); i = end) {
    end = i + 1;
    WriteLabel(added[i].paragraph);
    bool is_written = false;
    switch (added[i].kind) {
      case RtfItem::Kind::Mark:
        is_written = InsertMark(place, added[i]);
        break;
      case RtfItem::Kind::Object:
        is_written = InsertObject(place, added[i]);
        break;
      case RtfItem::Kind::Text:
        while (end < added.size() && added[end].kind == RtfItem::Kind::Text && added[end].format == added[i].format)
          ++end;
        is_written = InsertText(place, added.subspan(i, end - i));
        break;
    }
    if (!is_written) return false;
  }
  patch_.Replace(place.at, place.at, TakeSnippet());
  return true;
}

bool RtfSplicer::InsertText(const Place& place, std::span<const RtfItem> text) {
  const std::uint32_t begin = text.front().text, size = text.back().text + text.back().size - begin;
  const std::string_view characters = std::string_view(after_.text).substr(begin, size);
  const std::uint32_t format = text.front().format;
  const bool says_skip = place.unicode_skip > kMostSkipped && utf8::AsciiRun(characters) != characters.size();
  const bool is_group = format != place.format || says_skip;
  if (is_group) out_.Open(says_skip ? "\\uc1" : "");
  if (!WriteFormat(place.format, format)) return false;
  const std::uint32_t font = after_.char_formats[format].font;
  out_.SetUnicodeSkip(says_skip ? 1 : place.unicode_skip);
  out_.Text(characters, alphabets_[font < after_.fonts.size() ? font : plain_.font]);
  if (is_group) out_.Close();
  return true;
}

bool RtfSplicer::InsertObject(const Place& place, const RtfItem& item) {
  const Object& object = after_.objects[item.object - 1];
  if (object.rtf.empty()) return false;
  const bool is_group = item.format != place.format;
  if (is_group) out_.Open();
  if (!WriteFormat(place.format, item.format)) return false;
  out_.Kept(object.rtf);
  if (is_group) out_.Close();
  return true;
}

bool RtfSplicer::InsertMark(const Place& place, const RtfItem& mark) {
  const Paragraph& old_paragraph = before_.paragraphs[place.paragraph];
  const Paragraph& new_paragraph = after_.paragraphs[mark.paragraph];
  if (!SameCell(place.paragraph, mark.paragraph)) return false;
  const bool same_format = old_paragraph.format == new_paragraph.format;
  const bool is_group = !same_format || place.format != mark.format;
  if (is_group) out_.Open();
  WriteParagraphFormat(place.paragraph, same_format ? kSame : new_paragraph.format);
  if (!WriteFormat(place.format, mark.format)) return false;
  out_.Words("\\par");
  if (is_group) out_.Close();
  WriteLabel(mark.paragraph + std::size_t{1});
  return true;
}

bool RtfSplicer::SameField(std::uint32_t one, std::uint32_t other) const {
  return after_.char_formats[one].field == after_.char_formats[other].field;
}

/// Counted in the blocks that they stand in.
bool RtfSplicer::SameCell(std::size_t before, std::size_t after) const {
  return sides_.before_blocks.CellOf(before) == sides_.after_blocks.CellOf(after);
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
