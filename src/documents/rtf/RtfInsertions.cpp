#include <algorithm>

#include "base/Utf8.h"
#include "documents/rtf/RtfSplicer.h"

namespace tme::rtf {
namespace {

/// Bytes behind a \u; a group that says otherwise is longer than more of them.
constexpr std::size_t kMostSkipped = 3;
constexpr std::string_view kNewParagraph = "\\par";
constexpr std::string_view kNewSection = "\\sect";

}  // namespace

/// Behind a section break all that is said of its section comes first. is_gone: it is taken out.
RtfSplicer::Place RtfSplicer::PlaceBehindSection(const RtfItem& item, bool is_gone) const {
  const RtfSource::Mark& mark = source_.marks[item.paragraph];
  return {is_gone ? mark.end : std::max(mark.end, mark.whole_end), item.format, item.paragraph, mark.unicode_skip};
}

std::optional<RtfSplicer::Place> RtfSplicer::PlaceBehind(const RtfItem& item) const {
  if (item.kind == RtfItem::Kind::Mark || IsFixed(item)) return std::nullopt;
  const std::size_t last = LastPieceOf(item);
  return PlaceAt(RangeOf(item).end, item, last, source_.pieces[last].unicode_skip);
}

std::optional<RtfSplicer::Place> RtfSplicer::PlaceBefore(const RtfItem& item) const {
  const bool is_mark = item.kind == RtfItem::Kind::Mark;
  if (!is_mark && IsFixed(item)) return std::nullopt;
  const std::uint8_t skip =
      is_mark ? source_.marks[item.paragraph].unicode_skip : source_.pieces[item.piece].unicode_skip;
  return PlaceAt(RangeOf(item).begin, item, (is_mark ? source_.EndOfPieces(item.paragraph) : item.piece) - 1, skip);
}

/// Objects may stand between the end of the last cell and that of its row, where text cannot. behind: the piece before
/// the place, if there is one.
RtfSplicer::Place RtfSplicer::PlaceAt(std::uint32_t at, const RtfItem& item, std::size_t behind,
                                      std::uint8_t unicode_skip) const {
  const RtfSource::Mark& mark = source_.marks[item.paragraph];
  const std::uint32_t format = at > mark.begin ? before_.paragraphs[item.paragraph].mark_format : item.format;
  at = std::min(at, mark.begin);
  const bool is_taken =
      behind < source_.pieces.size() && source_.pieces[behind].takes_next && source_.pieces[behind].end == at;
  return {at, format, item.paragraph, unicode_skip, is_taken};
}

/// Behind what stands before, or before what comes next, where the format fits better.
std::optional<RtfSplicer::Place> RtfSplicer::PlaceFor(const std::vector<RtfItem>& before, std::size_t next,
                                                      std::span<const RtfItem> added) const {
  const std::uint32_t first = added.front().format;
  std::optional<Place> behind = next > 0 ? PlaceBehind(before[next - 1]) : std::nullopt;
  const std::optional<Place> in_front = next < before.size() ? PlaceBefore(before[next]) : std::nullopt;
  const bool follows_section = next > 0 && before[next - 1].kind == RtfItem::Kind::Mark && before[next - 1].object != 0;
  if (!in_front && follows_section) behind = PlaceBehindSection(before[next - 1], next == removed_end_);
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
  const bool is_group = format != place.format || says_skip || place.takes_next;
  if (is_group) out_.Open(says_skip ? "\\uc1" : "");
  if (!WriteFormat(place.format, format)) return false;
  out_.SetUnicodeSkip(says_skip ? 1 : place.unicode_skip);
  out_.Text(characters, AlphabetOf(format));
  if (is_group) out_.Close();
  return true;
}

bool RtfSplicer::InsertObject(const Place& place, const RtfItem& item) {
  const Object& object = after_.objects[item.object - 1];
  if (object.rtf.empty() || object.kind == ObjectKind::SectionBreak) return false;
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
  const Object* const section = EntryOf(after_.objects, mark.object);
  out_.Words(section != nullptr ? kNewSection : kNewParagraph);
  if (is_group) out_.Close();
  // What it says of its section is not to end with the group.
  if (section != nullptr) out_.Kept(std::string_view(section->rtf).substr(kNewSection.size()));
  WriteLabel(mark.paragraph + std::size_t{1});
  return true;
}

}  // namespace tme::rtf
