#include "windows/tree/TreeFinder.h"

#include <algorithm>

#include "shell/DocumentTable.h"
#include "windows/tree/PatternMatcher.h"
#include "windows/tree/TreeDocumentWindow.h"

namespace tme {
namespace {

using Clock = std::chrono::steady_clock;

/// Of the event loop, so that typing and painting go on.
constexpr std::chrono::milliseconds kSlice{8};
/// Between looks at a document that is being read.
constexpr int kWaitForReader = 50;  // milliseconds

}  // namespace

TreeFinder::TreeFinder(TreeDocumentWindow& window, const DocumentTable& documents)
    : window_(window), documents_(documents) {
  runs_.push_back({&window_, std::make_unique<TreeSearch>(Own().MakeSource())});
  connect(&timer_, &QTimer::timeout, this, &TreeFinder::GoOn);
  connect(&window_, &TreeDocumentWindow::ContentChanged, this, [this] { ContentChanged(&window_); });
}

SearchTarget& TreeFinder::Own() const { return window_.Searchable(); }

void TreeFinder::MakeMatcher() {
  matcher_.reset();
  error_.clear();
  if (query_.wanted.isEmpty()) return;
  if (query_.syntax == FindSyntax::Plain) {
    matcher_ = std::make_shared<PlainMatcher>(query_.wanted.toStdString(), query_.search_case, query_.words);
    return;
  }
  auto pattern = std::make_shared<PatternMatcher>(query_.wanted, query_.search_case, query_.words);
  if (pattern->IsValid())
    matcher_ = std::move(pattern);
  else
    error_ = tr("Not an expression at character %1: %2").arg(pattern->ErrorOffset() + 1).arg(pattern->Error());
}

void TreeFinder::SetQuery(const FindQuery& query) {
  const bool is_other_scope = query.scope != query_.scope;
  query_ = query;
  // Whoever goes on typing goes on from where he began.
  if (const SearchPlace selected = Own().Selected(); !present_ || selected != present_place_) origin_ = selected;
  MakeMatcher();
  if (is_other_scope) FillRuns();
  Begin();
  goes_to_first_ = matcher_ != nullptr;
}

void TreeFinder::Stop() {
  query_.wanted.clear();
  MakeMatcher();
  Begin();
}

/// The others are known from the start, whether or not they hold a document.
void TreeFinder::WatchOthers() {
  if (std::exchange(watches_others_, true)) return;
  documents_.ForEach([this](DocumentWindow& document) {
    auto* other = qobject_cast<TreeDocumentWindow*>(&document);
    if (!other || other == &window_) return;
    connect(other, &TreeDocumentWindow::ContentChanged, this, [this, other] { ContentChanged(other); });
    connect(other, &QObject::destroyed, this,
            [this, other] { std::erase_if(runs_, [other](const Run& run) { return run.window == other; }); });
  });
}

void TreeFinder::FillRuns() {
  runs_.resize(1);
  if (query_.scope == FindScope::ThisDocument) return;
  WatchOthers();
  documents_.ForEachOpen([this](DocumentWindow& document) {
    if (auto* other = qobject_cast<TreeDocumentWindow*>(&document); other && other != &window_)
      runs_.push_back({other, std::make_unique<TreeSearch>(other->Searchable().MakeSource())});
  });
}

void TreeFinder::Begin() {
  for (Run& run : runs_) {
    run.search->Start(0, nullptr);
    run.is_stale = matcher_ != nullptr;
  }
  present_.reset();
  goes_to_first_ = false;
  emit Restarted();
  if (matcher_)
    timer_.start(0);
  else
    timer_.stop();
  emit Progressed();
}

void TreeFinder::ContentChanged(TreeDocumentWindow* window) {
  if (!matcher_) return;
  const auto run = std::ranges::find(runs_, window, &Run::window);
  if (run == runs_.end()) {
    if (query_.scope == FindScope::ThisDocument || !window->IsOpen()) return;
    runs_.push_back({window, std::make_unique<TreeSearch>(window->Searchable().MakeSource())});
  } else if (run->is_stale) {
    return;
  } else {
    // Their places may be gone.
    run->search->Start(0, nullptr);
    run->is_stale = true;
  }
  if (window == &window_) {
    present_.reset();
    goes_to_first_ = false;
  }
  emit Restarted();
  timer_.start(0);
}

bool TreeFinder::SearchOn(Clock::time_point until) {
  SearchFields fields = ~query_.left_out;
  for (Run& run : runs_) {
    if (run.is_stale && run.window->IsContentChanging()) {
      timer_.setInterval(kWaitForReader);
      return true;
    }
    if (run.is_stale) run.search->Start(fields, run.window->IsOpen() ? matcher_ : nullptr);
    run.is_stale = false;
    if (run.search->GoOn(until)) return true;
    if (Clock::now() >= until && &run != &runs_.back()) return true;
  }
  return false;
}

void TreeFinder::GoOn() {
  timer_.setInterval(0);
  if (!SearchOn(Clock::now() + kSlice)) timer_.stop();
  GoToFirst();
  emit Progressed();
}

void TreeFinder::Finish() {
  while (timer_.isActive() && SearchOn(Clock::now() + kSlice))
    if (timer_.interval() > 0) return;
  if (!timer_.isActive()) return;
  timer_.stop();
  GoToFirst();
  emit Progressed();
}

void TreeFinder::GoToFirst() {
  const Run& own = runs_.front();
  if (!goes_to_first_ || own.is_stale) return;
  std::size_t index = own.search->FirstFrom(origin_);
  if (index == Hits().size() && !own.search->IsDone()) return;
  goes_to_first_ = false;
  if (Hits().empty()) return;
  GoTo(index % Hits().size());
}

void TreeFinder::GoTo(std::size_t index) {
  const SearchPlace place = Hits()[index].Place();
  Own().GoTo(place);
  present_place_ = place;
  present_ = index;
  emit Progressed();
}

std::optional<std::size_t> TreeFinder::Present() const {
  if (runs_.front().is_stale || Hits().empty()) return std::nullopt;
  const SearchPlace selected = Own().Selected();
  if (present_ && *present_ < Hits().size() && Hits()[*present_].Place() == selected) return present_;
  const std::size_t index = runs_.front().search->FirstFrom(selected);
  if (index < Hits().size() && Hits()[index].Place() == selected) return index;
  return std::nullopt;
}

bool TreeFinder::HasHitsNow() {
  const Run& own = runs_.front();
  if (own.is_stale || !own.search->IsDone()) Finish();
  goes_to_first_ = false;
  return !own.is_stale && !Hits().empty();
}

bool TreeFinder::GoToNext() {
  if (!HasHitsNow()) return false;
  const std::optional<std::size_t> present = Present();
  const std::size_t next = present ? *present + 1 : runs_.front().search->FirstFrom(Own().Selected());
  GoTo(next % Hits().size());
  origin_ = present_place_;
  return true;
}

bool TreeFinder::GoToPrevious() {
  if (!HasHitsNow()) return false;
  const std::size_t from = Present().value_or(runs_.front().search->FirstFrom(Own().Selected()));
  GoTo((from + Hits().size() - 1) % Hits().size());
  origin_ = present_place_;
  return true;
}

void TreeFinder::GoToNextBehind(const SearchPlace& place, SearchField field, std::size_t position) {
  if (!HasHitsNow()) return;
  std::size_t next = runs_.front().search->FirstFrom(place);
  const auto is_before = [&](const SearchHit& hit) {
    return hit.Place() == place && (hit.field < field || (hit.field == field && hit.start < position));
  };
  while (next < Hits().size() && is_before(Hits()[next])) ++next;
  GoTo(next % Hits().size());
  origin_ = present_place_;
}

std::size_t TreeFinder::FoundCount() const {
  std::size_t count = 0;
  for (const Run& run : runs_) count += run.search->Hits().size();
  return count;
}

TreeFinder::Found TreeFinder::At(std::size_t index) const {
  auto run = runs_.begin();
  for (; index >= run->search->Hits().size(); ++run) index -= run->search->Hits().size();
  return {run->window, run->search->Hits()[index]};
}

std::size_t TreeFinder::DocumentCount() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(runs_, [](const Run& run) { return !run.search->Hits().empty(); }));
}

void TreeFinder::Show(std::size_t index) {
  if (index < Hits().size()) {
    goes_to_first_ = false;
    GoTo(index);
    origin_ = present_place_;
    return;
  }
  const Found found = At(index);
  found.window->Searchable().GoTo(found.hit.Place());
}

}  // namespace tme
