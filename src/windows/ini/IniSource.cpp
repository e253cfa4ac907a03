#include "windows/ini/IniSource.h"

#include "documents/ini/IniSourceLine.h"
#include "documents/ini/IniWriter.h"
#include "documents/ini/IniWrittenLines.h"

namespace tme {

void IniSource::Listen(std::function<void()> listener) { tree_.SetRevisionListener(std::move(listener)); }

bool IniSource::Write(const PartSink& sink) const { return WriteIni(tree_, sink); }

std::vector<WrittenChange> IniSource::ChangesSince(std::uint64_t revision) const {
  std::optional<WrittenChange> change = IsWhole() ? std::nullopt : WrittenChangeSince(tree_, revision);
  std::vector<WrittenChange> changes;
  if (change) changes.push_back(*std::move(change));
  return changes;
}

std::vector<SourceLineRange> IniSource::SelectedLines(const SourceView& text) const {
  const IniNode& selected = *tree_.Selected();
  if (!IsWhole()) {
    const std::optional<std::uint64_t> line = WrittenLineOf(tree_, selected);
    if (!line) return {};
    return {{static_cast<PadPosition>(*line), 1}};
  }
  const SourceLines::Piece piece = tree_.PieceOf(selected);
  if (piece == SourceLines::kEnds) return {};
  const std::vector<std::uint64_t> offsets = tree_.Lines().OffsetsOf({&piece, 1});
  return {{text.LineAt(static_cast<PadPosition>(offsets.front())), 1}};
}

void IniSource::SelectLine(const SourceView& text, PadPosition line) {
  if (!IsWhole()) {
    if (IniNode* node = NodeAtWrittenLine(tree_, static_cast<std::uint64_t>(line))) select_(node);
    return;
  }
  const SourceLines& lines = tree_.Lines();
  SourceLines::Piece piece = PieceOfLine(lines, text, line);
  // A blank line belongs to what stands above it.
  while (piece != SourceLines::kEnds && tree_.NodeOf(piece) == nullptr) piece = lines.Previous(piece);
  if (piece != SourceLines::kEnds) select_(tree_.NodeOf(piece));
}

const SourceLines* IniSource::Pieces() const { return IsWhole() ? &tree_.Lines() : nullptr; }

void IniSource::ReplaceLines(SourceLines::Piece first, SourceLines::Piece last, std::string_view lines) {
  tree_.ReplaceLines(first, last, lines);
}

std::vector<SourceFault> IniSource::Read(const SourcePart& part, std::span<char> styles) const {
  std::vector<SourceFault> faults;
  LineReader lines(part.text);
  for (std::string_view line; lines.Next(line);) {
    const auto at = static_cast<std::size_t>(line.data() - part.text.data());
    const auto set = [&](std::string_view of_line, SourceStyle style) {
      SetStyle(styles, static_cast<std::size_t>(of_line.data() - part.text.data()), of_line.size(), style);
    };
    const auto add_fault = [&](const QString& reason) {
      if (IsWhole()) faults.push_back({at, line.size(), reason});
    };
    switch (IsWhole() ? SourceKindOf(line) : KindOf(line)) {
      case IniLine::Blank:
        break;
      case IniLine::Comment:
        set(line, SourceStyle::Comment);
        break;
      case IniLine::Header:
        set(line.substr(0, line.find(']')), SourceStyle::Section);
        if (const std::size_t end = line.find(']'); end != line.npos)
          set(line.substr(end, 1), SourceStyle::Section);
        else
          add_fault(tr("The \"]\" is missing, so the section's name goes on to the end of the line."));
        break;
      case IniLine::Entry: {
        const IniEntryParts entry = EntryPartsOf(line);
        set(entry.key, SourceStyle::Name);
        if (!entry.has_equals) add_fault(tr("There is no \"=\" in this line, so it is a key without a value."));
        break;
      }
    }
  }
  return faults;
}

}  // namespace tme
