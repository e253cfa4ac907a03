#include "documents/SourceLines.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "base/LineReader.h"
#include "base/Reversed.h"

namespace tme {
namespace {

constexpr std::string_view kUsualLineEnd = "\r\n";
/// Bytes. Whoever encodes a part needs up to three times as much memory.
constexpr std::size_t kLargePart = std::size_t{1} << 20;

/// The line end of the first line of a text that has one.
std::string_view FirstLineEnd(std::string_view lines) {
  const std::size_t at = lines.find_first_of("\r\n");
  if (at == std::string_view::npos) return {};
  return lines.substr(at, lines.substr(at).starts_with(kUsualLineEnd) ? 2 : 1);
}

}  // namespace

std::string_view LineEndOf(std::string_view lines) {
  if (lines.ends_with(kUsualLineEnd)) return lines.substr(lines.size() - 2);
  const bool has_end = lines.ends_with('\n') || lines.ends_with('\r');
  return lines.substr(lines.size() - (has_end ? 1 : 0));
}

std::optional<LineEnds> UsedLineEndsIn(std::string_view lines) {
  constexpr auto kNone = std::string_view::npos;
  if (lines.find('\r') == kNone) return lines.find('\n') == kNone ? std::nullopt : std::optional(LineEnds::Lf);
  for (std::size_t at = lines.find('\r'); at != kNone; at = lines.find('\r', at + 1))
    if (!lines.substr(at).starts_with(kUsualLineEnd)) return LineEnds::Mixed;
  for (std::size_t at = lines.find('\n'); at != kNone; at = lines.find('\n', at + 1))
    if (at == 0 || lines[at - 1] != '\r') return LineEnds::Mixed;
  return LineEnds::CrLf;
}

std::string LinesEndedBy(std::string_view lines, std::string_view end) {
  std::string changed;
  changed.reserve(lines.size());
  LineReader reader(lines);
  for (std::string_view line; reader.Next(line);) {
    changed += line;
    if (line.data() + line.size() != lines.data() + lines.size()) changed += end;
  }
  return changed;
}

void SourceLines::Clear() { pieces_.assign(1, {.text = "", .size = 0, .next = kEnds, .previous = kEnds, .kind = 0}); }

SourceLines::Piece SourceLines::Append(std::string_view lines, std::uint8_t kind) {
  const Piece last = Last();
  const Piece piece = Make(last, lines, kind);
  pieces_[last].next = pieces_[kEnds].previous = piece;
  return piece;
}

SourceLines::Piece SourceLines::InsertBehind(Piece place, std::string_view lines, std::uint8_t kind) {
  return InsertAsIs(place, WithLineEnds(place, lines), kind);
}

SourceLines::Piece SourceLines::InsertAsIs(Piece place, std::string_view lines, std::uint8_t kind) {
  const Piece piece = Make(place, lines, kind);
  Edited(place).next = piece;
  Edited(Next(piece)).previous = piece;
  return piece;
}

void SourceLines::Replace(Piece piece, std::string_view lines) { SetText(Edited(piece), texts_.Copy(lines)); }

void SourceLines::Remove(Piece first, Piece last) {
  const Piece before = Previous(first), behind = Next(last);
  Edited(before).next = behind;
  Edited(behind).previous = before;
}

void SourceLines::Revert(Changes& changes) {
  for (auto& [piece, entry] : Reversed(changes.changes_)) std::swap(pieces_[piece], entry);
}

void SourceLines::Reapply(Changes& changes) {
  for (auto& [piece, entry] : changes.changes_) std::swap(pieces_[piece], entry);
}

SourceLines::Entry& SourceLines::Edited(Piece piece) {
  if (changes_ == nullptr) return pieces_[piece];
  // What stands between two that are removed one after the other is noted once.
  std::vector<Changes::Change>& noted = changes_->changes_;
  if (noted.empty() || noted.back().piece != piece) noted.push_back({piece, pieces_[piece]});
  return pieces_[piece];
}

std::string_view SourceLines::LineEndBehind(Piece piece) const {
  for (Piece at = piece; at != kEnds; at = Previous(at))
    if (const std::string_view end = LineEndOf(Text(at)); !end.empty()) return end;
  for (Piece at = Next(piece); at != kEnds; at = Next(at))
    if (const std::string_view end = FirstLineEnd(Text(at)); !end.empty()) return end;
  return kUsualLineEnd;
}

bool SourceLines::Write(const PartSink& sink) const {
  PartBuffer small(sink);
  const auto put = [&](std::string_view part) {
    return part.size() < PartBuffer::kPartBytes ? small.Append(part).EndPiece() : small.Flush() && sink(part);
  };
  std::string_view part;
  for (Piece at = First(); at != kEnds; at = Next(at)) {
    const std::string_view text = Text(at);
    if (part.data() + part.size() == text.data() && part.size() < kLargePart) {
      part = {part.data(), part.size() + text.size()};
      continue;
    }
    if (!put(part)) return false;
    part = text;
  }
  return put(part) && small.Flush();
}

LineEnds SourceLines::UsedLineEnds() const {
  std::optional<LineEnds> used;
  for (Piece at = First(); at != kEnds && used != LineEnds::Mixed; at = Next(at))
    if (const std::optional<LineEnds> ends = UsedLineEndsIn(Text(at)))
      used = used.value_or(*ends) == *ends ? ends : LineEnds::Mixed;
  return used.value_or(LineEnds::CrLf);
}

bool SourceLines::SetLineEnds(LineEnds ends) {
  if (ends == LineEnds::Mixed) return false;
  const std::string_view new_end = ends == LineEnds::CrLf ? kUsualLineEnd : "\n";
  bool has_changed = false;
  for (Piece at = First(); at != kEnds; at = Next(at)) {
    if (UsedLineEndsIn(Text(at)).value_or(ends) == ends) continue;
    Replace(at, LinesEndedBy(Text(at), new_end));
    has_changed = true;
  }
  return has_changed;
}

std::uint64_t SourceLines::Size() const {
  std::uint64_t size = 0;
  for (Piece at = First(); at != kEnds; at = Next(at)) size += pieces_[at].size;
  return size;
}

std::vector<std::uint64_t> SourceLines::OffsetsOf(std::span<const Piece> pieces) const {
  std::vector<std::uint64_t> offsets;
  std::uint64_t offset = 0;
  for (Piece at = First(); at != kEnds && offsets.size() < pieces.size(); at = Next(at)) {
    if (at == pieces[offsets.size()]) offsets.push_back(offset);
    offset += pieces_[at].size;
  }
  return offsets;
}

SourceLines::Piece SourceLines::PieceAt(std::uint64_t offset) const {
  Piece at = First();
  for (; at != kEnds && offset >= pieces_[at].size; at = Next(at)) offset -= pieces_[at].size;
  return at;
}

SourceLines::Piece SourceLines::Make(Piece place, std::string_view lines, std::uint8_t kind) {
  const auto piece = static_cast<Piece>(pieces_.size());
  pieces_.push_back({.text = "", .size = 0, .next = Next(place), .previous = place, .kind = kind});
  SetText(pieces_.back(), lines);
  return piece;
}

void SourceLines::SetText(Entry& entry, std::string_view lines) {
  entry.text = lines.data();
  entry.size = static_cast<std::uint32_t>(lines.size());
}

std::string_view SourceLines::WithLineEnds(Piece place, std::string_view lines) {
  const std::string_view end = LineEndBehind(place);
  if (place != kEnds && LineEndOf(Text(place)).empty()) {
    // This was the last line, so the new one will be.
    Replace(place, std::string(Text(place)).append(end));
    lines.remove_suffix(LineEndOf(lines).size());
    return texts_.Copy(lines);
  }
  if (LineEndOf(lines).empty()) return texts_.Copy(std::string(lines).append(end));
  return texts_.Copy(lines);
}

}  // namespace tme
