#include "documents/rtf/RtfOriginal.h"

#include <algorithm>
#include <utility>

#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfPatch.h"
#include "documents/rtf/RtfRewriter.h"
#include "documents/rtf/RtfSplicer.h"
#include "documents/rtf/RtfTablePatch.h"

namespace tme::rtf {
namespace {

using Sides = RtfRewriter::Sides;

/// Which hunks are to be raised; none when all is well.
using Failures = std::vector<std::size_t>;

std::string Patched(const Sides& sides, const std::vector<RtfHunk>& hunks, const RtfTablePatch& tables,
                    Failures& failures) {
  Patch patch(sides.bytes);
  tables.Write(patch);
  RtfSplicer splicer(sides, patch);
  RtfRewriter rewriter(sides, patch);
  for (std::size_t i = 0; i < hunks.size(); ++i) {
    const std::size_t count = patch.Count();
    const bool is_splice = hunks[i].level == RtfHunk::Level::Splice;
    if (is_splice ? splicer.Splice(hunks[i]) : rewriter.Rewrite(hunks[i])) continue;
    patch.TakeBack(count);
    failures.push_back(i);
  }
  return failures.empty() ? patch.Result() : std::string();
}

/// Compares what was read again with what was meant: the edited paragraphs, and around them what there was.
class Check {
 public:
  Check(const Sides& sides, const RtfDocument& read, std::size_t unnamed_font)
      : sides_(sides),
        read_(read),
        blocks_(read),
        to_before_(read, sides.before, sides.after, unnamed_font),
        to_after_(read, sides.after, sides.after, unnamed_font) {}

  Failures Run(const std::vector<RtfHunk>& hunks) {
    std::size_t count = sides_.before.paragraphs.size();
    for (const RtfHunk& hunk : hunks)
      count += hunk.after_end - hunk.after_begin - (hunk.before_end - hunk.before_begin);
    if (!blocks_.AreSound() || count != read_.paragraphs.size()) return All(hunks);
    std::size_t before = 0;
    for (std::size_t i = 0; i < hunks.size(); ++i) {
      for (; before < hunks[i].before_begin; ++before) LookAtUnedited(before, i);
      for (std::size_t after = hunks[i].after_begin; after < hunks[i].after_end; ++after)
        if (!IsSame(to_after_, sides_.after_blocks, after)) Fail(i);
      before = hunks[i].before_end;
    }
    for (; before < sides_.before.paragraphs.size(); ++before) LookAtUnedited(before, hunks.size());
    return std::move(failures_);
  }

  static Failures All(const std::vector<RtfHunk>& hunks) {
    Failures all;
    for (std::size_t i = 0; i < hunks.size(); ++i)
      if (hunks[i].level != RtfHunk::Level::Blocks) all.push_back(i);
    if (all.empty()) all.push_back(0);
    return all;
  }

 private:
  /// next: the hunk behind it. What is wrong was done by the one before.
  void LookAtUnedited(std::size_t paragraph, std::size_t next) {
    if (!IsSame(to_before_, sides_.before_blocks, paragraph)) Fail(next > 0 ? next - 1 : 0);
  }

  void Fail(std::size_t hunk) {
    if (failures_.empty() || failures_.back() != hunk) failures_.push_back(hunk);
  }

  /// Whether the next paragraph that was read, and the table that begins with it, is that of another document.
  bool IsSame(RtfComparison& comparison, const RtfBlocks& others, std::size_t other) {
    const std::size_t at = at_++, block = blocks_.BlockOf(at);
    if (blocks_.CellOf(at) != others.CellOf(other) || !comparison.SameParagraph(at, other)) return false;
    return blocks_[block].paragraph != at ||
           blocks_.IsLike(block, others, others.BlockOf(other), RtfBlocks::Definitions::MayBeMade);
  }

  const Sides& sides_;
  const RtfDocument& read_;
  const RtfBlocks blocks_;
  RtfComparison to_before_;
  RtfComparison to_after_;
  std::size_t at_ = 0;
  Failures failures_;
};

RtfDocument TextOf(const RtfDocument& document) {
  RtfDocument text;
  text.text = document.text;
  text.runs = document.runs;
  text.paragraphs = document.paragraphs;
  return text;
}

}  // namespace

RtfOriginal::RtfOriginal(std::string bytes, const RtfDocument& document, RtfSource source)
    : bytes_(std::move(bytes)),
      document_(TextOf(document)),
      blocks_(document),
      source_(std::move(source)),
      kept_header_(document.kept_header),
      kept_section_(document.kept_section),
      document_controls_(document.document_controls),
      kept_behind_(document.kept_behind.size()),
      ended_early_(document.losses.ended_early),
      fonts_(document.fonts.size()) {}

void RtfOriginal::SetUnedited(const RtfDocument& exported) {
  const RtfBlocks blocks(exported);
  unedited_ = blocks.AreSound() ? DigestOf(exported, blocks) : RtfDigest();
  const RtfDigest read = blocks_.AreSound() ? DigestOf(document_, blocks_) : RtfDigest();
  stands_in_file_ = source_.marks.size() == document_.paragraphs.size() && !read.blocks.empty() &&
                    read.are_tables == unedited_.are_tables;
  is_fixed_.clear();
  for (std::size_t i = 0; stands_in_file_ && i < read.blocks.size(); ++i) {
    const std::size_t paragraphs = read.block_begins[i + 1] - read.block_begins[i];
    is_fixed_.push_back(read.blocks[i] != unedited_.blocks[i] ||
                        paragraphs != unedited_.block_begins[i + 1] - unedited_.block_begins[i]);
  }
}

/// Hunks of the unedited view's paragraphs, as such of the file's.
void RtfOriginal::MoveToFile(std::vector<RtfHunk>& hunks) const {
  const std::vector<std::uint32_t>& begins = unedited_.block_begins;
  const auto in_file = [&](std::size_t paragraph) {
    const auto block = static_cast<std::size_t>(std::ranges::upper_bound(begins, paragraph) - begins.begin()) - 1;
    return block < blocks_.Count() ? blocks_[block].paragraph + (paragraph - begins[block])
                                   : document_.paragraphs.size();
  };
  for (RtfHunk& hunk : hunks) {
    hunk.before_begin = in_file(hunk.before_begin);
    hunk.before_end = in_file(hunk.before_end);
  }
}

std::optional<std::string> RtfOriginal::WithEdits(const RtfDocument& edited, const DecodeCodePage& decode) const {
  constexpr int kMaxRounds = 5;
  const RtfBlocks blocks(edited);
  if (!blocks.AreSound()) return std::nullopt;
  const RtfDigest digest = DigestOf(edited, blocks);
  if (digest == unedited_) return bytes_;
  if (!stands_in_file_) return std::nullopt;
  std::vector<RtfHunk> hunks = HunksBetween(unedited_, digest, is_fixed_);
  MoveToFile(hunks);
  const Sides sides{bytes_, document_, blocks_, source_, edited, blocks};
  for (int round = 1; round <= kMaxRounds; ++round) {
    RtfTablePatch tables(edited, source_, fonts_);
    for (const RtfHunk& hunk : hunks) tables.Note(hunk);
    Failures failures;
    std::string bytes = Patched(sides, hunks, tables, failures);
    if (failures.empty()) {
      const RtfDocument read = ReadRtf(bytes, decode);
      const bool same_rest = tables.HasMade(read.kept_header, kept_header_) && read.kept_section == kept_section_ &&
                             read.document_controls == document_controls_ && read.kept_behind.size() == kept_behind_ &&
                             read.losses.ended_early == ended_early_;
      failures = same_rest ? Check(sides, read, tables.UnnamedFont()).Run(hunks) : Check::All(hunks);
      if (failures.empty()) return bytes;
    }
    if (!RaiseHunks(hunks, round + 2 < kMaxRounds ? failures : Check::All(hunks), blocks_)) return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace tme::rtf
