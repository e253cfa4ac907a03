// Input: a byte for the kind, a byte for how many edits each side made, three bytes for each, the text of the base.
#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include "EditedLines.h"
#include "Fuzz.h"
#include "base/CaseFold.h"
#include "documents/compare/Merge.h"
#include "documents/compare/OutlineDiff.h"

namespace tme::fuzz {
namespace {

constexpr unsigned kMostEdits = 8;
constexpr RegCoding kCoding{.version = RegVersion::Version5};
constexpr OutlineOptions kApart{.blocks = OutlineOptions::Blocks::Apart};

Outline Read(bool is_reg, const std::string& text) {
  return is_reg ? ReadRegOutline(text, kCoding, kApart) : ReadIniOutline(text, kApart);
}

std::string Place(const Outline& outline, Outline::Index group, Outline::Index item) {
  std::string place = FoldedCase(GroupLabel(outline, outline.Groups()[group].joined));
  if (item == Outline::kNone) return place;
  const Outline::Item& it = outline.Items()[item];
  return place + '\n' + FoldedCase(outline.NameOf(it)) + '\n' + std::to_string(it.number);
}

using Lines = std::multiset<std::string>;

/// The changes, as far as a merge takes them over.
Lines ChangesOf(const Outline& before, const Outline& after) {
  Lines lines;
  for (const OutlineChange& change : DiffOutlines(before, after)) {
    const bool is_removed = change.kind == OutlineChange::Kind::Removed;
    if (change.IsOfGroup() && change.kind == OutlineChange::Kind::Changed) continue;
    std::string line = is_removed ? Place(before, change.group_before, change.item_before)
                                  : Place(after, change.group_after, change.item_after);
    if (!is_removed && !change.IsOfGroup()) line += '=' + ValueLabel(after, change.item_after);
    lines.insert((is_removed ? "-" : "+") + line);
  }
  return lines;
}

/// Where entries stand, whatever they say. Those of one name have no number: it is another one when one before goes.
Lines PlacesIn(const Outline& outline) {
  Lines places;
  for (const Outline::Item& item : outline.Items())
    if (outline.IsContent(item))
      places.insert(FoldedCase(outline.Groups()[item.group].path) + '\n' + FoldedCase(outline.NameOf(item)));
  return places;
}

bool HasDuplicates(const Outline& outline) {
  return std::ranges::any_of(outline.Items(), [](const Outline::Item& item) { return item.number > 0; }) ||
         std::ranges::any_of(outline.Groups(), [](const Outline::Group& group) { return group.number > 0; });
}

Lines Union(const Lines& one, const Lines& other) {
  Lines all;
  std::set_union(one.begin(), one.end(), other.begin(), other.end(), std::inserter(all, all.end()));
  return all;
}

void Run(std::string_view input) {
  const bool is_reg = TakeByte(input) % 2 != 0;
  const unsigned edits = TakeByte(input);
  const auto take_script = [&input](unsigned count) {
    const std::string_view script = input.substr(0, std::size_t{3} * (count % kMostEdits));
    input.remove_prefix(script.size());
    return script;
  };
  const std::string_view our_script = take_script(edits), their_script = take_script(edits >> 4U);
  const std::string text(input);
  const std::string our_text = EditedLines(text, our_script), their_text = EditedLines(text, their_script);
  const Outline base = Read(is_reg, text), ours = Read(is_reg, our_text), theirs = Read(is_reg, their_text);
  // A blank line at the end is no difference, but keeps from taking a shortcut.
  const bool is_whole = our_text != text && text.ends_with('\n') && our_text.ends_with('\n');
  if (const auto same = MergeOutlines(base, ours, Read(is_reg, is_whole ? text + '\n' : text)))
    Promise(same->text == our_text && same->conflicts.empty(), "what they did not change becomes ours");
  if (const auto same = MergeOutlines(base, base, theirs))
    Promise(same->text == their_text && same->conflicts.empty(), "what we did not change becomes theirs");
  if (const auto same = MergeOutlines(base, ours, ours))
    Promise(same->text == our_text && same->conflicts.empty(), "what both did is there once");
  const auto merged = MergeOutlines(base, ours, theirs), swapped = MergeOutlines(base, theirs, ours);
  Promise(merged.has_value() == swapped.has_value(), "both can be merged or none");
  // Lines that are not understood may go on in others, or say another version where they come to stand first.
  const auto is_odd = [&base](const Outline& side) {
    const auto count = [&side](Outline::Sort sort) {
      return std::ranges::count(side.Items(), sort, &Outline::Item::sort);
    };
    // A line that stands deeper is part of what comes to stand above it.
    const auto is_loose = [&side](const Outline::Item& item) {
      const std::string_view line = std::string_view(side.Text()).substr(item.at);
      const bool is_bare = line.substr(0, line.find_first_of("\r\n")).find('=') == line.npos;
      return item.sort == Outline::Sort::Entry && is_bare && line.find_first_of(" \t") == 0;
    };
    if (side.FileKind() == Outline::Kind::Ini && std::ranges::any_of(side.Items(), is_loose)) return true;
    const bool is_reg_file = side.FileKind() == Outline::Kind::Reg;
    return side.Coding().version != base.Coding().version ||
           (is_reg_file && (count(Outline::Sort::FileHeader) != 1 || count(Outline::Sort::Other) > 0));
  };
  if (!merged || is_odd(base) || is_odd(ours) || is_odd(theirs)) return;
  const Outline result = Read(is_reg, merged->text), other = Read(is_reg, swapped->text);
  Promise(merged->conflicts.size() == swapped->conflicts.size(), "each conflict is one of either side");
  Promise(PlacesIn(result) == PlacesIn(other), "the order of the sides does not matter for what is kept");
  if (!merged->conflicts.empty() || HasDuplicates(ours) || HasDuplicates(theirs)) return;
  Promise(ChangesOf(base, result) == Union(ChangesOf(base, ours), ChangesOf(base, theirs)),
          "without a conflict all changes of both sides are there");
  Promise(DiffOutlines(result, other).empty() || is_reg, "without a conflict both ways say the same");
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
