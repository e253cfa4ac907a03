#include "documents/rtf/RtfFormatWords.h"

#include <algorithm>

#include "documents/rtf/RtfReader.h"

namespace tme::rtf {
namespace {

constexpr std::int32_t kMaxHalfPoints = 3276;
constexpr std::uint32_t kDefaultHalfPoints = 24;
constexpr std::int32_t kMaxListLevel = 8;
constexpr std::size_t kMaxTabs = 64;

void AddTab(std::int32_t position, TabKind kind, ParagraphState& paragraph, Losses& losses) {
  if (paragraph.format.tabs.size() < kMaxTabs) {
    paragraph.format.tabs.push_back({position, kind, paragraph.next_leader});
  } else {
    ++losses.limits;
  }
  paragraph.next_tab = TabKind::Left;
  paragraph.next_leader = TabLeader::None;
}

void FindList(const ListTables& lists, ParagraphFormat& format) {
  if (format.list_id == 0) return;
  const ListStyle style = lists.Find(format.list_id, format.list_level);
  format.list = style.kind;
  format.list_start = style.start;
}

}  // namespace

void ApplyCharacterWord(const ControlWord& word, const Token& token, const ColorTable& colors, CharFormat& format) {
  const bool is_on = token.IsOn();
  switch (word.control) {
    case Control::FontSize:
      format.half_points =
          token.value > 0 ? static_cast<std::uint32_t>(std::min(token.value, kMaxHalfPoints)) : kDefaultHalfPoints;
      return;
    case Control::Color:
      format.color = colors.IndexOf(token.value);
      return;
    case Control::Background:
      format.background = colors.IndexOf(token.value);
      return;
    case Control::Bold:
      format.bold = is_on;
      return;
    case Control::Italic:
      format.italic = is_on;
      return;
    case Control::Hidden:
      format.hidden = is_on;
      return;
    case Control::Underlined:
      format.underline = is_on ? static_cast<Underline>(word.value) : Underline::None;
      return;
    case Control::Struck:
      format.strike = is_on ? static_cast<Strike>(word.value) : Strike::None;
      return;
    case Control::Scripted:
      format.script = is_on ? static_cast<Script>(word.value) : Script::Normal;
      return;
    case Control::Raised: {
      const bool is_up = (word.value > 0) == (token.value > 0);
      format.script = !is_on ? Script::Normal : is_up ? Script::Super : Script::Sub;
      return;
    }
    case Control::Capital:
      format.capitals = is_on ? static_cast<Capitals>(word.value) : Capitals::None;
      return;
    default:
      return;
  }
}

void ApplyParagraphWord(const ControlWord& word, const Token& token, const ListTables& lists, ParagraphState& paragraph,
                        Losses& losses) {
  ParagraphFormat& format = paragraph.format;
  const std::int32_t value = token.value;
  switch (word.control) {
    case Control::Aligned:
      format.alignment = static_cast<Alignment>(word.value);
      return;
    case Control::IndentLeft:
      format.left = value;
      return;
    case Control::IndentRight:
      format.right = value;
      return;
    case Control::IndentFirst:
      format.first_line = value;
      return;
    case Control::SpaceBefore:
      format.space_before = value;
      return;
    case Control::SpaceAfter:
      format.space_after = value;
      return;
    case Control::LineSpacing:
      format.line_spacing = value;
      return;
    case Control::LineMultiple:
      format.line_multiple = token.IsOn();
      return;
    case Control::TabAt:
      return AddTab(value, word.value != 0 ? TabKind::Bar : paragraph.next_tab, paragraph, losses);
    case Control::TabKindNext:
      paragraph.next_tab = static_cast<TabKind>(word.value);
      return;
    case Control::TabLeaderNext:
      paragraph.next_leader = static_cast<TabLeader>(word.value);
      return;
    case Control::PageBreakBefore:
      format.page_break_before = token.IsOn();
      return;
    case Control::ListOverride:
      format.list_id = value;
      return FindList(lists, format);
    case Control::ListLevel:
      format.list_level = static_cast<std::uint8_t>(std::clamp(value, 0, kMaxListLevel));
      return FindList(lists, format);
    case Control::InTable:
      paragraph.is_in_table = token.IsOn();
      return;
    case Control::TableDepth:
      paragraph.table_depth = std::clamp(value, 0, kMaxTableLevel);
      losses.deep_tables = losses.deep_tables || value > kMaxTableLevel;
      return;
    default:
      return;
  }
}

}  // namespace tme::rtf
