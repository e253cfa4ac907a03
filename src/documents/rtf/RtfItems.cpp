#include "documents/rtf/RtfItems.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/Utf8.h"

namespace tme::rtf {
namespace {

constexpr std::uint32_t CharacterBytes(char first) {
  const auto byte = static_cast<unsigned char>(first);
  return byte < 0xC0 ? 1U : byte < 0xE0 ? 2U : byte < 0xF0 ? 3U : 4U;
}

std::uint32_t KeyOf(const RtfDocument& document, const RtfItem& item) {
  // The bytes of a character in UTF-8 never have these two bits in front and so little behind.
  constexpr std::uint32_t kMark = 0x40000000, kObject = 0x80000000;
  if (item.object != 0) return kObject | item.object;
  if (item.kind == RtfItem::Kind::Mark) return kMark;
  std::uint32_t key = 0;
  for (const char byte : std::string_view(document.text).substr(item.text, item.size))
    key = (key << 8) | static_cast<unsigned char>(byte);
  return key & ~kObject;
}

std::vector<std::uint32_t> KeysOf(const RtfDocument& document, const std::vector<RtfItem>& items) {
  std::vector<std::uint32_t> keys;
  keys.reserve(items.size());
  for (const RtfItem& item : items) keys.push_back(KeyOf(document, item));
  return keys;
}

void MoveMarksForward(std::vector<DiffStep>& steps, const std::vector<RtfItem>& before,
                      const std::vector<RtfItem>& after) {
  const auto is_mark = [](const RtfItem& item) { return item.kind == RtfItem::Kind::Mark && item.object == 0; };
  for (std::size_t i = 1; i < steps.size(); ++i) {
    const bool begins = steps[i].change == DiffChange::Added && steps[i - 1].change == DiffChange::Same &&
                        is_mark(before[steps[i - 1].at]);
    if (!begins) continue;
    std::size_t end = i;
    while (end < steps.size() && steps[end].change == DiffChange::Added) ++end;
    if (!is_mark(after[steps[end - 1].at])) continue;
    // The mark of before goes behind all that was added; that in front is a new one.
    const std::uint32_t mark = steps[i - 1].at;
    const std::uint32_t first = steps[i].at - 1;
    for (std::size_t at = i - 1; at < end - 1; ++at)
      steps[at] = {DiffChange::Added, first + static_cast<std::uint32_t>(at - (i - 1))};
    steps[end - 1] = {DiffChange::Same, mark};
    i = end - 1;
  }
}

struct ItemsOfDocument {
  const RtfDocument& document;
  const std::vector<RtfItem>& items;
};

/// What came in or went beside a letter that is the same in another format may be either of them: such a stretch moves
/// to where the formats of what stays are the same.
class Slider {
 public:
  Slider(std::vector<DiffStep>& steps, const ItemsOfDocument& before, const ItemsOfDocument& after)
      : steps_(steps), before_(before), after_(after) {}

  void Run() {
    std::size_t before = 0, after = 0;
    for (std::size_t begin = 0, end = 0; begin < steps_.size(); begin = end) {
      const DiffChange change = steps_[begin].change;
      while (end < steps_.size() && steps_[end].change == change) ++end;
      if (change != DiffChange::Added) before += end - begin;
      if (change != DiffChange::Removed) after += end - begin;
      if (change == DiffChange::Added) Slide(begin, end, after, before, after_, before_);
      if (change == DiffChange::Removed) Slide(begin, end, before, after, before_, after_);
    }
  }

 private:
  /// own, other: what comes behind the stretch in the document that it stands in, and in the other one.
  void Slide(std::size_t begin, std::size_t& end, std::size_t& own, std::size_t& other, const ItemsOfDocument& mine,
             const ItemsOfDocument& its) {
    const std::size_t size = end - begin;
    // Whether what stays is rather `better` than `now`.
    const auto fits = [&](std::size_t now, std::size_t better, std::size_t stays) {
      const RtfItem &one = mine.items[now], &two = mine.items[better];
      const std::uint32_t format = its.items[stays].format;
      return one.kind == RtfItem::Kind::Text && two.kind == RtfItem::Kind::Text && one.format != format &&
             two.format == format && KeyOf(mine.document, one) == KeyOf(mine.document, two);
    };
    const auto is_same = [this](std::size_t step) {
      return step < steps_.size() && steps_[step].change == DiffChange::Same;
    };
    constexpr int kMostSlides = 64;
    int left = kMostSlides;
    for (; left > 0 && is_same(begin - 1) && fits(own - size - 1, own - 1, other - 1); --left) {
      Swap(begin - 1, end - 1);
      --begin, --end, --own, --other;
    }
    for (; left > 0 && is_same(end) && fits(own, own - size, other); --left) {
      Swap(end, begin);
      ++begin, ++end, ++own, ++other;
    }
  }
  /// The step that stays goes to the other end of the stretch.
  void Swap(std::size_t from, std::size_t to) {
    const bool is_added = steps_[to].change == DiffChange::Added, goes_behind = from < to;
    const auto step = [this](std::size_t at) { return steps_.begin() + static_cast<std::ptrdiff_t>(at); };
    const std::size_t first = std::min(from, to), last = std::max(from, to);
    std::uint32_t number = steps_[first].at;
    std::rotate(step(first), goes_behind ? step(first + 1) : step(last), step(last + 1));
    for (std::size_t i = first; i <= last; ++i) {
      // What went is numbered with what stays, what came in apart.
      if (!is_added) steps_[i].at = number++;
      if (is_added && i != to) goes_behind ? --steps_[i].at : ++steps_[i].at;
    }
  }

  std::vector<DiffStep>& steps_;
  const ItemsOfDocument before_;
  const ItemsOfDocument after_;
};

/// A stretch of one format, or an object, in a paragraph.
struct Span {
  std::uint32_t text = 0;
  std::uint32_t size = 0;  ///< 0 of an object
  std::uint32_t format = 0;
  std::uint32_t object = 0;

  std::size_t Units() const { return object != 0 ? 1 : size; }
};

std::vector<Span> SpansOf(const RtfDocument& document, std::size_t paragraph, std::uint32_t text) {
  std::vector<Span> spans;
  for (std::size_t i = document.paragraphs[paragraph].first_run; i < document.EndOfRuns(paragraph); ++i) {
    const Run& run = document.runs[i];
    if (run.object != 0) spans.push_back({text, 0, run.format, run.object});
    const bool goes_on =
        !spans.empty() && run.object == 0 && spans.back().object == 0 && spans.back().format == run.format;
    if (goes_on)
      spans.back().size += run.bytes;
    else if (run.bytes > 0)
      spans.push_back({text, run.bytes, run.format, 0});
    text += run.bytes;
  }
  return spans;
}

std::size_t UnitsOf(const std::vector<Span>& spans) {
  std::size_t units = 0;
  for (const Span& span : spans) units += span.Units();
  return units;
}

std::size_t CommonFront(std::string_view text, const std::vector<Span>& spans, std::string_view other_text,
                        const std::vector<Span>& others) {
  std::size_t units = 0;
  for (std::size_t i = 0; i < std::min(spans.size(), others.size()); ++i) {
    const Span &span = spans[i], &other = others[i];
    if (span.format != other.format || span.object != other.object) break;
    const std::string_view one = text.substr(span.text, span.size), two = other_text.substr(other.text, other.size);
    const auto same = static_cast<std::size_t>(std::ranges::mismatch(one, two).in1 - one.begin());
    units += span.object != 0 ? 1 : same;
    if (same < span.size || same < other.size) break;
  }
  return units;
}

std::size_t CommonBack(std::string_view text, const std::vector<Span>& spans, std::string_view other_text,
                       const std::vector<Span>& others) {
  std::size_t units = 0;
  for (std::size_t i = 1; i <= std::min(spans.size(), others.size()); ++i) {
    const Span &span = spans[spans.size() - i], &other = others[others.size() - i];
    if (span.format != other.format || span.object != other.object) break;
    const std::string_view one = text.substr(span.text, span.size), two = other_text.substr(other.text, other.size);
    const auto found = std::mismatch(one.rbegin(), one.rend(), two.rbegin(), two.rend());
    const auto same = static_cast<std::size_t>(found.first - one.rbegin());
    units += span.object != 0 ? 1 : same;
    if (same < span.size || same < other.size) break;
  }
  return units;
}

bool IsLarge(const RtfItemRange& range) {
  constexpr std::size_t kLarge = 4096;
  std::size_t units = 0;
  for (std::size_t i = range.document.paragraphs[range.begin].first_run; i < range.document.EndOfRuns(range.end - 1);
       ++i)
    units += range.document.runs[i].bytes + 1;
  return units > kLarge;
}

/// Adds what stands between two counts of units.
void AddItems(const RtfItemRange& range, std::size_t paragraph, std::uint32_t& text, std::size_t front,
              std::size_t back, std::vector<RtfItem>& items) {
  const RtfDocument& document = range.document;
  const auto number = static_cast<std::uint32_t>(paragraph);
  std::size_t unit = 0;
  const auto add = [&](RtfItem::Kind kind, std::uint32_t size, std::uint32_t format, std::uint32_t object) {
    if (kind == RtfItem::Kind::Mark || (unit + std::max(size, 1U) > front && unit < back))
      items.push_back(
          {.kind = kind, .text = text, .size = size, .format = format, .object = object, .paragraph = number});
    text += size;
    unit += std::max(size, 1U);
  };
  const std::uint32_t section = document.SectionBreakAt(paragraph, range.objects);
  const std::size_t last_run = document.EndOfRuns(paragraph) - (section != 0 ? 1 : 0);
  for (std::size_t i = document.paragraphs[paragraph].first_run; i < last_run; ++i) {
    const Run& run = document.runs[i];
    if (run.object != 0) add(RtfItem::Kind::Object, 0, run.format, run.object);
    const std::uint32_t begin = text, end = text + run.bytes;
    if (unit < front) {
      const auto known = static_cast<std::uint32_t>(std::min<std::size_t>(front - unit, run.bytes));
      text = static_cast<std::uint32_t>(
          utf8::CharacterStart(std::string_view(document.text).substr(0, end), text + known));
      unit += text - begin;
    }
    while (text < end && unit < back)
      add(RtfItem::Kind::Text, std::min(CharacterBytes(document.text[text]), end - text), run.format, 0);
    unit += end - text;
    text = end;
  }
  add(RtfItem::Kind::Mark, 0, document.paragraphs[paragraph].mark_format, section);
}

}  // namespace

RtfCommonEnds CommonEndsOf(const RtfItemRange& one, const RtfItemRange& other) {
  constexpr std::size_t kLeft = 16;
  if (!IsLarge(one) || !IsLarge(other)) return {};
  const std::string_view text(one.document.text), other_text(other.document.text);
  const std::vector<Span> first = SpansOf(one.document, one.begin, one.text);
  const std::vector<Span> other_first = SpansOf(other.document, other.begin, other.text);
  RtfCommonEnds ends;
  ends.front = CommonFront(text, first, other_text, other_first);
  ends.back = CommonBack(text, SpansOf(one.document, one.end - 1, one.last_text), other_text,
                         SpansOf(other.document, other.end - 1, other.last_text));
  for (const auto& [range, spans] : {std::pair(&one, &first), std::pair(&other, &other_first)})
    if (range->begin + 1 == range->end) ends.back = std::min(ends.back, UnitsOf(*spans) - ends.front);
  ends.front -= std::min(ends.front, kLeft);
  ends.back -= std::min(ends.back, kLeft);
  return ends;
}

std::vector<RtfItem> ItemsOf(const RtfItemRange& range, const RtfCommonEnds& left_out) {
  std::vector<RtfItem> items;
  std::uint32_t text = range.text;
  for (std::size_t paragraph = range.begin; paragraph < range.end; ++paragraph) {
    std::size_t back = std::numeric_limits<std::size_t>::max();
    if (paragraph + 1 == range.end && left_out.back > 0)
      back = UnitsOf(SpansOf(range.document, paragraph, text)) - left_out.back;
    AddItems(range, paragraph, text, paragraph == range.begin ? left_out.front : 0, back, items);
  }
  return items;
}

std::vector<DiffStep> DiffItems(const RtfDocument& before, const std::vector<RtfItem>& before_items,
                                const RtfDocument& after, const std::vector<RtfItem>& after_items) {
  std::vector<DiffStep> steps = DiffSequences(KeysOf(before, before_items), KeysOf(after, after_items));
  MoveMarksForward(steps, before_items, after_items);
  Slider(steps, {before, before_items}, {after, after_items}).Run();
  return steps;
}

}  // namespace tme::rtf
