#include "documents/rtf/RtfBuilder.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "documents/rtf/RtfReader.h"

namespace tme::rtf {
namespace {

// What a hostile file could blow up by repeating a few bytes is bounded; no real letter comes near.
constexpr std::size_t kMaxFormats = 65'536;
constexpr std::size_t kMaxExtraBytes = 512;
constexpr std::size_t kExtraOverhead = 64;
constexpr std::size_t kSmallInput = std::size_t{64} << 10;
constexpr std::size_t kBytesPerObject = 32;
constexpr std::size_t kTransitions = 4096;
constexpr std::int32_t kDefaultCellWidth = 1440;
constexpr std::uint16_t kMaxSpan = 0xFFFF;

constexpr std::size_t Mix(std::size_t hash, std::uint64_t value) {
  hash ^= value;
  hash *= 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 29);
}

std::size_t HashOf(const CharFormat& format) {
  std::size_t hash = Mix(format.font, format.half_points);
  hash = Mix(hash, (std::uint64_t{format.color} << 32) | format.background);
  hash = Mix(hash, (std::uint64_t{format.field} << 32) | format.extra);
  const auto bits = static_cast<unsigned>(format.bold) | static_cast<unsigned>(format.italic) << 1 |
                    static_cast<unsigned>(format.hidden) << 2 | static_cast<unsigned>(format.strike) << 4 |
                    static_cast<unsigned>(format.underline) << 8 | static_cast<unsigned>(format.script) << 16 |
                    static_cast<unsigned>(format.capitals) << 20;
  return Mix(hash, bits);
}

std::size_t HashOf(const ParagraphFormat& format) {
  std::size_t hash = 0;
  for (const std::int32_t number :
       {format.left, format.right, format.first_line, format.space_before, format.space_after, format.line_spacing,
        format.list_id, format.list_start, static_cast<std::int32_t>(format.extra)}) {
    hash = Mix(hash, static_cast<std::uint32_t>(number));
  }
  hash = Mix(hash, static_cast<std::uint64_t>(format.alignment) | static_cast<std::uint64_t>(format.list) << 8 |
                       std::uint64_t{format.list_level} << 16 | std::uint64_t{format.line_multiple} << 24 |
                       std::uint64_t{format.page_break_before} << 25);
  for (const TabStop& tab : format.tabs) {
    hash = Mix(hash, static_cast<std::uint32_t>(tab.position) | static_cast<std::uint64_t>(tab.kind) << 32 |
                         static_cast<std::uint64_t>(tab.leader) << 40);
  }
  return hash;
}

/// Puts `word` in the place of the control word `name`; false when there is none.
bool ReplaceWord(std::string& words, std::string_view name, std::string_view word) {
  for (std::size_t at = 0; at < words.size();) {
    const std::size_t end = std::min(words.find('\\', at + 1), words.size());
    const std::string_view old = std::string_view(words).substr(at + 1, end - at - 1);
    if (old.starts_with(name) && old.find_first_not_of("-0123456789", name.size()) == std::string_view::npos) {
      words.replace(at, end - at, word);
      return true;
    }
    at = end;
  }
  return false;
}

}  // namespace

void InternTable::Grow() {
  std::vector<Place> old = std::exchange(places_, std::vector<Place>(std::max<std::size_t>(64, places_.size() * 2)));
  for (const Place& place : old) {
    if (place.index_plus_one == 0) continue;
    std::size_t i = place.hash & (places_.size() - 1);
    while (places_[i].index_plus_one != 0) i = (i + 1) & (places_.size() - 1);
    places_[i] = place;
  }
}

std::uint32_t Builder::Intern(const CharFormat& format) {
  return char_formats_.Intern(document_.char_formats, format, HashOf(format), kMaxFormats, &document_.losses.limits);
}

std::uint32_t Builder::Intern(const ParagraphFormat& format) {
  const std::size_t before = document_.paragraph_formats.size();
  if (!format.tabs.empty() && tab_bytes_ > input_bytes_ + kSmallInput) {
    ++document_.losses.limits;
    ParagraphFormat without = format;
    without.tabs.clear();
    return Intern(without);
  }
  const std::uint32_t index = paragraph_formats_.Intern(document_.paragraph_formats, format, HashOf(format),
                                                        kMaxFormats, &document_.losses.limits);
  if (document_.paragraph_formats.size() > before) tab_bytes_ += format.tabs.size() * sizeof(TabStop);
  return index;
}

std::uint32_t Builder::AddExtra(std::uint32_t old, std::string_view word, std::string_view name, Extra how) {
  if (transitions_.empty()) transitions_.resize(kTransitions);
  Transition& known = transitions_[Mix(std::hash<std::string_view>{}(word), old) % kTransitions];
  if (known.from == old && known.word == word) return known.to;
  std::string words = old == 0 ? std::string() : document_.extras[old - 1];
  const std::string_view written = how == Extra::Remove ? std::string_view() : word;
  if (how == Extra::Append || !ReplaceWord(words, name, written)) words += written;
  const std::size_t cost = words.size() + kExtraOverhead;
  if (words.size() > kMaxExtraBytes || extra_bytes_ + cost > input_bytes_ * 2 + kSmallInput) {
    ++document_.losses.limits;
    return old;
  }
  const std::size_t before = document_.extras.size();
  const std::uint32_t index =
      extras_.Intern(document_.extras, words, std::hash<std::string>{}(words), kMaxFormats, &document_.losses.limits);
  if (document_.extras.size() > before) extra_bytes_ += cost;
  known = {old, index + 1, word};
  return known.to;
}

void Builder::AddText(std::string_view text, std::uint32_t format) {
  document_.text.append(text);
  visible_pending_ = true;
  if (HasPending() && document_.runs.back().format == format && document_.runs.back().object == 0) {
    document_.runs.back().bytes += static_cast<std::uint32_t>(text.size());
  } else {
    document_.runs.push_back({static_cast<std::uint32_t>(text.size()), format, 0});
  }
}

void Builder::AddObject(Object&& object, std::uint32_t format) {
  std::vector<Object>& objects = document_.objects;
  const bool is_full = objects.size() > input_bytes_ / kBytesPerObject + 1024;
  const bool follows_invisible = HasPending() && !objects.empty() && document_.runs.back().object == objects.size() &&
                                 FieldOf(document_.runs.back().format) == FieldOf(format);
  ++objects_added_;
  // Neighbours that nobody sees are one. So are all when a file has too many: their place is lost, not what they say.
  if (!objects.empty() && objects.back().kind == ObjectKind::Invisible &&
      (is_full || (follows_invisible && object.kind == ObjectKind::Invisible))) {
    objects.back().rtf += object.rtf;
    document_.losses.limits += is_full && !follows_invisible ? 1u : 0u;
    return;
  }
  visible_pending_ = visible_pending_ || object.kind != ObjectKind::Invisible;
  objects.push_back(std::move(object));
  if (is_full) objects.back().kind = ObjectKind::Invisible;
  document_.runs.push_back({0, format, static_cast<std::uint32_t>(objects.size())});
}

void Builder::EndParagraph(const ParagraphFormat& format, std::uint32_t mark_format, int table_level) {
  Paragraph paragraph;
  paragraph.first_run = static_cast<std::uint32_t>(first_run_);
  paragraph.format = Intern(format);
  paragraph.mark_format = mark_format;
  paragraph.cell = OpenCell(table_level);
  if (visible_pending_) {
    for (Level& open : levels_) open.row_cells.back().has_text = true;
  }
  document_.paragraphs.push_back(paragraph);
  first_run_ = document_.runs.size();
  visible_pending_ = false;
}

// Closes what is deeper than `level`, and opens tables, rows and cells down to it.
std::int32_t Builder::OpenCell(int level) {
  std::size_t wanted = static_cast<std::size_t>(std::clamp(level, 0, kMaxTableLevel));
  if (wanted > std::max<std::size_t>(levels_.size(), 1) &&
      document_.tables.size() > input_bytes_ / kBytesPerObject + 1024) {
    ++document_.losses.limits;
    wanted = std::max<std::size_t>(levels_.size(), 1);
  }
  CloseLevels(wanted);
  std::int32_t cell = -1;
  for (std::size_t i = 0; i < wanted; ++i) {
    if (i == levels_.size()) {
      levels_.emplace_back().table = static_cast<std::uint32_t>(document_.tables.size());
      document_.tables.push_back({cell});
    }
    Level& open = levels_[i];
    if (open.row < 0) {
      open.row = static_cast<std::int64_t>(document_.rows.size());
      document_.rows.emplace_back().table = open.table;
    }
    if (open.cell < 0) {
      open.cell = static_cast<std::int64_t>(document_.cells.size());
      document_.cells.emplace_back().row = static_cast<std::uint32_t>(open.row);
      open.row_cells.push_back({static_cast<std::uint32_t>(open.cell), false});
    }
    cell = static_cast<std::int32_t>(open.cell);
  }
  if (wanted > 0) levels_.back().is_used = true;
  return cell;
}

// A table on the way to a deeper one, of which the file says nothing else, is none: the deeper one takes its place.
void Builder::CloseLevels(std::size_t stay_open) {
  if (levels_.size() <= stay_open) return;
  for (std::size_t i = stay_open; i + 1 < levels_.size(); ++i) {
    if (levels_[i].is_used) continue;
    document_.tables[levels_[i + 1].table].parent_cell = document_.tables[levels_[i].table].parent_cell;
  }
  levels_.resize(stay_open);
}

void Builder::EndCell(int level) {
  if (HasOpenCell(level)) levels_[static_cast<std::size_t>(level) - 1].cell = -1;
}

void Builder::EndRow(int level, RowDefinition& definition) {
  definition.is_open = false;
  if (OpenLevels() < level) return;
  CloseLevels(static_cast<std::size_t>(level));
  Level& open = levels_.back();
  open.is_used = true;
  if (open.row < 0) return;
  Row& row = document_.rows[static_cast<std::size_t>(open.row)];
  // A definition serves all rows up to the next; repeated without an end, it could outgrow the file.
  if (definition.was_used) repeated_bytes_ += definition.words_to_last_edge;
  if (repeated_bytes_ < input_bytes_ + kSmallInput) {
    row.definition = definition.words.substr(0, definition.words_to_last_edge);
  }
  definition.was_used = true;
  ApplyDefinition(open, definition);
  open.row_cells.clear();
  open.row = open.cell = -1;
}

void Builder::ApplyDefinition(Level& level, const RowDefinition& definition) {
  std::vector<Above> merged;
  std::int32_t edge = 0;
  std::size_t above = 0;
  Cell* merging = nullptr;
  for (std::size_t i = 0; i < level.row_cells.size(); ++i) {
    Cell& cell = document_.cells[level.row_cells[i].cell];
    const bool is_defined = i < definition.cells.size();
    const RowDefinition::CellPart part = is_defined ? definition.cells[i] : RowDefinition::CellPart{};
    edge = is_defined ? part.right_edge : edge + std::min(kDefaultCellWidth, INT32_MAX - std::max(edge, 0));
    cell.right_edge = edge;
    if (part.horizontal_merge != 2 || level.row_cells[i].has_text) {
      merging = part.horizontal_merge == 1 ? &cell : nullptr;
    } else if (merging != nullptr && merging->column_span < kMaxSpan) {
      ++merging->column_span;
      cell.column_span = 0;
    }
    if (part.vertical_merge == 0) continue;
    while (above < level.above.size() && level.above[above].right_edge < edge) ++above;
    std::uint32_t owner = level.row_cells[i].cell;
    if (part.vertical_merge == 2 && !level.row_cells[i].has_text && above < level.above.size() &&
        level.above[above].right_edge == edge && document_.cells[level.above[above].owner].row_span < kMaxSpan) {
      owner = level.above[above].owner;
      cell.row_span = 0;
      ++document_.cells[owner].row_span;
    }
    merged.push_back({edge, owner});
  }
  level.above = std::move(merged);
}

void Builder::Finish() {
  CloseLevels(0);
  document_.text.shrink_to_fit();
  if (document_.colors.empty()) document_.colors.push_back(0);
  if (document_.char_formats.empty()) document_.char_formats.emplace_back();
  if (document_.paragraph_formats.empty()) document_.paragraph_formats.emplace_back();
}

}  // namespace tme::rtf
