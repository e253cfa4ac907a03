#include "documents/reg/RegLosses.h"

#include <functional>
#include <string_view>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegValueIndex.h"

namespace tme {

namespace {

/// Counts in one walk over the keys what the writer's rules leave out.
class LossCount {
 public:
  LossCount(const RegDocument& document, RegLayout layout)
      : document_(document), layout_(layout), index_(document), is_written_(index_.GroupCount()) {}

  RegLosses Run() {
    WalkKeys(
        *document_.Root(), [this](const RegNode& node) { return Enter(node); },
        [this](const RegNode& node) { Leave(node); });
    index_.ForEachRecord([this](std::uint32_t group, const RegValueRecord& record) {
      if (record.deleted && is_written_[group]) ++losses_.deleted_values;
    });
    losses_.shared_keys = document_.KeysSharingAName();
    return losses_;
  }

 private:
  bool Enter(const RegNode& node) {
    levels_.push_back({blocks_, Mixed(levels_.empty() ? 0 : levels_.back().path, node.Text())});
    if (node.Tag() != RegTag::Branch || BearsTitle(node)) {
      LoseValues(node);
      return true;
    }
    const std::uint32_t group = index_.GroupOf(node);
    if (group != RegValueIndex::kNoGroup) is_written_[group] = true;
    if (group != RegValueIndex::kNoGroup || layout_ == RegLayout::Expanded) ++blocks_;
    return true;
  }

  /// Counts what is known once everything below has been visited.
  void Leave(const RegNode& node) {
    const bool nothing_below = levels_.back().blocks_before == blocks_;
    if (node.Tag() == RegTag::Hive) {
      if (node.ChildCount() == 0) Lose(losses_.empty_hives);
      // A renamed hive may hold a backslash; a reader takes what is before it.
      const std::string_view text = node.Text();
      if (!nothing_below && !IsHiveName(text.substr(0, text.find('\\')))) ++losses_.unknown_hives;
    }
    if (node.Tag() == RegTag::Branch && nothing_below)
      Lose(BearsTitle(node) ? losses_.keys_of_title : losses_.empty_keys);
    levels_.pop_back();
  }

  bool BearsTitle(const RegNode& node) const { return node.Text() == document_.Root()->Text(); }

  /// Counts the key that the walk is at.
  void Lose(std::size_t& count) {
    ++count;
    Note({});
  }

  void LoseValues(const RegNode& node) {
    document_.ForEachValueOf(&node, [this, &node](const RegValueRecord& record) {
      if (record.deleted) return;
      ++losses_.values;
      if (node.Tag() == RegTag::Branch) ++losses_.values_of_title;
      for (const std::string_view text : {record.name, TraitsOf(record.type).name, record.data}) Note(text);
    });
  }

  void Note(std::string_view text) { losses_.fingerprint = Mixed(losses_.fingerprint ^ levels_.back().path, text); }

  static std::uint64_t Mixed(std::uint64_t hash, std::string_view text) {
    constexpr std::uint64_t kPrime = 0x100000001B3;  // of the FNV-1a hash
    return (hash ^ std::hash<std::string_view>()(text)) * kPrime;
  }

  struct Level {
    /// Blocks that were written before the walk came in.
    std::size_t blocks_before;
    /// A hash of all texts from the root down to here.
    std::uint64_t path;
  };

  const RegDocument& document_;
  const RegLayout layout_;
  const RegValueIndex index_;
  /// By group.
  std::vector<bool> is_written_;
  RegLosses losses_;
  std::size_t blocks_ = 0;
  std::vector<Level> levels_;
};

}  // namespace

RegLosses LossesOf(const RegDocument& document, RegLayout layout) { return LossCount(document, layout).Run(); }

}  // namespace tme
