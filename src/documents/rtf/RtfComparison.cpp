#include "documents/rtf/RtfComparison.h"

#include <algorithm>
#include <string_view>

#include "documents/rtf/RtfCharacterWords.h"

namespace tme::rtf {
namespace {

bool SameObject(const Object& one, const Object& other) {
  return one.kind == other.kind && one.rtf == other.rtf && one.picture == other.picture && one.width == other.width &&
         one.height == other.height;
}

std::uint32_t ColorOf(const RtfDocument& document, std::uint32_t color) {
  constexpr std::uint32_t kAutomatic = 0xFF000000;
  return color == 0 || color >= document.colors.size() ? kAutomatic : document.colors[color];
}

template <typename Known, typename Same>
bool Ask(Known& known, std::uint32_t left, std::uint32_t right, Same same) {
  const auto [place, is_new] = known.try_emplace((std::uint64_t{left} << 32) | right, false);
  if (is_new) place->second = same();
  return place->second;
}

}  // namespace

std::vector<std::uint32_t> TextStarts(const RtfDocument& document) {
  std::vector<std::uint32_t> starts;
  starts.reserve(document.paragraphs.size());
  std::uint32_t text = 0;
  std::size_t run = 0;
  for (const Paragraph& paragraph : document.paragraphs) {
    for (; run < paragraph.first_run; ++run) text += document.runs[run].bytes;
    starts.push_back(text);
  }
  return starts;
}

/// The runs of a paragraph in steps: text of one format, or an object.
struct RtfComparison::Cursor {
  const RtfDocument& document;
  std::size_t run;
  const std::size_t end;
  std::size_t text;
  std::uint32_t used = 0;

  Cursor(const RtfDocument& of, std::size_t paragraph, std::uint32_t text_start)
      : document(of), run(of.paragraphs[paragraph].first_run), end(of.EndOfRuns(paragraph)), text(text_start) {
    SkipEmpty();
  }
  bool AtEnd() const { return run == end; }
  const Run& Current() const { return document.runs[run]; }
  std::uint32_t Left() const { return Current().bytes - used; }
  std::string_view Text(std::uint32_t size) const { return std::string_view(document.text).substr(text, size); }
  void Advance(std::uint32_t size) {
    text += size;
    used += size;
    if (Current().object == 0 && used < Current().bytes) return;
    ++run;
    used = 0;
    SkipEmpty();
  }

 private:
  void SkipEmpty() {
    while (run < end && Current().object == 0 && Current().bytes == 0) ++run;
  }
};

RtfComparison::RtfComparison(const RtfDocument& left, const RtfDocument& right, const RtfDocument& right_tables,
                             std::size_t unnamed_font)
    : left_(left),
      right_(right),
      right_tables_(right_tables),
      unnamed_font_(unnamed_font),
      left_text_(TextStarts(left)),
      right_text_(TextStarts(right)) {}

bool RtfComparison::SameParagraph(std::size_t left, std::size_t right) {
  const Paragraph &one = left_.paragraphs[left], &other = right_.paragraphs[right];
  if (!SameParagraphFormat(one.format, other.format) || !SameCharFormat(one.mark_format, other.mark_format))
    return false;
  Cursor one_cursor(left_, left, left_text_[left]), other_cursor(right_, right, right_text_[right]);
  return SameRuns(one_cursor, other_cursor);
}

/// Takes objects side by side that nobody sees; false where there are none.
bool RtfComparison::TakeUnseen(Cursor& cursor, const RtfDocument& tables, std::string& groups) {
  groups.clear();
  const auto unseen = [&] {
    const Object* const object = cursor.AtEnd() ? nullptr : EntryOf(tables.objects, cursor.Current().object);
    return object != nullptr && object->kind == ObjectKind::Invisible ? object : nullptr;
  };
  for (const Object* object = unseen(); object != nullptr; object = unseen()) {
    groups += object->rtf;
    cursor.Advance(0);
  }
  return !groups.empty();
}

bool RtfComparison::SameRuns(Cursor& left, Cursor& right) {
  std::string left_groups, right_groups;
  while (!left.AtEnd() && !right.AtEnd()) {
    // Read again, neighbours among them are one, which stands in one field and has the look of the first.
    const std::uint32_t left_format = left.Current().format, right_format = right.Current().format;
    if (TakeUnseen(left, left_, left_groups)) {
      if (!TakeUnseen(right, right_tables_, right_groups) || left_groups != right_groups ||
          !SameField(left_.char_formats[left_format].field, right_tables_.char_formats[right_format].field))
        return false;
      continue;
    }
    const Run &one = left.Current(), &other = right.Current();
    if ((one.object != 0) != (other.object != 0)) return false;
    const Object* object = EntryOf(left_.objects, one.object);
    if (object != nullptr && !SameObject(*object, right_tables_.objects[other.object - 1])) return false;
    const bool has_format = object == nullptr || object->kind != ObjectKind::SectionBreak;
    if (has_format && !SameCharFormat(one.format, other.format)) return false;
    const std::uint32_t size = one.object != 0 ? 0 : std::min(left.Left(), right.Left());
    if (left.Text(size) != right.Text(size)) return false;
    left.Advance(size);
    right.Advance(size);
  }
  return left.AtEnd() && right.AtEnd();
}

bool RtfComparison::SameCharFormat(std::uint32_t left, std::uint32_t right) {
  return Ask(char_formats_, left, right, [&] {
    CharFormat one = left_.char_formats[left];
    const CharFormat& other = right_tables_.char_formats[right];
    if (!SameFont(one.font, other.font) || !SameWords(one, other) || !SameField(one.field, other.field) ||
        ColorOf(left_, one.color) != ColorOf(right_tables_, other.color) ||
        ColorOf(left_, one.background) != ColorOf(right_tables_, other.background) ||
        ColorOf(left_, one.shading) != ColorOf(right_tables_, other.shading))
      return false;
    one.font = other.font;
    one.extra = other.extra;
    one.field = other.field;
    one.color = other.color;
    one.background = other.background;
    one.shading = other.shading;
    one.said = other.said;  // what differs from its default by a style's word alone
    return one == other;
  });
}

bool RtfComparison::SameParagraphFormat(std::uint32_t left, std::uint32_t right) {
  return Ask(paragraph_formats_, left, right, [&] {
    ParagraphFormat one = left_.paragraph_formats[left];
    const ParagraphFormat& other = right_tables_.paragraph_formats[right];
    // A list without words of its own has got them where it was written.
    const bool same_list = other.list_group == 0 || SameExtra(one.list_group, other.list_group);
    if (!same_list || !SameExtra(one.extra, other.extra)) return false;
    one.extra = other.extra;
    // A number before an item may have been left as it was; else the group or the file's tables say where a list
    // begins.
    if (one.list_group == 0) one.list_start = other.list_start;
    one.list_group = other.list_group;
    return one == other;
  });
}

bool RtfComparison::SameFont(std::uint32_t left, std::uint32_t right) const {
  if (IsMissingFont(left) || IsMissingFont(right)) return left == right;
  const bool is_right_known = right < right_tables_.fonts.size();
  if (left >= left_.fonts.size()) return !is_right_known || right == unnamed_font_;
  if (!is_right_known) return false;
  const Font &one = left_.fonts[left], &other = right_tables_.fonts[right];
  return one.name == other.name && one.charset == other.charset;
}

bool RtfComparison::SameExtra(std::uint32_t left, std::uint32_t right) const {
  const std::string *one = EntryOf(left_.extras, left), *other = EntryOf(right_tables_.extras, right);
  return (one == nullptr ? std::string_view() : *one) == (other == nullptr ? std::string_view() : *other);
}

/// Kept words in any order.
bool RtfComparison::SameWords(const CharFormat& left, const CharFormat& right) const {
  if (SameExtra(left.extra, right.extra)) return true;
  const std::string *one = EntryOf(left_.extras, left.extra), *other = EntryOf(right_tables_.extras, right.extra);
  const FontClass font_class = right.font_class;
  return one != nullptr && other != nullptr && AreCharacterWordsIn(*one, *other, font_class) &&
         AreCharacterWordsIn(*other, *one, font_class) &&
         CharacterWordsBetween(*one, *other, font_class, FontClass::Low).IsEmpty();
}

bool RtfComparison::SameField(std::uint32_t left, std::uint32_t right) const {
  while (left != 0 && right != 0) {
    const Field &one = left_.fields[left - 1], &other = right_tables_.fields[right - 1];
    if (one.url != other.url || one.instruction != other.instruction || one.words != other.words) return false;
    left = one.parent;
    right = other.parent;
  }
  return left == right;
}

}  // namespace tme::rtf
