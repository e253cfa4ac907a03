#include "documents/rtf/RtfItems.h"

#include <algorithm>
#include <string_view>

namespace tme::rtf {
namespace {

constexpr std::uint32_t CharacterBytes(char first) {
  const auto byte = static_cast<unsigned char>(first);
  return byte < 0xC0 ? 1U : byte < 0xE0 ? 2U : byte < 0xF0 ? 3U : 4U;
}

std::uint32_t KeyOf(const RtfDocument& document, const RtfItem& item) {
  // The bytes of a character in UTF-8 never have these two bits in front and so little behind.
  constexpr std::uint32_t kMark = 0x40000000, kObject = 0x80000000;
  if (item.kind == RtfItem::Kind::Mark) return kMark;
  if (item.kind == RtfItem::Kind::Object) return kObject | item.object;
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
  for (std::size_t i = 1; i < steps.size(); ++i) {
    const bool begins = steps[i].change == DiffChange::Added && steps[i - 1].change == DiffChange::Same &&
                        before[steps[i - 1].at].kind == RtfItem::Kind::Mark;
    if (!begins) continue;
    std::size_t end = i;
    while (end < steps.size() && steps[end].change == DiffChange::Added) ++end;
    if (after[steps[end - 1].at].kind != RtfItem::Kind::Mark) continue;
    // The mark of before goes behind all that was added; that in front is a new one.
    const std::uint32_t mark = steps[i - 1].at;
    const std::uint32_t first = steps[i].at - 1;
    for (std::size_t at = i - 1; at < end - 1; ++at)
      steps[at] = {DiffChange::Added, first + static_cast<std::uint32_t>(at - (i - 1))};
    steps[end - 1] = {DiffChange::Same, mark};
    i = end - 1;
  }
}

void AddItems(const RtfDocument& document, std::size_t paragraph, std::uint32_t& text, std::vector<RtfItem>& items) {
  const auto number = static_cast<std::uint32_t>(paragraph);
  const auto add = [&](RtfItem::Kind kind, std::uint32_t size, std::uint32_t format, std::uint32_t object) {
    items.push_back(
        {.kind = kind, .text = text, .size = size, .format = format, .object = object, .paragraph = number});
    text += size;
  };
  for (std::size_t i = document.paragraphs[paragraph].first_run; i < document.EndOfRuns(paragraph); ++i) {
    const Run& run = document.runs[i];
    if (run.object != 0) add(RtfItem::Kind::Object, 0, run.format, run.object);
    const std::uint32_t end = text + run.bytes;
    while (text < end)
      add(RtfItem::Kind::Text, std::min(CharacterBytes(document.text[text]), end - text), run.format, 0);
  }
  add(RtfItem::Kind::Mark, 0, document.paragraphs[paragraph].mark_format, 0);
}

}  // namespace

std::vector<RtfItem> ItemsOf(const RtfDocument& document, std::size_t begin, std::size_t end, std::uint32_t text) {
  std::vector<RtfItem> items;
  for (std::size_t paragraph = begin; paragraph < end; ++paragraph) AddItems(document, paragraph, text, items);
  return items;
}

std::vector<DiffStep> DiffItems(const RtfDocument& before, const std::vector<RtfItem>& before_items,
                                const RtfDocument& after, const std::vector<RtfItem>& after_items) {
  std::vector<DiffStep> steps = DiffSequences(KeysOf(before, before_items), KeysOf(after, after_items));
  MoveMarksForward(steps, before_items, after_items);
  return steps;
}

}  // namespace tme::rtf
