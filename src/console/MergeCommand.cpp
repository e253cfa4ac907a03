#include <array>

#include "console/Commands.h"
#include "console/ComparedFile.h"
#include "documents/compare/Merge.h"

namespace tme::console {
namespace {

constexpr Option kNameOption{"name", '\0', "PATH", "the file that is merged, for messages and its kind"};

std::string_view WhatHappened(MergeConflict::Kind kind) {
  switch (kind) {
    case MergeConflict::Kind::BothChanged:
      return "both changed it; ours stands, theirs is in a comment";
    case MergeConflict::Kind::TheyDeleted:
      return "they deleted what we changed; it stays";
    case MergeConflict::Kind::WeDeleted:
      return "we deleted what they changed; it is there again";
    case MergeConflict::Kind::Unsayable:
      return "the version of our file has no form for it; it is in a comment";
  }
  return {};
}

Result Merge(const Arguments& arguments, Streams& streams) {
  const std::optional<std::string_view> named = arguments.ValueOf(kKindOption);
  const std::string_view output = arguments.ValueOf(kOutputOption).value_or("-");
  const std::optional<std::string_view> path = arguments.ValueOf(kNameOption);
  const OutputLock lock(output);
  ComparedFile base(arguments.Operand(0), named, streams, path), ours(arguments.Operand(1), named, streams, path),
      theirs(arguments.Operand(2), named, streams, path);
  const bool is_ours_base = ours.File().Text() == base.File().Text();
  const bool is_encoding_base = ours.File().Format().encoding == base.File().Format().encoding;
  const DocumentKind kind = (ours.IsEmpty() ? theirs : ours).File().Kind();
  constexpr OutlineOptions kApart{.blocks = OutlineOptions::Blocks::Apart};
  const Outline base_outline = base.Read(kind, kApart), our_outline = ours.Read(kind, kApart),
                their_outline = theirs.Read(kind, kApart);
  const std::optional<MergeResult> merged = MergeOutlines(base_outline, our_outline, their_outline);
  if (!merged) ours.File().Fail(0, "files of version REGEDIT are merged with their like alone (see tmec convert)");
  const ConsoleFile& like = (is_ours_base && is_encoding_base ? theirs : ours).File();
  const std::string& text = merged->text;
  WriteOut(output, like.Encoded([&text](const PartSink& sink) { return sink(text); }), streams);
  const std::string name(path.value_or(output == "-" ? "the result" : output));
  for (const MergeConflict& conflict : merged->conflicts) {
    std::string line = name;
    line.append(":").append(std::to_string(conflict.line)).append(": ").append(conflict.group);
    if (!conflict.group.empty() && !conflict.item.empty()) line.append(" ");
    streams.Complain(line.append(conflict.item).append(": ").append(WhatHappened(conflict.kind)));
  }
  return merged->conflicts.empty() ? Result::Done : Result::Other;
}

constexpr std::array kMergeOptions{kKindOption, kNameOption,
                                   Option{"output", 'o', "OUT", "write to OUT instead of standard output"}};

}  // namespace

constinit const Command kMergeCommand{
    "merge",
    "BASE OURS THEIRS",
    3,
    3,
    kMergeOptions,
    "merge what two files made of BASE",
    "The result is OURS with the changes that THEIRS made to BASE, by section and key: its order, comments, encoding\n"
    "and bytes stay. What both sides added stays, comments too; what one side deleted goes where the other one did "
    "not\n"
    "change it.\n"
    "Where both gave one key new values, ours stands and theirs is in a comment above it, which begins with\n"
    "\"; MERGE CONFLICT\"; each such place is a line on standard error. As merge driver of git:\n"
    "\"tmec merge --name %P %O %A %B -o %A\". Exit status: 0 merged, 1 with conflicts.\n",
    &Merge};

}  // namespace tme::console
