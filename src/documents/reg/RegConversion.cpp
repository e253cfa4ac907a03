#include "documents/reg/RegConversion.h"

#include <algorithm>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegHex.h"

namespace tme {

namespace {

RegCoding InVersion(RegCoding coding, RegVersion version) {
  coding.version = version;
  return coding;
}

std::uint64_t LineEndsIn(std::string_view text) {
  std::uint64_t ends = 0;
  for (std::size_t at = text.find_first_of("\r\n"); at != text.npos; at = text.find_first_of("\r\n", at)) {
    at += text.substr(at).starts_with("\r\n") ? 2 : 1;
    ++ends;
  }
  return ends;
}

}  // namespace

std::optional<std::string> ConvertedAssignment(std::string_view assignment, const RegCoding& from, const RegCoding& to,
                                               RegFault& fault) {
  fault = RegFault::None;
  const RegMark mark = RegMarkOf(assignment);
  const RegContent content = ContentOf(mark.type);
  const bool is_text = content == RegContent::Text || content == RegContent::Strings;
  const bool is_coded = mark.form == RegForm::Hex && is_text && mark.type != reg_type::kLink;
  const std::optional<RegData> data = is_coded ? DecodeAssignment(assignment, from) : std::nullopt;
  if (!data) return std::string(assignment);
  // An import widens each character of REGEDIT4, whether the text is whole or not.
  const bool is_proper = data->content != RegContent::Bytes;
  const std::optional<std::string> bytes =
      is_proper ? RegBytes(*data, to) : RecodedRegText(data->bytes, data->type, from, to);
  if (bytes) return HexMark(data->type) + HexOfBytes(*bytes);
  fault = is_proper ? FaultOf(*data, to) : RegFault::NotUnicode;
  return std::nullopt;
}

std::vector<RegUnsayable> UnsayableIn(const RegDocument& document, RegVersion target, const RegCoding& coding) {
  struct Found {
    SourceLines::Piece piece;
    RegUnsayable what;
  };
  std::vector<Found> found;
  const RegCoding from = InVersion(coding, document.Version());
  const RegCoding to = InVersion(coding, target);
  for (const RegValueRecord& value : document.Values()) {
    RegFault fault = RegFault::None;
    if (!value.deleted && value.type == RegType::Hex && !ConvertedAssignment(value.data, from, to, fault))
      found.push_back({value.piece, {.line = 0, .name = std::string(value.name), .fault = fault}});
  }
  if (found.empty()) return {};
  std::ranges::sort(found, {}, &Found::piece);
  std::uint64_t line = 1;
  const SourceLines& lines = document.Lines();
  std::vector<RegUnsayable> unsayable;
  for (SourceLines::Piece at = lines.First(); at != SourceLines::kEnds; at = lines.Next(at)) {
    const auto here = std::ranges::lower_bound(found, at, {}, &Found::piece);
    if (here != found.end() && here->piece == at) {
      here->what.line = line;
      unsayable.push_back(here->what);
    }
    line += LineEndsIn(lines.Text(at));
  }
  return unsayable;
}

std::string WithoutPairs(const RegDocument& document) {
  const SourceLines& lines = document.Lines();
  std::string text(HeaderOf(RegVersion::Regedit4));
  text.append(lines.LineEndBehind(lines.First()));
  for (SourceLines::Piece at = lines.First(); at != SourceLines::kEnds; at = lines.Next(at)) {
    const auto kind = static_cast<RegPiece>(lines.Kind(at));
    const std::string_view piece = lines.Text(at);
    if (kind == RegPiece::FileHeader) continue;
    if (kind != RegPiece::Key && kind != RegPiece::Pair) {
      text.append(piece);
      continue;
    }
    const std::string_view line = piece.substr(0, piece.size() - LineEndOf(piece).size());
    const std::string end(lines.LineEndBehind(at));
    const RegValuePlace place = FindRegPair(line)->place;
    text.append(end).append("[").append(place.name.Of(line)).append("]").append(end);
    if (kind == RegPiece::Pair)
      text.append("@=\"").append(EscapedRegText(place.assignment.Of(line))).append("\"").append(end);
  }
  return text;
}

void RegDocument::ConvertTo(RegVersion target, const RegCoding& coding) {
  if (version_ == target || version_ == RegVersion::Regedit || target == RegVersion::Regedit) return;
  const Editing editing(*this, EditName::Convert);
  observer_->BeforeReset();
  if (comments_ == RegComments::Shown) DropComments();
  const RegCoding from = InVersion(coding, version_);
  const RegCoding to = InVersion(coding, target);
  for (std::size_t record = 0; record < values_.size(); ++record) {
    RegValueRecord& value = values_[record];
    RegFault fault = RegFault::None;
    if (value.deleted || value.type != RegType::Hex) continue;
    const std::optional<std::string> assignment = ConvertedAssignment(value.data, from, to, fault);
    if (assignment && *assignment != value.data) PutAssignment(record, *assignment);
  }
  version_ = target;
  const SourceLines::Piece first = lines_.First();
  SourceLines::Piece header = first;
  while (header != SourceLines::kEnds && KindOf(header) != RegPiece::FileHeader && KindOf(header) != RegPiece::Key)
    header = lines_.Next(header);
  if (KindOf(header) == RegPiece::FileHeader) {
    const std::string_view line = lines_.Text(header);
    const std::size_t at = FirstText(line);
    ReplaceIn(header, {at, line.find_last_not_of(" \t\r\n") + 1 - at}, HeaderOf(target));
  } else {
    const std::string end(lines_.LineEndBehind(SourceLines::kEnds));
    header = lines_.InsertBehind(SourceLines::kEnds, std::string(HeaderOf(target)) + end,
                                 static_cast<std::uint8_t>(RegPiece::FileHeader));
    if (KindOf(first) != RegPiece::Blank) lines_.InsertBehind(header, end, static_cast<std::uint8_t>(RegPiece::Blank));
  }
  if (comments_ == RegComments::Shown) MakeComments();
  NoteRevision();
  observer_->AfterReset();
}

}  // namespace tme
