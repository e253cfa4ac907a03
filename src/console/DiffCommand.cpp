#include <array>

#include "console/Commands.h"
#include "console/ComparedFile.h"
#include "console/Json.h"
#include "console/Values.h"
#include "documents/compare/OutlineDiff.h"
#include "documents/compare/RegPatch.h"

namespace tme::console {
namespace {

constexpr Option kOrderOption{"order", '\0', "", "another order is a difference"};
constexpr Option kCommentsOption{"comments", '\0', "", "other comments are a difference"};
constexpr Option kRegOption{"reg", '\0', "", "write a registry file that makes A into B"};
constexpr Option kUndoOption{"undo", '\0', "", "with --reg: one that makes B into A"};

void PutValue(JsonWriter& json, std::string_view name, const Outline& outline, Outline::Index at) {
  if (at == Outline::kNone) return;
  const Outline::Item& item = outline.Items()[at];
  if (!item.has_value) return;
  json.Name(name);
  if (outline.FileKind() == Outline::Kind::Ini) {
    json.String(outline.IniValueOf(item, "\n"));
    return;
  }
  json.BeginObject();
  if (const std::optional<RegData> data = DecodeAssignment(outline.ValueOf(item), outline.Coding()))
    PutData(json, *data);
  else
    json.Name("deletion").True();
  json.EndObject();
}

void PutChange(JsonWriter& json, const Outline& before, const Outline& after, const OutlineChange& change) {
  constexpr std::array<std::string_view, 4> kKinds{"removed", "added", "changed", "moved"};
  const bool was_there = change.group_before != Outline::kNone;
  const Outline::Group& group =
      (was_there ? before : after).Groups()[was_there ? change.group_before : change.group_after];
  json.BeginObject().Member("change", kKinds[static_cast<std::size_t>(change.kind)]);
  json.Member(before.FileKind() == Outline::Kind::Ini ? "section" : "key", group.path);
  if (group.sort == Outline::GroupSort::Deletion) json.Name("deletion").True();
  if (group.number > 0) json.Name("number").Number(group.number + std::uint64_t{1});
  if (!change.IsOfGroup()) {
    const bool has_before = change.item_before != Outline::kNone;
    const Outline& side = has_before ? before : after;
    const Outline::Item& item = side.Items()[has_before ? change.item_before : change.item_after];
    json.Member(item.sort == Outline::Sort::Entry ? "name" : "line", side.NameOf(item));
    if (item.number > 0) json.Name("name_number").Number(item.number + std::uint64_t{1});
    PutValue(json, "before", before, change.item_before);
    PutValue(json, "after", after, change.item_after);
  }
  json.EndObject();
}

Result PutPatch(const Outline& before, const Outline& after, const TextFormat& of_after, Streams& streams) {
  const std::string patch = RegPatch(before, after);
  if (patch.empty()) return Result::Done;
  TextFormat format = of_after;
  const bool is_5 = !patch.starts_with("REGEDIT4");
  const bool is_16_bit = format.encoding == TextEncoding::Utf16Le || format.encoding == TextEncoding::Utf16Be;
  // What readers of that version take for granted.
  if (is_5 != is_16_bit) format.encoding = is_5 ? TextEncoding::Utf16Le : TextEncoding::CodePage;
  format.stray_byte.reset();
  streams.Put(EncodeOrFail("the changes", format, [&patch](const PartSink& sink) { return sink(patch); }));
  return Result::Other;
}

Result Diff(const Arguments& arguments, Streams& streams) {
  const std::optional<std::string_view> named = arguments.ValueOf(kKindOption);
  ComparedFile one(arguments.Operand(0), named, streams), two(arguments.Operand(1), named, streams);
  const DocumentKind kind = (one.IsEmpty() ? two : one).File().Kind();
  OutlineOptions options;
  if (arguments.Has(kCommentsOption)) options.comments = OutlineOptions::Comments::Found;
  const Outline before = one.Read(kind, options), after = two.Read(kind, options);
  const bool is_undo = arguments.Has(kUndoOption);
  if (is_undo && !arguments.Has(kRegOption)) throw Trouble("diff: --undo goes with --reg");
  if (arguments.Has(kRegOption)) {
    if (kind != DocumentKind::Reg) two.File().Fail(0, "--reg is for registry files");
    return is_undo ? PutPatch(after, before, one.File().Format(), streams)
                   : PutPatch(before, after, two.File().Format(), streams);
  }
  const std::vector<OutlineChange> changes =
      DiffOutlines(before, after, arguments.Has(kOrderOption) ? OutlineOrder::Told : OutlineOrder::PassedOver);
  if (arguments.Has(kJsonOption)) {
    JsonWriter json(streams);
    json.BeginArray(JsonWriter::Layout::Lines);
    for (const OutlineChange& change : changes) PutChange(json, before, after, change);
    json.EndArray();
    json.EndText();
  } else {
    streams.Put(DiffText(before, after, changes));
  }
  return changes.empty() ? Result::Done : Result::Other;
}

constexpr std::array kDiffOptions{kKindOption, kOrderOption, kCommentsOption, kJsonOption, kRegOption, kUndoOption};

}  // namespace

constinit const Command kDiffCommand{
    "diff",
    "A B",
    2,
    2,
    kDiffOptions,
    "write what is added, removed and changed",
    "Files are compared by section and key, whatever their encoding, version, order, wrapping and letter case.\n"
    "Comments and blank lines do not count. Of a registry value it counts what it is, of a value of an INI file its\n"
    "text, with its quotes: k=1 and k=\"1\" differ, and so do lines that stand deeper below a key.\n"
    "\"[path]\" stands before the changes of a section or key: \"-\" is removed,\n"
    "\"+\" added, both changed, \">\" moved (--order). Of several of one name the first is compared with the first. "
    "Exit\n"
    "status: 0 the same, 1 different; with --reg the same is what leaves the same when it is imported, whatever\n"
    "stands above a line that deletes its key.\n",
    &Diff};

}  // namespace tme::console
