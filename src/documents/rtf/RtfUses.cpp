#include "documents/rtf/RtfUses.h"

#include <algorithm>

namespace tme::rtf {
namespace {

/// Whether it is the first time.
bool Enter(std::vector<bool>& known, std::size_t index) {
  if (index >= known.size() || known[index]) return false;
  return known[index] = true;
}

}  // namespace

RtfUses::RtfUses(const RtfDocument& document)
    : document_(document),
      char_formats_(document.char_formats.size()),
      paragraph_formats_(document.paragraph_formats.size()),
      extras_(document.extras.size()),
      rows_(document.rows.size()),
      objects_(document.objects.size()),
      known_fonts_(document.fonts.size()),
      joined_(document.joined.size()) {}

void RtfUses::Note(std::size_t begin, std::size_t end) {
  for (std::size_t i = begin; i < end; ++i) {
    const Paragraph& paragraph = document_.paragraphs[i];
    for (std::size_t run = paragraph.first_run; run < document_.EndOfRuns(i); ++run) {
      NoteCharFormat(document_.runs[run].format);
      const std::uint32_t object = document_.runs[run].object;
      if (object > 0 && Enter(objects_, object - 1)) NoteWords(document_.objects[object - 1].rtf);
    }
    NoteCharFormat(paragraph.mark_format);
    NoteParagraphFormat(paragraph.format);
    if (paragraph.cell < 0) continue;
    const std::uint32_t row = document_.cells[static_cast<std::size_t>(paragraph.cell)].row;
    if (Enter(rows_, row)) NoteWords(document_.rows[row].definition);
  }
}

void RtfUses::NoteCharFormat(std::uint32_t format) {
  if (!Enter(char_formats_, format)) return;
  const CharFormat& it = document_.char_formats[format];
  NoteFont(it.font);
  for (const std::uint32_t color : {it.color, it.background})
    if (color < document_.colors.size()) color_ = std::max(color_, color);
  NoteExtra(it.extra);
}

void RtfUses::NoteParagraphFormat(std::uint32_t format) {
  if (!Enter(paragraph_formats_, format)) return;
  const ParagraphFormat& it = document_.paragraph_formats[format];
  NoteExtra(it.extra);
  if (it.list_id != 0) NoteEntry(HeaderTable::Overrides, it.list_id);
}

void RtfUses::NoteFont(std::size_t font) {
  if (Enter(known_fonts_, font)) fonts_.push_back(static_cast<std::uint32_t>(font));
}

void RtfUses::NoteExtra(std::uint32_t extra) {
  if (extra > 0 && Enter(extras_, extra - 1)) NoteWords(document_.extras[extra - 1]);
}

void RtfUses::NoteWords(std::string_view rtf) {
  ForEachName(rtf, [this](const RtfNamed& named) {
    if (!names_.emplace(named.name, named.number).second) return;
    const auto found = std::ranges::find(document_.fonts, named.number, &Font::number);
    const auto color = static_cast<std::uint32_t>(std::max(named.number, 0));
    switch (named.name) {
      case RtfName::Font:
        return NoteFont(static_cast<std::size_t>(found - document_.fonts.begin()));
      case RtfName::Color:
        if (color < document_.colors.size()) color_ = std::max(color_, color);
        return;
      case RtfName::Style:
        return NoteEntry(HeaderTable::Styles, named.number);
      case RtfName::List:
        return NoteEntry(HeaderTable::Overrides, named.number);
      case RtfName::ListId:
        return NoteEntry(HeaderTable::Lists, named.number);
      case RtfName::Author:
        return NoteEntry(HeaderTable::Authors, named.number);
      case RtfName::ListPicture:
        return;
    }
  });
}

/// With what it names in turn. An author's place in the table needs all those before it.
void RtfUses::NoteEntry(HeaderTable table, std::int32_t number) {
  const bool is_outer = to_read_.empty();
  for (std::size_t i = 0; i < joined_.size(); ++i) {
    const JoinedEntry& entry = document_.joined[i];
    const bool is_named =
        entry.table == table && (table == HeaderTable::Authors ? entry.number <= number : entry.number == number);
    if (is_named && Enter(joined_, i)) to_read_.push_back(i);
  }
  for (std::size_t i = 0; is_outer && i < to_read_.size(); ++i) NoteWords(document_.joined[to_read_[i]].rtf);
  if (is_outer) to_read_.clear();
}

std::vector<const JoinedEntry*> RtfUses::Joined() const {
  std::vector<const JoinedEntry*> entries;
  for (std::size_t i = 0; i < joined_.size(); ++i)
    if (joined_[i]) entries.push_back(&document_.joined[i]);
  return entries;
}

}  // namespace tme::rtf
