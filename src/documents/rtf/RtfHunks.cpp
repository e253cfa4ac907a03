#include "documents/rtf/RtfHunks.h"

#include <functional>
#include <string_view>
#include <unordered_map>

#include "documents/diff/SequenceDiff.h"
#include "documents/rtf/RtfComparison.h"
#include "documents/rtf/RtfInternTable.h"

namespace tme::rtf {
namespace {

/// What a paragraph says, as a number; the numbers of formats and objects count.
std::uint64_t HashOf(const RtfDocument& document, std::size_t index, std::uint32_t text) {
  const Paragraph& paragraph = document.paragraphs[index];
  std::size_t hash = MixHash(paragraph.format, paragraph.mark_format);
  hash = MixHash(hash, static_cast<std::uint32_t>(paragraph.cell));
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

}  // namespace

std::vector<std::uint64_t> ParagraphHashes(const RtfDocument& document) {
  const std::vector<std::uint32_t> text = TextStarts(document);
  std::vector<std::uint64_t> hashes;
  hashes.reserve(document.paragraphs.size());
  for (std::size_t i = 0; i < document.paragraphs.size(); ++i) hashes.push_back(HashOf(document, i, text[i]));
  return hashes;
}

std::vector<RtfHunk> HunksBetween(const std::vector<std::uint64_t>& before, const std::vector<std::uint64_t>& after) {
  std::unordered_map<std::uint64_t, std::uint32_t> numbers;
  const auto numbered = [&](const std::vector<std::uint64_t>& hashes) {
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

}  // namespace tme::rtf
