#include "documents/reg/RegWriter.h"

#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegValueIndex.h"

namespace tme {

namespace {

/// Calls block(path, group of values) for each key that is written; false stops the walk.
template <typename Block>
bool ForEachBlock(const RegDocument& document, const RegValueIndex& index, RegLayout layout, Block block) {
  const RegNode& root = *document.Root();
  return WalkKeyPaths(root, [&](const RegNode& node, std::string_view path) {
    // Intended: a key that bears the document's title is never written, nor is a hive; what is below them is.
    if (node.Tag() != RegTag::Branch || node.Text() == root.Text()) return true;
    const std::uint32_t group = index.GroupOf(node);
    return (group == RegValueIndex::kNoGroup && layout == RegLayout::Regular) || block(path, group);
  });
}

}  // namespace

RegLine LineOf(const RegValueRecord& record) {
  const RegTypeTraits& traits = TraitsOf(record.type);
  return {"\"", record.name, traits.before, record.data, traits.after, kRegLineEnd};
}

bool WriteReg(const RegDocument& document, RegLayout layout, const PartSink& sink) {
  const RegValueIndex index(document);
  PartBuffer out(sink);
  const auto block = [&](std::string_view path, std::uint32_t group) {
    bool going_on = PutLine(out, {"[", path, "]", kRegLineEnd});
    const auto put_value = [&](const RegValueRecord& record) { going_on = going_on && PutLine(out, LineOf(record)); };
    if (group != RegValueIndex::kNoGroup) index.ForEachRecord(group, put_value);
    return going_on && PutLine(out, {kRegLineEnd});
  };
  return PutLine(out, {kRegHeader}) && ForEachBlock(document, index, layout, block) && out.Flush();
}

std::uint64_t RegOutputBytes(const RegDocument& document, RegLayout layout) {
  const RegValueIndex index(document);
  std::vector<std::uint64_t> values(index.GroupCount());
  index.ForEachRecord([&values](std::uint32_t group, const RegValueRecord& record) {
    for (const std::string_view piece : LineOf(record)) values[group] += piece.size();
  });
  std::uint64_t bytes = kRegHeader.size();
  ForEachBlock(document, index, layout, [&](std::string_view path, std::uint32_t group) {
    bytes += 1 + path.size() + 1 + kRegLineEnd.size() + kRegLineEnd.size();
    if (group != RegValueIndex::kNoGroup) bytes += values[group];
    return true;
  });
  return bytes;
}

}  // namespace tme
