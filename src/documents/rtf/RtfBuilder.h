#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"

/// What the reader pours into. Internal to the reader.
namespace tme::rtf {

/// Finds equal entries of a vector that it does not own.
class InternTable {
 public:
  /// The index of `item` in `items`, to which it is added when it is new. `limit` entries at most; then 0, and
  /// `*over_limit` counts.
  template <typename Item>
  std::uint32_t Intern(std::vector<Item>& items, const Item& item, std::size_t hash, std::size_t limit,
                       std::uint32_t* over_limit) {
    if ((items.size() + 1) * 2 > places_.size()) Grow();
    for (std::size_t i = hash & (places_.size() - 1);; i = (i + 1) & (places_.size() - 1)) {
      if (places_[i].index_plus_one == 0) {
        if (items.size() >= limit) return ++*over_limit, 0;
        items.push_back(item);
        places_[i] = {static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(items.size())};
        return places_[i].index_plus_one - 1;
      }
      if (places_[i].hash == static_cast<std::uint32_t>(hash) && items[places_[i].index_plus_one - 1] == item) {
        return places_[i].index_plus_one - 1;
      }
    }
  }

 private:
  struct Place {
    std::uint32_t hash = 0;
    std::uint32_t index_plus_one = 0;
  };
  void Grow();

  std::vector<Place> places_;
};

/// The definition of a table row, between \trowd and its last \cellx.
struct RowDefinition {
  struct CellPart {
    std::int32_t right_edge = 0;
    std::uint8_t vertical_merge = 0;    ///< 1 first, 2 continued
    std::uint8_t horizontal_merge = 0;  ///< the same
  };
  std::string words;
  std::size_t words_to_last_edge = 0;
  std::vector<CellPart> cells;
  CellPart next;
  bool is_open = false;  ///< more words of it may come
  bool was_used = false;
};

/// What a kept control word does to the one of its name before it.
enum class Extra : std::uint8_t { Append, Replace, Remove };

/// Fills a document: text, runs, paragraphs and tables, in their order. Equal looks become one.
class Builder {
 public:
  /// `input_bytes`: bounds what is repeated.
  Builder(RtfDocument& document, std::size_t input_bytes) : document_(document), input_bytes_(input_bytes) {}

  std::uint32_t Intern(const CharFormat& format);
  std::uint32_t Intern(const ParagraphFormat& format);
  /// `old` with one more control word, or (Remove) without the one that is called `name`; indices as in
  /// CharFormat::extra. The word must live as long as this.
  std::uint32_t AddExtra(std::uint32_t old, std::string_view word, std::string_view name, Extra how);

  void AddText(std::string_view text, std::uint32_t format);
  void AddObject(Object&& object, std::uint32_t format);

  /// Whether anything stands behind the last paragraph's end; `of_text`: other than what is invisible.
  bool HasPending() const { return document_.runs.size() > first_run_; }
  bool HasVisiblePending() const { return visible_pending_; }
  /// Grows with whatever is added to the text.
  std::size_t Additions() const { return document_.text.size() + document_.paragraphs.size() + objects_added_; }

  /// Ends the paragraph. `table_level`: 0 outside tables, 1 in a cell, 2 in a cell of a table in a cell …
  void EndParagraph(const ParagraphFormat& format, std::uint32_t mark_format, int table_level);
  void EndCell(int level);
  void EndRow(int level, RowDefinition& definition);
  /// How many tables stand around the place of the last paragraph or cell.
  int OpenLevels() const { return static_cast<int>(levels_.size()); }
  bool HasOpenCell(int level) const {
    return OpenLevels() >= level && levels_[static_cast<std::size_t>(level) - 1].cell >= 0;
  }
  void Finish();

 private:
  struct RowCell {
    std::uint32_t cell = 0;
    bool has_text = false;
  };
  struct Above {
    std::int32_t right_edge = 0;
    std::uint32_t owner = 0;
  };
  struct Level {
    std::uint32_t table = 0;
    std::int64_t row = -1;
    std::int64_t cell = -1;
    bool is_used = false;  ///< not only opened on the way to a deeper one
    std::vector<RowCell> row_cells;
    std::vector<Above> above;  ///< the merged cells of the row before
  };

  std::uint32_t FieldOf(std::uint32_t format) const { return document_.char_formats[format].field; }
  std::int32_t OpenCell(int level);
  void CloseLevels(std::size_t stay_open);
  void ApplyDefinition(Level& level, const RowDefinition& definition);

  RtfDocument& document_;
  std::size_t input_bytes_;
  InternTable char_formats_;
  InternTable paragraph_formats_;
  InternTable extras_;
  std::size_t extra_bytes_ = 0;
  std::size_t tab_bytes_ = 0;
  std::size_t repeated_bytes_ = 0;
  std::size_t first_run_ = 0;  ///< of the paragraph
  bool visible_pending_ = false;
  std::size_t objects_added_ = 0;
  std::vector<Level> levels_;

  struct Transition {
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    std::string_view word{};
  };
  std::vector<Transition> transitions_;
};

}  // namespace tme::rtf
