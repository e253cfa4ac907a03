#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "RtfEdits.h"
#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfSections.h"
#include "documents/rtf/RtfSource.h"

/// What a save of an edited rich-text file promises, for a fuzz target and a test.
namespace tme::rtf {

/// What a paragraph says, and how: the same for what people take for the same. Numbers of tables are not in it.
class RtfSayings {
 public:
  explicit RtfSayings(const RtfDocument& document) : document_(document), text_(TextStarts(document)) {
    const auto found = std::ranges::find(document.fonts, document.default_font, &Font::number);
    unnamed_font_ = static_cast<std::size_t>(found - document.fonts.begin());
  }

  std::string Of(std::size_t paragraph) const {
    const rtf::Paragraph& it = document_.paragraphs[paragraph];
    std::string said, look;
    std::size_t text = text_[paragraph];
    bool follows_invisible = false;
    for (std::size_t run = it.first_run; run < document_.EndOfRuns(paragraph); ++run) {
      const Run& part = document_.runs[run];
      const Object* const object = EntryOf(document_.objects, part.object);
      const bool is_invisible = object != nullptr && object->kind == ObjectKind::Invisible;
      std::string next = is_invisible ? std::string() : LookOf(part.format);
      // Neighbours that nobody sees are one.
      if (object != nullptr && !(is_invisible && follows_invisible)) said += "\x01";
      if (object != nullptr)
        said += object->rtf;
      else if (part.bytes > 0 && look != next)
        said += "\x02" + next + "\x03";
      if (object == nullptr && part.bytes > 0) look = std::move(next);
      said.append(document_.text, text, part.bytes);
      text += part.bytes;
      if (object != nullptr || part.bytes > 0) follows_invisible = is_invisible;
    }
    return said + "\x04" + LookOf(it.mark_format) + LookOf(document_.paragraph_formats[it.format]);
  }

 private:
  std::string LookOf(std::uint32_t number) const {
    const CharFormat& format = document_.char_formats[number];
    std::string look = ExtraOf(format.extra);
    // That of text without any may be named as well.
    const bool is_named = format.font < document_.fonts.size() && format.font != unnamed_font_;
    look += is_named ? document_.fonts[format.font].name : "";
    for (const std::uint32_t color : {format.color, format.background})
      look += " " + std::to_string(color > 0 && color < document_.colors.size() ? document_.colors[color] + 1 : 0);
    for (std::uint32_t field = format.field; field != 0; field = document_.fields[field - 1].parent)
      look += document_.fields[field - 1].instruction + document_.fields[field - 1].url;
    Add(look, format.half_points, format.bold, format.italic, format.hidden, format.strike, format.underline,
        format.script, format.capitals);
    return look;
  }
  /// Where a list begins is not in it: of one known by what stands before its items, each says so for itself.
  std::string LookOf(const ParagraphFormat& format) const {
    std::string look = ExtraOf(format.extra) + format.list_text;
    Add(look, format.left, format.right, format.first_line, format.space_before, format.space_after,
        format.line_spacing, format.list_id, format.alignment, format.list, format.list_level, format.line_multiple,
        format.page_break_before);
    for (const TabStop& tab : format.tabs) Add(look, tab.position, tab.kind, tab.leader);
    return look;
  }
  template <typename... Values>
  static void Add(std::string& look, Values... values) {
    ((look += " " + std::to_string(static_cast<std::int64_t>(values))), ...);
  }
  /// Its words in any order.
  std::string ExtraOf(std::uint32_t number) const {
    const std::string* const extra = EntryOf(document_.extras, number);
    if (extra == nullptr) return {};
    std::vector<std::string> words;
    for (std::size_t at = 0, end = 0; at < extra->size(); at = end) {
      end = std::min(extra->find('\\', at + 1), extra->size());
      words.push_back(extra->substr(at, end - at));
    }
    std::ranges::sort(words);
    std::string sorted;
    for (const std::string& word : words) sorted += word;
    return sorted;
  }

  const RtfDocument& document_;
  const std::vector<std::uint32_t> text_;
  std::size_t unnamed_font_;
};

/// Empty when two documents say the same, else where they first do not.
inline std::string DifferenceBetween(const RtfDocument& one, const RtfDocument& other) {
  if (one.paragraphs.size() != other.paragraphs.size()) return "another number of paragraphs";
  const RtfSayings left(one), right(other);
  for (std::size_t i = 0; i < one.paragraphs.size(); ++i)
    if (left.Of(i) != right.Of(i)) return "paragraph " + std::to_string(i) + ": " + left.Of(i) + " | " + right.Of(i);
  return {};
}

/// Whether one stretch of bytes came into others, no longer than a letter as \uN with what stands for it, or as text
/// behind a control word.
inline bool IsOneLetterMore(std::string_view before, std::string_view after) {
  constexpr std::size_t kBytesOfLetter = 12;
  if (after.size() <= before.size() || after.size() > before.size() + kBytesOfLetter) return false;
  const auto front = std::mismatch(before.begin(), before.end(), after.begin()).first - before.begin();
  const auto back = std::mismatch(before.rbegin(), before.rend(), after.rbegin()).first - before.rbegin();
  return front + back >= static_cast<std::ptrdiff_t>(before.size());
}

/// Whether all bytes of a file stand in another one, in their order and side by side, but those of some paragraphs.
/// What may come between is new fonts and colours at the ends of their tables, or tables of them behind the control
/// words at the beginning. Of a paragraph that changed, all up to the end of the one before may be another, in a table
/// from the end of its row on. Where whole tables are written anew, all their paragraphs changed.
inline bool IsRestSame(std::string_view before, std::string_view after, const RtfSource& source,
                       const std::vector<bool>& changed) {
  const RtfSource::Header& header = source.header;
  std::vector<std::size_t> joints{header.begin, header.fonts_end, header.fonts_end + 1, header.colors_end};
  std::ranges::sort(joints);
  std::size_t at = 0;
  const auto take = [&](std::size_t begin, std::size_t end) {
    const std::string_view part = before.substr(begin, end - begin);
    const std::size_t found = end == before.size() && after.ends_with(part) ? after.size() - part.size()
                              : begin == 0                                  ? 0
                                                                            : after.find(part, at);
    if (found == std::string_view::npos || found < at || after.substr(found, part.size()) != part) return false;
    at = found + part.size();
    return true;
  };
  const auto take_all = [&](std::size_t begin, std::size_t end) {
    for (const std::size_t joint : joints) {
      if (joint <= begin || joint >= end) continue;
      if (!take(begin, joint)) return false;
      begin = joint;
    }
    return begin >= end || take(begin, end);
  };
  std::size_t begin = 0, end = std::max(header.end, header.begin);
  for (std::size_t i = 0; i <= changed.size(); ++i) {
    const bool is_last = i == changed.size();
    if (is_last || changed[i]) {
      if (!take_all(begin, is_last ? before.size() : end)) return false;
      if (is_last) return true;
    }
    const RtfSource::Mark& mark = source.marks[i];
    end = std::max(mark.end, mark.whole_end);
    // Objects may stand behind the last one's end.
    if (i + 1 == changed.size() && !source.pieces.empty()) end = std::max<std::size_t>(end, source.pieces.back().end);
    if (changed[i]) begin = end;
  }
  return true;
}

/// What hunks let change of the paragraphs of a file: with what only came in, what stands before and behind it.
inline std::vector<bool> ChangedBy(const std::vector<RtfHunk>& hunks, std::size_t paragraphs) {
  std::vector<bool> changed(paragraphs);
  for (const RtfHunk& hunk : hunks) {
    const bool came_in = hunk.before_begin == hunk.before_end;
    const std::size_t begin = came_in && hunk.before_begin > 0 ? hunk.before_begin - 1 : hunk.before_begin;
    const std::size_t end = std::min(came_in ? hunk.before_end + 1 : hunk.before_end, paragraphs);
    for (std::size_t i = begin; i < end; ++i) changed[i] = true;
  }
  return changed;
}

/// Adds where the file says something of a section whose break is gone: that may stand behind other text of it.
inline void AddGoneSections(const RtfSource& source, const RtfDocument& edited, std::vector<bool>& changed) {
  for (const RtfSource::SectionPart& part : source.section_parts) {
    if (std::ranges::find(edited.runs, part.object, &Run::object) != edited.runs.end()) continue;
    const auto mark = std::ranges::upper_bound(source.marks, part.begin, {}, &RtfSource::Mark::end);
    if (mark != source.marks.end()) changed[static_cast<std::size_t>(mark - source.marks.begin())] = true;
  }
}

/// What a save broke of its promises; empty when all is well.
inline std::string BrokenPromise(std::string_view bytes, const RtfSource& source, const EditedRtf& edited,
                                 std::string_view saved, const std::vector<RtfHunk>& hunks, const RtfDocument& again) {
  std::vector<bool> changed = ChangedBy(hunks, source.marks.size());
  const bool has_blocks =
      std::ranges::any_of(hunks, [](const RtfHunk& it) { return it.level == RtfHunk::Level::Blocks; });
  const auto count = std::ranges::count(changed, true);
  // Where paragraphs say the same, another one of them may change; so may what stands beside what came in.
  if (!has_blocks && count > std::ranges::count(edited.Touched(), true) + 2 * edited.Edits())
    return "more paragraphs change than were edited";
  AddGoneSections(source, edited.Document(), changed);
  if (!IsRestSame(bytes, saved, source, changed)) return "what was not edited changes";
  return DifferenceBetween(WithSectionsApart(edited.Document()), again);
}

}  // namespace tme::rtf
