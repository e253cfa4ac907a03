#include "documents/rtf/RtfHunks.h"

#include <algorithm>
#include <functional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "documents/diff/SequenceDiff.h"
#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfInternTable.h"

namespace tme::rtf {
namespace {

/// What a paragraph says, as a number; the numbers of formats and objects count.
std::uint64_t HashOf(const RtfDocument& document, std::size_t index, std::uint32_t text, std::int32_t cell) {
  const Paragraph& paragraph = document.paragraphs[index];
  // Small numbers are mixed side by side: each with the other in its place is something else.
  std::size_t hash = MixHash(1, (std::uint64_t{paragraph.format} << 32) | paragraph.mark_format);
  hash = MixHash(hash, static_cast<std::uint32_t>(cell));
  std::uint32_t size = 0, of_format = 0;
  for (std::size_t i = paragraph.first_run; i < document.EndOfRuns(index); ++i) {
    const Run& run = document.runs[i];
    size += run.bytes;
    of_format += run.bytes;
    if (run.object == 0 && i + 1 < document.EndOfRuns(index) && document.runs[i + 1].object == 0 &&
        document.runs[i + 1].format == run.format)
      continue;
    if (run.object != 0 || of_format > 0)
      hash = MixHash(MixHash(hash, (std::uint64_t{run.format} << 32) | run.object), of_format);
    of_format = 0;
  }
  return MixHash(hash, std::hash<std::string_view>{}(std::string_view(document.text).substr(text, size)));
}

using Numbers = std::vector<std::uint64_t>;

/// Stretches of two sequences that differ.
std::vector<RtfHunk> DiffNumbers(std::span<const std::uint64_t> before, std::span<const std::uint64_t> after) {
  std::unordered_map<std::uint64_t, std::uint32_t> numbers;
  const auto numbered = [&](std::span<const std::uint64_t> hashes) {
    std::vector<std::uint32_t> result;
    result.reserve(hashes.size());
    for (const std::uint64_t hash : hashes)
      result.push_back(numbers.try_emplace(hash, static_cast<std::uint32_t>(numbers.size())).first->second);
    return result;
  };
  const std::vector<std::uint32_t> one = numbered(before), other = numbered(after);
  std::vector<RtfHunk> hunks;
  RtfHunk hunk;
  const auto close = [&] {
    if (hunk.before_begin < hunk.before_end || hunk.after_begin < hunk.after_end) hunks.push_back(hunk);
  };
  for (const auto& [change, at] : DiffSequences(one, other)) {
    if (change == DiffChange::Removed) ++hunk.before_end;
    if (change == DiffChange::Added) ++hunk.after_end;
    if (change != DiffChange::Same) continue;
    close();
    hunk.before_begin = ++hunk.before_end;
    hunk.after_begin = ++hunk.after_end;
  }
  close();
  return hunks;
}

Numbers WholeBlocks(const RtfDigest& digest) {
  Numbers whole = digest.blocks;
  for (std::size_t block = 0; block < whole.size(); ++block)
    for (std::size_t i = digest.block_begins[block]; i < digest.block_begins[block + 1]; ++i)
      whole[block] = MixHash(whole[block], digest.paragraphs[i]);
  return whole;
}

/// Looks for what differs in stretches of blocks that do.
class BlockHunks {
 public:
  BlockHunks(const RtfDigest& before, const RtfDigest& after, const std::vector<BlockShape>& shapes)
      : before_(before), after_(after), shapes_(shapes) {}

  /// blocks: its numbers count blocks.
  void Add(const RtfHunk& blocks) {
    const std::vector<std::size_t> tables = TablesOf(before_, blocks.before_begin, blocks.before_end);
    const std::vector<std::size_t> others = TablesOf(after_, blocks.after_begin, blocks.after_end);
    const bool same = std::ranges::equal(tables, others, [this](std::size_t one, std::size_t other) {
      return shapes_[one] != BlockShape::Same || before_.blocks[one] == after_.blocks[other];
    });
    if (!same) return AddWhole(blocks);
    RtfHunk part = blocks;
    for (std::size_t i = 0; i < tables.size(); ++i) {
      part.before_end = tables[i];
      part.after_end = others[i];
      AddParagraphs(part);
      part = {tables[i], tables[i] + 1, others[i], others[i] + 1};
      if (shapes_[tables[i]] == BlockShape::Same)
        AddParagraphs(part);
      else if (shapes_[tables[i]] != BlockShape::Other || !AddInCells(part))
        AddWhole(part);
      part = {part.before_end, blocks.before_end, part.after_end, blocks.after_end};
    }
    AddParagraphs(part);
  }
  std::vector<RtfHunk> Take() { return std::move(hunks_); }

 private:
  static std::vector<std::size_t> TablesOf(const RtfDigest& digest, std::size_t begin, std::size_t end) {
    std::vector<std::size_t> tables;
    for (; begin < end; ++begin)
      if (digest.kinds[begin] != RtfBlock::Kind::Text) tables.push_back(begin);
    return tables;
  }
  RtfHunk ParagraphsOf(const RtfHunk& blocks) const {
    return {before_.block_begins[blocks.before_begin], before_.block_begins[blocks.before_end],
            after_.block_begins[blocks.after_begin], after_.block_begins[blocks.after_end]};
  }
  void AddWhole(const RtfHunk& blocks) {
    RtfHunk hunk = ParagraphsOf(blocks);
    hunk.level = RtfHunk::Level::Blocks;
    hunks_.push_back(hunk);
  }
  /// False where paragraphs came or went, or the table became another.
  bool AddInCells(const RtfHunk& blocks) {
    const RtfHunk all = ParagraphsOf(blocks);
    const std::size_t count = all.before_end - all.before_begin;
    if (before_.blocks[blocks.before_begin] != after_.blocks[blocks.after_begin] ||
        count != all.after_end - all.after_begin)
      return false;
    for (std::size_t i = 0; i < count; ++i) {
      RtfHunk hunk{all.before_begin + i, all.before_begin + i + 1, all.after_begin + i, all.after_begin + i + 1};
      hunk.keeps_cells = true;
      if (before_.paragraphs[hunk.before_begin] != after_.paragraphs[hunk.after_begin]) hunks_.push_back(hunk);
    }
    return true;
  }
  void AddParagraphs(const RtfHunk& blocks) {
    const RtfHunk all = ParagraphsOf(blocks);
    const auto before = std::span(before_.paragraphs).subspan(all.before_begin, all.before_end - all.before_begin);
    const auto after = std::span(after_.paragraphs).subspan(all.after_begin, all.after_end - all.after_begin);
    for (RtfHunk hunk : DiffNumbers(before, after)) {
      hunk.before_begin += all.before_begin, hunk.before_end += all.before_begin;
      hunk.after_begin += all.after_begin, hunk.after_end += all.after_begin;
      AddInParts(hunk);
    }
  }
  /// Many paragraphs, each with an edit, are compared one by one.
  void AddInParts(RtfHunk hunk) {
    constexpr std::size_t kMostTogether = 64;
    const auto is_large = [&hunk] {
      return std::min(hunk.before_end - hunk.before_begin, hunk.after_end - hunk.after_begin) > kMostTogether;
    };
    for (; is_large(); ++hunk.before_begin, ++hunk.after_begin)
      hunks_.push_back({hunk.before_begin, hunk.before_begin + 1, hunk.after_begin, hunk.after_begin + 1});
    hunks_.push_back(hunk);
  }

  const RtfDigest& before_;
  const RtfDigest& after_;
  const std::vector<BlockShape>& shapes_;
  std::vector<RtfHunk> hunks_;
};

/// Makes a hunk cover the blocks that it stands in.
void Widen(RtfHunk& hunk, const RtfBlocks& blocks) {
  if (hunk.before_begin == hunk.before_end) {
    const std::size_t at = hunk.before_begin;
    const bool is_inside =
        at > 0 && at < blocks.EndOf(blocks.Count() - 1) && blocks.BlockOf(at - 1) == blocks.BlockOf(at);
    if (!is_inside) return;
    --hunk.before_begin, --hunk.after_begin;
  }
  const std::size_t begin = blocks[blocks.BlockOf(hunk.before_begin)].paragraph;
  const std::size_t end = blocks.EndOf(blocks.BlockOf(hunk.before_end - 1));
  hunk.after_begin -= hunk.before_begin - begin;
  hunk.before_begin = begin;
  hunk.after_end += end - hunk.before_end;
  hunk.before_end = end;
}

/// One that covers both. second: came behind the first one before they were widened.
RtfHunk Join(const RtfHunk& first, const RtfHunk& second) {
  RtfHunk both;
  both.before_begin = std::min(first.before_begin, second.before_begin);
  both.before_end = std::max(first.before_end, second.before_end);
  both.after_begin = first.after_begin - (first.before_begin - both.before_begin);
  both.after_end = second.after_end + (both.before_end - second.before_end);
  both.level = RtfHunk::Level::Blocks;
  return both;
}

}  // namespace

RtfDigest ShapeOf(const RtfBlocks& blocks) {
  RtfDigest digest;
  for (std::size_t block = 0; block < blocks.Count(); ++block) {
    digest.blocks.push_back(blocks.HashOf(block));
    digest.block_begins.push_back(blocks[block].paragraph);
    digest.kinds.push_back(blocks[block].kind);
  }
  digest.block_begins.push_back(static_cast<std::uint32_t>(blocks.Count() > 0 ? blocks.EndOf(blocks.Count() - 1) : 0));
  return digest;
}

RtfDigest DigestOf(const RtfDocument& document, const RtfBlocks& blocks) {
  const std::vector<std::uint32_t> text = TextStarts(document);
  RtfDigest digest = ShapeOf(blocks);
  digest.paragraphs.reserve(document.paragraphs.size());
  for (std::size_t i = 0; i < document.paragraphs.size(); ++i)
    digest.paragraphs.push_back(HashOf(document, i, text[i], blocks.CellOf(i)));
  return digest;
}

RtfDigest DigestOfTables(const RtfDigest& digest) {
  RtfDigest whole;
  whole.paragraphs = digest.paragraphs;
  for (std::size_t block = 0; block < digest.blocks.size(); ++block) {
    if (digest.kinds[block] == RtfBlock::Kind::Row) {
      const std::size_t at = MixHash(whole.blocks.back(), digest.block_begins[block] - whole.block_begins.back());
      whole.blocks.back() = MixHash(at, digest.blocks[block]);
      continue;
    }
    whole.blocks.push_back(digest.blocks[block]);
    whole.block_begins.push_back(digest.block_begins[block]);
    whole.kinds.push_back(digest.kinds[block]);
  }
  whole.block_begins.push_back(digest.block_begins.back());
  return whole;
}

std::vector<RtfHunk> HunksBetween(const RtfDigest& before, const RtfDigest& after,
                                  const std::vector<BlockShape>& shapes) {
  BlockHunks hunks(before, after, shapes);
  for (const RtfHunk& blocks : DiffNumbers(WholeBlocks(before), WholeBlocks(after))) hunks.Add(blocks);
  return hunks.Take();
}

bool TakeNeighbour(RtfHunk& hunk, const RtfBlocks& before, const RtfBlocks& after, Neighbour first) {
  if (hunk.before_begin < hunk.before_end) return true;
  const std::size_t paragraphs = before.EndOf(before.Count() - 1), edited = after.EndOf(after.Count() - 1);
  // beside: the one in the other document that came with it.
  const auto is_near = [&](std::size_t old_one, std::size_t beside, std::size_t added) {
    return old_one < paragraphs && beside < edited && before.CellOf(old_one) == after.CellOf(added) &&
           (after.CellOf(added) < 0 || after.BlockOf(beside) == after.BlockOf(added));
  };
  const bool has_last = hunk.before_begin > 0 && hunk.after_begin > 0 &&
                        is_near(hunk.before_begin - 1, hunk.after_begin - 1, hunk.after_begin);
  const bool has_next = is_near(hunk.before_end, hunk.after_end, hunk.after_end - 1);
  if (has_next && !(has_last && first == Neighbour::Last)) {
    ++hunk.before_end;
    ++hunk.after_end;
    return true;
  }
  if (!has_last) return false;
  --hunk.before_begin;
  --hunk.after_begin;
  return true;
}

bool RaiseHunks(std::vector<RtfHunk>& hunks, const std::vector<std::size_t>& which, const RtfBlocks& before) {
  for (const std::size_t i : which) {
    if (hunks[i].level == RtfHunk::Level::Blocks) return false;
    const bool is_first_raise = hunks[i].level == RtfHunk::Level::Splice;
    hunks[i].level = RtfHunk::Level::Paragraphs;
    if (is_first_raise && !hunks[i].keeps_cells) continue;
    hunks[i].level = RtfHunk::Level::Blocks;
    hunks[i].keeps_cells = false;
    Widen(hunks[i], before);
  }
  // What stands in a block that is written as a whole is written with it.
  std::vector<RtfHunk> joined;
  for (RtfHunk hunk : hunks) {
    const auto overlaps = [&hunk](const RtfHunk& last) {
      return hunk.before_begin < last.before_end || hunk.before_begin < last.before_begin;
    };
    for (; !joined.empty() && overlaps(joined.back()); joined.pop_back()) hunk = Join(joined.back(), hunk);
    joined.push_back(hunk);
  }
  hunks = std::move(joined);
  return true;
}

}  // namespace tme::rtf
