#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "documents/search/TextMatcher.h"

namespace tme {

/// What of a tree is searched.
enum class SearchField : std::uint8_t {
  Section,  ///< its name
  Key,      ///< of an entry; of a registry, one component of a path
  Value,    ///< of an entry
  Comment,  ///< its line
  Name,     ///< of a registry value
  Data,     ///< of a registry value, decoded
  Path,     ///< of a registry key, for what goes over more than one component; chosen with Key
};
/// A set of them.
using SearchFields = std::uint32_t;
constexpr SearchField ChosenAs(SearchField field) { return field == SearchField::Path ? SearchField::Key : field; }
constexpr SearchFields FieldBit(SearchField field) { return SearchFields{1} << static_cast<unsigned>(field); }

/// A node, or a record that stands at it.
struct SearchPlace {
  static constexpr std::uint32_t kNoRecord = UINT32_MAX;

  /// Of the tree that is searched. It holds until the document changes.
  const void* node = nullptr;
  std::uint32_t record = kNoRecord;

  bool operator==(const SearchPlace&) const = default;
};

/// A match. Texts of 4 GB and more are not searched beyond that.
struct SearchHit {
  const void* node;
  std::uint32_t record;
  /// Bytes in the field's text.
  std::uint32_t start;
  std::uint32_t size;
  SearchField field;

  SearchPlace Place() const { return {node, record}; }
};

/// Texts of places, in their order, that are searched at once.
class SearchBatch {
 public:
  using Clock = std::chrono::steady_clock;

  void Clear();
  /// skipped: bytes of the field that are not searched, before the text.
  void Add(const SearchPlace& place, SearchField field, std::string_view text, std::size_t skipped = 0) {
    if (text.empty()) return;
    texts_.push_back({place, static_cast<std::uint32_t>(bytes_.size()), static_cast<std::uint32_t>(skipped), field});
    bytes_.append(text).push_back('\0');
  }
  /// A text that no match can be in: it counts, so that looking at many takes no longer.
  void PassOver() { ++passed_over_; }
  bool IsFull() const { return bytes_.size() >= kFullBytes || texts_.size() + passed_over_ >= kFullTexts; }
  /// Adds the hits. Returns false when it is late and texts are left, which the next call goes on with.
  bool FindAll(const TextMatcher& matcher, Clock::time_point until, std::deque<SearchHit>& hits);

 private:
  /// Some tenths of a millisecond.
  static constexpr std::size_t kFullBytes = std::size_t{1} << 16;
  static constexpr std::size_t kFullTexts = 2048;
  /// A text may cost a matcher a millisecond, and a look at the clock as much as a short text.
  static constexpr std::size_t kTextsBetweenLooks = 4;

  struct Text {
    SearchPlace place;
    std::uint32_t start;
    std::uint32_t skipped;
    SearchField field;
  };

  std::size_t EndOf(std::size_t text) const {
    return (text + 1 < texts_.size() ? texts_[text + 1].start : bytes_.size()) - 1;
  }
  void FindAtOnce(const TextMatcher& matcher, std::deque<SearchHit>& hits);
  /// match: in the text. It is no hit of a path where it is one of the key.
  void AddHit(std::size_t index, const TextMatch& match, std::deque<SearchHit>& hits) const;

  /// With a NUL behind each text.
  std::string bytes_;
  std::vector<Text> texts_;
  std::vector<TextMatch> matches_;
  std::size_t passed_over_ = 0;
  /// How many of the texts.
  std::size_t searched_ = 0;
};

/// The places of a tree in the order in which they are shown, for one search. Not to be used once the tree has changed
/// but for Restart.
class SearchSource {
 public:
  virtual ~SearchSource() = default;
  /// Back to the first place. matcher: what it is for; null for nothing.
  virtual void Restart(const TextMatcher* matcher) = 0;
  /// Adds the texts of the next places until the batch is full. Returns false when nothing is left.
  virtual bool Fill(SearchFields fields, SearchBatch& batch) = 0;
  virtual bool IsBefore(const SearchPlace& one, const SearchPlace& other) const = 0;
};

/// A search through one tree, in slices.
class TreeSearch {
 public:
  explicit TreeSearch(std::unique_ptr<SearchSource> source) : source_(std::move(source)) {}

  /// Begins anew; what was found is forgotten. matcher: null finds nothing.
  void Start(SearchFields fields, std::shared_ptr<const TextMatcher> matcher);
  /// Searches until then, and at least a few texts. Returns false once all is searched.
  bool GoOn(std::chrono::steady_clock::time_point until);
  bool IsDone() const { return is_done_; }
  /// In the order of their places. They hold until the tree changes.
  const std::deque<SearchHit>& Hits() const { return hits_; }
  /// The index of the first hit that stands at the place or behind it; the count of hits if there is none yet.
  std::size_t FirstFrom(const SearchPlace& place) const;

 private:
  std::unique_ptr<SearchSource> source_;
  std::shared_ptr<const TextMatcher> matcher_;
  SearchFields fields_ = 0;
  SearchBatch batch_;
  std::deque<SearchHit> hits_;
  bool is_batch_done_ = true;
  /// Nothing comes behind the batch.
  bool is_filled_ = false;
  bool is_done_ = true;
};

}  // namespace tme
