#include "documents/search/TreeSearch.h"

#include <algorithm>
#include <utility>

#include "documents/search/PathText.h"

namespace tme {

void SearchBatch::Clear() {
  bytes_.clear();
  texts_.clear();
  passed_over_ = 0;
  searched_ = 0;
}

void SearchBatch::AddHit(std::size_t index, const TextMatch& match, std::deque<SearchHit>& hits) const {
  const Text& text = texts_[index];
  const std::string_view bytes = bytes_;
  if (text.field == SearchField::Path && !ReachesOverParts(bytes.substr(text.start, EndOf(index) - text.start), match))
    return;
  hits.push_back({.node = text.place.node,
                  .record = text.place.record,
                  .start = text.skipped + static_cast<std::uint32_t>(match.start),
                  .size = static_cast<std::uint32_t>(match.end - match.start),
                  .field = text.field});
}

bool SearchBatch::FindAll(const TextMatcher& matcher, Clock::time_point until, std::deque<SearchHit>& hits) {
  if (matcher.TakesManyTexts()) {
    FindAtOnce(matcher, hits);
    return true;
  }
  const std::string_view bytes = bytes_;
  while (searched_ < texts_.size()) {
    matches_.clear();
    const Text& text = texts_[searched_];
    matcher.FindAll(bytes.substr(text.start, EndOf(searched_) - text.start), matches_);
    for (const TextMatch& match : matches_) AddHit(searched_, match, hits);
    ++searched_;
    if (searched_ % kTextsBetweenLooks == 0 && Clock::now() >= until) break;
  }
  return searched_ == texts_.size();
}

void SearchBatch::FindAtOnce(const TextMatcher& matcher, std::deque<SearchHit>& hits) {
  matches_.clear();
  matcher.FindAll(bytes_, matches_);
  std::size_t index = 0;
  for (const TextMatch& match : matches_) {
    while (EndOf(index) <= match.start) ++index;
    const Text& text = texts_[index];
    if (match.end <= EndOf(index)) AddHit(index, {match.start - text.start, match.end - text.start}, hits);
  }
}

void TreeSearch::Start(SearchFields fields, std::shared_ptr<const TextMatcher> matcher) {
  matcher_ = std::move(matcher);
  fields_ = fields;
  hits_ = {};
  batch_.Clear();
  is_batch_done_ = true;
  is_filled_ = false;
  is_done_ = matcher_ == nullptr;
  source_->Restart(matcher_.get());
}

bool TreeSearch::GoOn(std::chrono::steady_clock::time_point until) {
  while (!is_done_) {
    if (is_batch_done_) {
      batch_.Clear();
      is_filled_ = !source_->Fill(fields_, batch_);
    }
    is_batch_done_ = batch_.FindAll(*matcher_, until, hits_);
    is_done_ = is_batch_done_ && is_filled_;
    if (SearchBatch::Clock::now() >= until) break;
  }
  return !is_done_;
}

std::size_t TreeSearch::FirstFrom(const SearchPlace& place) const {
  const auto found = std::partition_point(hits_.begin(), hits_.end(),
                                          [&](const SearchHit& hit) { return source_->IsBefore(hit.Place(), place); });
  return static_cast<std::size_t>(found - hits_.begin());
}

}  // namespace tme
