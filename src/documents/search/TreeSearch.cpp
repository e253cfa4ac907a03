#include "documents/search/TreeSearch.h"

#include <algorithm>
#include <utility>

namespace tme {

void SearchBatch::Clear() {
  bytes_.clear();
  texts_.clear();
}

void SearchBatch::AddHit(const Text& text, const TextMatch& match, std::deque<SearchHit>& hits) const {
  hits.push_back({.node = text.place.node,
                  .record = text.place.record,
                  .start = static_cast<std::uint32_t>(match.start),
                  .size = static_cast<std::uint32_t>(match.end - match.start),
                  .field = text.field});
}

void SearchBatch::FindAll(const TextMatcher& matcher, std::deque<SearchHit>& hits) {
  const std::string_view bytes = bytes_;
  matches_.clear();
  if (!matcher.TakesManyTexts()) {
    for (std::size_t index = 0; index < texts_.size(); ++index) {
      matches_.clear();
      const Text& text = texts_[index];
      matcher.FindAll(bytes.substr(text.start, EndOf(index) - text.start), matches_);
      for (const TextMatch& match : matches_) AddHit(text, match, hits);
    }
    return;
  }
  matcher.FindAll(bytes, matches_);
  std::size_t index = 0;
  for (const TextMatch& match : matches_) {
    while (EndOf(index) <= match.start) ++index;
    const Text& text = texts_[index];
    if (match.end <= EndOf(index)) AddHit(text, {match.start - text.start, match.end - text.start}, hits);
  }
}

void TreeSearch::Start(SearchFields fields, std::shared_ptr<const TextMatcher> matcher) {
  matcher_ = std::move(matcher);
  fields_ = fields;
  hits_ = {};
  is_done_ = matcher_ == nullptr;
  source_->Restart();
}

bool TreeSearch::GoOn(std::chrono::steady_clock::time_point until) {
  while (!is_done_) {
    batch_.Clear();
    is_done_ = !source_->Fill(fields_, batch_);
    batch_.FindAll(*matcher_, hits_);
    if (std::chrono::steady_clock::now() >= until) break;
  }
  return !is_done_;
}

std::size_t TreeSearch::FirstFrom(const SearchPlace& place) const {
  const auto found = std::partition_point(hits_.begin(), hits_.end(),
                                          [&](const SearchHit& hit) { return source_->IsBefore(hit.Place(), place); });
  return static_cast<std::size_t>(found - hits_.begin());
}

}  // namespace tme
