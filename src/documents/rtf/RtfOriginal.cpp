#include "documents/rtf/RtfOriginal.h"

#include <algorithm>
#include <utility>

#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfSplicer.h"

namespace tme::rtf {
namespace {

/// Whether a document that was read again says what was meant: the edited paragraphs, and around them what there was.
bool IsAsMeant(const RtfDocument& read, const RtfDocument& before, const RtfDocument& after,
               const std::vector<RtfHunk>& hunks, std::size_t fonts) {
  if (read.paragraphs.size() != after.paragraphs.size() || !SameTables(read, before)) return false;
  RtfComparison to_before(read, before, after, fonts), to_after(read, after, after, fonts);
  std::size_t at = 0, at_before = 0;
  const auto is_unchanged = [&](std::size_t end) {
    for (; at < end; ++at, ++at_before)
      if (!to_before.SameParagraph(at, at_before)) return false;
    return true;
  };
  for (const RtfHunk& hunk : hunks) {
    if (!is_unchanged(hunk.after_begin)) return false;
    for (; at < hunk.after_end; ++at)
      if (!to_after.SameParagraph(at, at)) return false;
    at_before = hunk.before_end;
  }
  return is_unchanged(read.paragraphs.size());
}

}  // namespace

RtfOriginal::RtfOriginal(std::string bytes, const RtfDocument& document, RtfSource source)
    : bytes_(std::move(bytes)),
      source_(std::move(source)),
      fonts_(document.fonts.size()),
      colors_(std::max<std::size_t>(document.colors.size(), 1)) {
  document_.text = document.text;
  document_.runs = document.runs;
  document_.paragraphs = document.paragraphs;
  document_.cells = document.cells;
  document_.rows = document.rows;
  document_.tables = document.tables;
}

void RtfOriginal::SetUnedited(const RtfDocument& exported) {
  unedited_ = ParagraphHashes(exported);
  unedited_tables_.cells = exported.cells;
  unedited_tables_.rows = exported.rows;
  unedited_tables_.tables = exported.tables;
}

std::optional<std::string> RtfOriginal::WithEdits(const RtfDocument& edited, const DecodeCodePage& decode) const {
  const std::vector<std::uint64_t> hashes = ParagraphHashes(edited);
  if (!SameTables(edited, unedited_tables_)) return std::nullopt;
  if (hashes == unedited_) return bytes_;
  const bool stands_in_source = source_.marks.size() == document_.paragraphs.size() &&
                                unedited_.size() == document_.paragraphs.size() && SameTables(edited, document_);
  if (!stands_in_source) return std::nullopt;
  const std::vector<RtfHunk> hunks = HunksBetween(unedited_, hashes);
  std::optional<std::string> spliced = RtfSplicer(bytes_, document_, source_, edited, {fonts_, colors_}).Run(hunks);
  if (spliced && !IsAsMeant(ReadRtf(*spliced, decode), document_, edited, hunks, fonts_)) spliced.reset();
  return spliced;
}

}  // namespace tme::rtf
