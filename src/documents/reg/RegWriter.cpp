#include "documents/reg/RegWriter.h"

#include <array>
#include <string>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegValueIndex.h"

namespace tme {

namespace {

using Line = std::array<std::string_view, 6>;

/// Name and data as they are held, nothing escaped. A deleted record is still a line, of an empty name; intended.
Line ValueLine(const RegValueRecord& record) {
  switch (record.type) {
    case RegType::String:
      return {"\"", record.name, "\"=\"", record.data, "\"", kRegLineEnd};
    case RegType::Dword:
      return {"\"", record.name, "\"=dword:", record.data, "", kRegLineEnd};
    case RegType::Hex:
      return {"\"", record.name, "\"=hex:", record.data, "", kRegLineEnd};
    case RegType::None:
      break;
  }
  return {"\"", record.name, "\"=", "", "", kRegLineEnd};
}

/// Gathers lines into parts.
class Parts {
 public:
  explicit Parts(const RegSink& sink) : sink_(sink) { part_.reserve(2 * kRegPartBytes); }
  bool operator()(const Line& line) {
    for (const std::string_view piece : line) part_.append(piece);
    return part_.size() < kRegPartBytes || Rest();
  }
  /// What is not handed over yet.
  bool Rest() {
    const bool going_on = part_.empty() || sink_(part_);
    part_.clear();
    return going_on;
  }

 private:
  const RegSink& sink_;
  std::string part_;
};

/// Calls block(path, group of values) for each key that is written; false stops the walk.
template <typename Block>
bool ForEachBlock(const RegDocument& document, const RegValueIndex& index, RegLayout layout, Block block) {
  const RegNode& root = *document.Root();
  std::string path;
  const auto enter = [&](const RegNode& node) {
    if (node.Tag() == RegTag::File) return true;
    if (node.Tag() == RegTag::Branch) path.push_back('\\');
    path.append(node.Text());
    // Intended: a key that bears the document's title is never written, nor is a hive; what is below them is.
    if (node.Tag() == RegTag::Hive || node.Text() == root.Text()) return true;
    const std::uint32_t group = index.GroupOf(node);
    return (group == RegValueIndex::kNoGroup && layout == RegLayout::Regular) || block(path, group);
  };
  const auto leave = [&path](const RegNode& node) {
    if (node.Tag() == RegTag::File) return;
    path.resize(path.size() - node.Text().size() - (node.Tag() == RegTag::Branch ? 1 : 0));
  };
  return WalkKeys(root, enter, leave);
}

}  // namespace

bool WriteReg(const RegDocument& document, RegLayout layout, const RegSink& sink) {
  const RegValueIndex index(document);
  Parts put(sink);
  const auto block = [&](const std::string& path, std::uint32_t group) {
    bool going_on = put({"[", path, "]", kRegLineEnd});
    const auto put_value = [&](const RegValueRecord& record) { going_on = going_on && put(ValueLine(record)); };
    if (group != RegValueIndex::kNoGroup) index.ForEachRecord(group, put_value);
    return going_on && put({kRegLineEnd});
  };
  return put({kRegHeader}) && ForEachBlock(document, index, layout, block) && put.Rest();
}

std::uint64_t RegOutputBytes(const RegDocument& document, RegLayout layout) {
  const RegValueIndex index(document);
  std::vector<std::uint64_t> values(index.GroupCount());
  index.ForEachRecord([&values](std::uint32_t group, const RegValueRecord& record) {
    for (const std::string_view piece : ValueLine(record)) values[group] += piece.size();
  });
  std::uint64_t bytes = kRegHeader.size();
  ForEachBlock(document, index, layout, [&](const std::string& path, std::uint32_t group) {
    bytes += 1 + path.size() + 1 + kRegLineEnd.size() + kRegLineEnd.size();
    if (group != RegValueIndex::kNoGroup) bytes += values[group];
    return true;
  });
  return bytes;
}

}  // namespace tme
