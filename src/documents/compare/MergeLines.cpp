#include "documents/compare/MergeLines.h"

#include <utility>

#include "documents/SourceLines.h"
#include "documents/reg/RegConversion.h"

namespace tme {
namespace {

const Outline::Item& ItemOf(const MergeUnits& units, MergeUnits::Index unit) {
  return units.File().Items()[units.All()[unit].main];
}

/// The lines of an entry with another value.
std::string WithValue(const MergeUnits& units, MergeUnits::Index unit, std::string_view value) {
  const Outline::Item& item = ItemOf(units, unit);
  std::string lines(units.MainOf(unit));
  return lines.replace(item.value_at - item.at, item.value_size, value);
}

std::string_view BeforeValue(const MergeUnits& units, MergeUnits::Index unit) {
  const Outline::Item& item = ItemOf(units, unit);
  return units.MainOf(unit).substr(0, item.value_at - item.at);
}

bool SameVersion(const MergeUnits& one, const MergeUnits& other) {
  return one.File().Coding().version == other.File().Coding().version;
}

/// Their value in our version, unwrapped where it had to be encoded anew.
struct TheirValue {
  std::string text;
  bool is_new = false;
};
std::optional<TheirValue> ValueFor(const MergeUnits& ours, const MergeUnits& theirs, MergeUnits::Index unit) {
  const std::string_view value = theirs.File().ValueOf(ItemOf(theirs, unit));
  if (SameVersion(ours, theirs)) return TheirValue{std::string(value)};
  RegFault fault = RegFault::None;
  std::optional<std::string> converted =
      ConvertedAssignment(value, theirs.File().Coding(), ours.File().Coding(), fault);
  if (!converted) return std::nullopt;
  const bool is_new = *converted != value;
  return TheirValue{std::move(*converted), is_new};
}

std::string Put(const MergeUnits& units, MergeUnits::Index unit, const TheirValue& value, std::string_view line_end) {
  if (value.is_new) return WithValue(units, unit, WrapAssignment(BeforeValue(units, unit), value.text, line_end));
  return WithValue(units, unit, LinesEndedBy(value.text, line_end));
}

}  // namespace

std::optional<std::string> TheirMainFor(const MergeUnits& ours, const MergeUnits& theirs,
                                        MergeUnits::Index their_unit) {
  const std::string_view lines = theirs.MainOf(their_unit);
  if (SameVersion(ours, theirs) || !ItemOf(theirs, their_unit).has_value) return std::string(lines);
  const std::optional<TheirValue> value = ValueFor(ours, theirs, their_unit);
  if (!value) return std::nullopt;
  return value->is_new ? Put(theirs, their_unit, *value, "\n") : std::string(lines);
}

std::optional<std::string> MainWithTheirs(const MergeUnits& base, MergeUnits::Index base_unit, const MergeUnits& ours,
                                          MergeUnits::Index our_unit, const MergeUnits& theirs,
                                          MergeUnits::Index their_unit) {
  const bool is_unedited =
      base_unit != MergeUnits::kNone && SameMergeLines(base.MainOf(base_unit), ours.MainOf(our_unit));
  const bool have_values = ItemOf(ours, our_unit).has_value && ItemOf(theirs, their_unit).has_value;
  if (!have_values || (is_unedited && SameVersion(ours, theirs))) return TheirMainFor(ours, theirs, their_unit);
  const std::optional<TheirValue> value = ValueFor(ours, theirs, their_unit);
  if (!value) return std::nullopt;
  std::string_view line_end = LineEndOf(ours.MainOf(our_unit));
  if (line_end.empty()) line_end = "\n";
  return Put(ours, our_unit, *value, line_end);
}

}  // namespace tme
