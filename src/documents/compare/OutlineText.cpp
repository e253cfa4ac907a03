#include <array>
#include <optional>

#include "documents/compare/OutlineDiff.h"
#include "documents/reg/RegDataLine.h"

namespace tme {
namespace {

using Kind = OutlineChange::Kind;

/// Gathers lines below the labels of their groups.
class DiffLines {
 public:
  DiffLines(const Outline& before, const Outline& after) : before_(before), after_(after) {}

  void Add(const OutlineChange& change) {
    const bool was_there = change.group_before != Outline::kNone;
    if (change.IsOfGroup()) return AddGroup(change, was_there);
    const Outline::Index group = was_there ? change.group_before : change.group_after;
    if (group != group_ || was_there != was_there_) AddLine(' ', GroupLabel(was_there ? before_ : after_, group));
    group_ = group;
    was_there_ = was_there;
    if (change.kind == Kind::Moved) return AddLine('>', ItemLabel(before_, change.item_before));
    if (change.item_before != Outline::kNone) AddLine('-', ItemLabel(before_, change.item_before));
    if (change.item_after != Outline::kNone) AddLine('+', ItemLabel(after_, change.item_after));
  }

  std::string Take() && { return std::move(text_); }

 private:
  void AddGroup(const OutlineChange& change, bool was_there) {
    constexpr std::array kMarks{'-', '+', '>', '>'};
    group_ = was_there ? change.group_before : change.group_after;
    was_there_ = was_there;
    AddLine(kMarks[static_cast<std::size_t>(change.kind)], GroupLabel(was_there ? before_ : after_, group_));
  }

  void AddLine(char mark, const std::string& line) {
    if (!line.empty()) text_.append(1, mark).append(line).append(1, '\n');
  }

  const Outline& before_;
  const Outline& after_;
  /// Whose label stands above the next line.
  Outline::Index group_ = Outline::kNone;
  bool was_there_ = false;
  std::string text_;
};

}  // namespace

std::string GroupLabel(const Outline& outline, Outline::Index group) {
  const Outline::Group& it = outline.Groups()[group];
  if (it.sort == Outline::GroupSort::Top) return "";
  std::string label = it.sort == Outline::GroupSort::Deletion ? "[-" : "[";
  label.append(it.path).append("]");
  if (it.number > 0) label.append(" (").append(std::to_string(it.number + 1)).append(")");
  return label;
}

std::string ValueLabel(const Outline& outline, Outline::Index item) {
  const Outline::Item& it = outline.Items()[item];
  const std::string_view value = outline.ValueOf(it);
  if (outline.FileKind() == Outline::Kind::Ini) return outline.IniValueOf(it, "\\n");
  if (!it.has_value || outline.Coding().version == RegVersion::Regedit) return std::string(value);
  const std::optional<RegData> data = DecodeAssignment(value, outline.Coding());
  return data ? RegDataLine(*data) : std::string(value);
}

std::string ItemLabel(const Outline& outline, Outline::Index item) {
  const Outline::Item& it = outline.Items()[item];
  const bool is_pair = outline.Coding().version == RegVersion::Regedit;
  std::string label = outline.NameOf(it);
  if (it.sort != Outline::Sort::Entry) return label;
  if (outline.FileKind() == Outline::Kind::Reg && !is_pair) label = QuotedRegName(label);
  if (it.has_value) label.append("=").append(ValueLabel(outline, item));
  return label.append(outline.CommentsOf(item));
}

std::string DiffText(const Outline& before, const Outline& after, const std::vector<OutlineChange>& changes) {
  DiffLines lines(before, after);
  for (const OutlineChange& change : changes) lines.Add(change);
  return std::move(lines).Take();
}

}  // namespace tme
