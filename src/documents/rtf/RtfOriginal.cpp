#include "documents/rtf/RtfOriginal.h"

#include <algorithm>
#include <utility>

#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfPatch.h"
#include "documents/rtf/RtfRewriter.h"
#include "documents/rtf/RtfSections.h"
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
        blocks_(read, sides.before_blocks.GrainOfTables()),
        to_before_(read, sides.before, sides.after, unnamed_font),
        to_after_(read, sides.after, sides.after, unnamed_font) {}

  Failures Run(const std::vector<RtfHunk>& hunks) {
    std::size_t count = sides_.before.paragraphs.size();
    for (const RtfHunk& hunk : hunks)
      count += hunk.after_end - hunk.after_begin - (hunk.before_end - hunk.before_begin);
    if (count != read_.paragraphs.size() || !blocks_.HasKindsOf(sides_.after_blocks)) return All(hunks);
    std::size_t before = 0;
    for (std::size_t i = 0; i < hunks.size(); ++i) {
      for (; before < hunks[i].before_begin; ++before) LookAtUnedited(before, i);
      for (std::size_t after = hunks[i].after_begin; after < hunks[i].after_end; ++after)
        if (!IsMeant(hunks[i], after)) Fail(i);
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
  enum class Of : std::uint8_t { File, Edit };

  /// next: the hunk behind it. What is wrong was done by the one before.
  void LookAtUnedited(std::size_t paragraph, std::size_t next) {
    const bool is_same =
        to_before_.SameParagraph(at_, paragraph) && HasPlaceOf(sides_.before_blocks, paragraph, Of::File);
    ++at_;
    if (!is_same) Fail(next > 0 ? next - 1 : 0);
  }
  /// after: a paragraph of a hunk.
  bool IsMeant(const RtfHunk& hunk, std::size_t after) {
    const std::size_t in_file = hunk.before_begin + (after - hunk.after_begin);
    const bool is_same =
        to_after_.SameParagraph(at_, after) && (hunk.keeps_cells ? HasPlaceOf(sides_.before_blocks, in_file, Of::Edit)
                                                                 : HasPlaceOf(sides_.after_blocks, after, Of::Edit));
    ++at_;
    return is_same;
  }

  void Fail(std::size_t hunk) {
    if (failures_.empty() || failures_.back() != hunk) failures_.push_back(hunk);
  }

  /// Whether the paragraph that was read stands where one of another document does, in the same cell of a table that is
  /// like its own.
  bool HasPlaceOf(const RtfBlocks& others, std::size_t other, Of of) const {
    const std::size_t block = blocks_.BlockOf(at_), its_block = others.BlockOf(other);
    if (blocks_.CellOf(at_) != others.CellOf(other)) return false;
    const bool begins = blocks_[block].paragraph == at_;
    // Before one that was not edited, others may have come or gone.
    if (of == Of::Edit && begins != (others[its_block].paragraph == other)) return false;
    return !begins || blocks_.IsLike(block, others, its_block, RtfBlocks::Definitions::MayBeMade);
  }

  const Sides& sides_;
  const RtfDocument& read_;
  const RtfBlocks blocks_;
  RtfComparison to_before_;
  RtfComparison to_after_;
  std::size_t at_ = 0;
  Failures failures_;
};

/// Hunks of the unedited view's paragraphs, as such of the file's.
void MoveToFile(const RtfDigest& unedited, const RtfBlocks& file, std::vector<RtfHunk>& hunks) {
  const std::vector<std::uint32_t>& begins = unedited.block_begins;
  const auto in_file = [&](std::size_t paragraph) {
    const auto block = static_cast<std::size_t>(std::ranges::upper_bound(begins, paragraph) - begins.begin()) - 1;
    return block < file.Count() ? file[block].paragraph + (paragraph - begins[block]) : file.EndOf(file.Count() - 1);
  };
  for (RtfHunk& hunk : hunks) {
    hunk.before_begin = in_file(hunk.before_begin);
    hunk.before_end = in_file(hunk.before_end);
  }
}

/// What came into a cell, or behind all, is written with a paragraph that stood there.
void TakeNeighbours(const Sides& sides, std::vector<RtfHunk>& hunks) {
  std::vector<RtfHunk> joined;
  for (RtfHunk hunk : hunks) {
    const bool came_in = hunk.level != RtfHunk::Level::Blocks && hunk.before_begin == hunk.before_end &&
                         hunk.after_begin < hunk.after_end;
    const bool needs_place = came_in && (sides.after_blocks.CellOf(hunk.after_begin) >= 0 ||
                                         hunk.before_end == sides.before.paragraphs.size());
    if (needs_place) TakeNeighbour(hunk, sides.before_blocks, sides.after_blocks);
    if (!joined.empty() && hunk.before_begin < joined.back().before_end) {
      joined.back().before_end = std::max(joined.back().before_end, hunk.before_end);
      joined.back().after_end = hunk.after_end;
    } else {
      joined.push_back(hunk);
    }
  }
  hunks = std::move(joined);
}

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

RtfOriginal::View RtfOriginal::ViewOf(RtfDigest unedited, const RtfDigest& file) {
  View view;
  view.stands_in_file = !file.blocks.empty() && file.kinds == unedited.kinds;
  for (std::size_t i = 0; view.stands_in_file && i < file.blocks.size(); ++i) {
    const std::uint32_t paragraphs = file.block_begins[i + 1] - file.block_begins[i];
    view.shapes.push_back(paragraphs != unedited.block_begins[i + 1] - unedited.block_begins[i]
                              ? BlockShape::OtherParagraphs
                          : file.blocks[i] != unedited.blocks[i] ? BlockShape::Other
                                                                 : BlockShape::Same);
  }
  view.unedited = std::move(unedited);
  return view;
}

void RtfOriginal::SetUnedited(const RtfDocument& exported) {
  if (HasTextBehindSections(exported)) return SetUnedited(WithSectionsApart(exported));
  const RtfBlocks blocks(exported);
  const bool is_known = source_.marks.size() == document_.paragraphs.size() && blocks_.AreSound();
  view_ =
      ViewOf(blocks.AreSound() ? DigestOf(exported, blocks) : RtfDigest(), is_known ? ShapeOf(blocks_) : RtfDigest());
}

bool RtfOriginal::HasSameRest(const RtfDocument& read, const RtfTablePatch& tables) const {
  return tables.HasMade(read.kept_header, kept_header_) && read.kept_section == kept_section_ &&
         read.document_controls == document_controls_ && read.kept_behind.size() == kept_behind_ &&
         read.losses.ended_early == ended_early_;
}

/// What is smaller than a table first.
std::optional<std::string> RtfOriginal::WithEdits(const RtfDocument& edited, const DecodeCodePage& decode,
                                                  std::vector<RtfHunk>* done) const {
  if (HasTextBehindSections(edited)) return WithEdits(WithSectionsApart(edited), decode, done);
  const RtfBlocks blocks(edited);
  if (!blocks.AreSound()) return std::nullopt;
  const RtfDigest digest = DigestOf(edited, blocks);
  if (digest == view_.unedited) return bytes_;
  if (view_.stands_in_file) {
    std::optional<std::string> bytes = Splice(blocks_, view_, {edited, blocks, digest, decode}, done);
    if (bytes) return bytes;
  }
  const auto has_rows = [](const RtfDigest& one) {
    return std::ranges::find(one.kinds, RtfBlock::Kind::Row) != one.kinds.end();
  };
  if (view_.unedited.blocks.empty() || !blocks_.AreSound() || (!has_rows(digest) && !has_rows(view_.unedited)))
    return std::nullopt;
  const View view = ViewOf(DigestOfTables(view_.unedited), DigestOfTables(ShapeOf(blocks_)));
  if (!view.stands_in_file || source_.marks.size() != document_.paragraphs.size()) return std::nullopt;
  const RtfBlocks of_tables = blocks.OfTables();
  return Splice(blocks_.OfTables(), view, {edited, of_tables, DigestOfTables(digest), decode}, done);
}

std::optional<std::string> RtfOriginal::Splice(const RtfBlocks& file_blocks, const View& view, const Edited& edited,
                                               std::vector<RtfHunk>* done) const {
  constexpr int kMaxRounds = 5;
  std::vector<RtfHunk> hunks = HunksBetween(view.unedited, edited.digest, view.shapes);
  MoveToFile(view.unedited, file_blocks, hunks);
  if (hunks.empty()) return std::nullopt;
  const Sides sides{bytes_, document_, file_blocks, source_, edited.document, edited.blocks};
  TakeNeighbours(sides, hunks);
  for (int round = 1; round <= kMaxRounds; ++round) {
    RtfTablePatch tables(edited.document, source_, fonts_);
    for (const RtfHunk& hunk : hunks) tables.Note(hunk);
    Failures failures;
    std::string bytes = Patched(sides, hunks, tables, failures);
    if (failures.empty()) {
      const RtfDocument read = ReadRtf(bytes, edited.decode);
      failures = HasSameRest(read, tables) ? Check(sides, read, tables.UnnamedFont()).Run(hunks) : Check::All(hunks);
      if (failures.empty()) {
        if (done != nullptr) *done = std::move(hunks);
        return bytes;
      }
    }
    if (!RaiseHunks(hunks, round + 2 < kMaxRounds ? failures : Check::All(hunks), file_blocks)) return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace tme::rtf
