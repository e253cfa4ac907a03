#include "windows/reg/RegSource.h"

#include "documents/reg/RegWholeWriter.h"
#include "documents/reg/RegWriter.h"

namespace tme {

void RegSource::Listen(std::function<void()> listener) { document_.SetRevisionListener(std::move(listener)); }

bool RegSource::Write(const PartSink& sink) const {
  return IsWhole() ? WriteWholeReg(document_, RegLayout::Regular, sink) : WriteReg(document_, RegLayout::Regular, sink);
}

const RegWrittenLines& RegSource::Written() const {
  const bool stays = written_ && (written_revision_ == document_.Revision() ||
                                  RegWrittenLines::StaysSince(document_, written_revision_));
  if (!stays) written_.emplace(document_);
  written_revision_ = document_.Revision();
  return *written_;
}

std::vector<WrittenChange> RegSource::ChangesSince(std::uint64_t revision) const {
  return IsWhole() ? std::vector<WrittenChange>() : Written().ChangesSince(revision);
}

std::vector<SourceLineRange> RegSource::SelectedLines(const SourceView& text) const {
  std::vector<SourceLineRange> ranges;
  const RegPlace place = window_.selected();
  if (!IsWhole()) {
    if (const std::optional<std::uint64_t> line = Written().LineOf(place))
      ranges.push_back({static_cast<PadPosition>(*line), 1});
    return ranges;
  }
  const std::vector<SourceLines::Piece> pieces = PiecesOfPlace(document_, place);
  const std::vector<std::uint64_t> offsets = document_.Lines().OffsetsOf(pieces);
  for (std::size_t index = 0; index < offsets.size(); ++index) {
    const auto start = static_cast<PadPosition>(offsets[index]);
    const auto size = static_cast<PadPosition>(document_.Lines().Text(pieces[index]).size());
    const PadPosition first = text.LineAt(start);
    ranges.push_back({first, text.LineAt(start + size - 1) - first + 1});
  }
  return ranges;
}

void RegSource::SelectLine(const SourceView& text, PadPosition line) {
  const RegPlace place = IsWhole() ? PlaceOfPiece(document_, PieceOfLine(document_.Lines(), text, line))
                                   : Written().At(static_cast<std::uint64_t>(line));
  if (place.key != nullptr) window_.select(place);
}

const SourceLines* RegSource::Pieces() const { return IsWhole() ? &document_.Lines() : nullptr; }

void RegSource::ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view lines) {
  window_.change([&] { document_.ReplaceLines(first, last, lines); });
}

}  // namespace tme
