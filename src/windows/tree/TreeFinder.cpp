#include "windows/tree/TreeFinder.h"

#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

#include "shell/DocumentTable.h"
#include "windows/tree/PatternMatcher.h"
#include "windows/tree/TreeDocumentWindow.h"

namespace tme {
namespace {

using Clock = std::chrono::steady_clock;

/// Of the event loop, so that typing and painting go on.
constexpr std::chrono::milliseconds kSlice{8};
/// A user may wait for a key that he pressed.
constexpr std::chrono::milliseconds kMoment{80};
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
    error_ = pattern->ErrorOffset() < query_.wanted.size()
                 ? tr("Not an expression at character %1: %2").arg(pattern->ErrorOffset() + 1).arg(pattern->Error())
                 : tr("Not an expression, at its end: %1").arg(pattern->Error());
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
    connect(other, &QObject::destroyed, this, [this, other] {
      shown_elsewhere_.reset();
      std::erase_if(runs_, [other](const Run& run) { return run.window == other; });
    });
  });
}

void TreeFinder::FillRuns() {
  runs_.resize(1);
  if (query_.scope == FindScope::ThisDocument) return;
  WatchOthers();
  std::vector<TreeDocumentWindow*> windows;
  documents_.ForEachOpen([&](DocumentWindow& document) {
    if (auto* window = qobject_cast<TreeDocumentWindow*>(&document)) windows.push_back(window);
  });
  // Whoever goes on from document to document comes to all of them.
  const auto own = std::ranges::find(windows, &window_);
  if (own != windows.end()) std::rotate(windows.begin(), own, windows.end());
  for (TreeDocumentWindow* window : windows)
    if (window != &window_) runs_.push_back({window, std::make_unique<TreeSearch>(window->Searchable().MakeSource())});
}

void TreeFinder::Begin() {
  for (Run& run : runs_) {
    run.search->Start(0, nullptr);
    run.is_stale = matcher_ != nullptr;
  }
  present_.reset();
  shown_elsewhere_.reset();
  wish_ = nullptr;
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
  shown_elsewhere_.reset();
  wish_ = nullptr;
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
  if (const auto wish = IsSearching() ? nullptr : std::exchange(wish_, nullptr)) wish();
  emit Progressed();
}

bool TreeFinder::Finish(std::chrono::milliseconds most) {
  if (!IsSearching()) return true;
  const Clock::time_point until = Clock::now() + most;
  while (SearchOn(until))
    if (timer_.interval() > 0 || Clock::now() >= until) return false;
  timer_.stop();
  GoToFirst();
  emit Progressed();
  return true;
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
  present_place_ = place;
  present_ = index;
  shown_elsewhere_.reset();
  {
    const QScopedValueRollback going(is_going_, true);
    Own().GoTo(place);
  }
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

bool TreeFinder::HasHitsNow(const std::function<void()>& what) {
  const Run& own = runs_.front();
  const bool is_known = runs_.size() == 1 && !own.is_stale && own.search->IsDone();
  if (!is_known && !Finish(kMoment)) {
    goes_to_first_ = false;
    wish_ = what;
    return false;
  }
  goes_to_first_ = false;
  return FoundCount() > 0;
}

void TreeFinder::GoToNext() {
  if (!HasHitsNow([this] { GoToNext(); })) return;
  const std::optional<std::size_t> present = Present();
  const std::size_t next = present ? *present + 1 : runs_.front().search->FirstFrom(Own().Selected());
  if (next >= Hits().size() && FoundCount() > Hits().size()) return emit LeftDocument(Hits().size());
  GoTo(next % Hits().size());
  origin_ = present_place_;
}

void TreeFinder::GoToPrevious() {
  if (!HasHitsNow([this] { GoToPrevious(); })) return;
  const std::size_t from = Present().value_or(Hits().empty() ? 0 : runs_.front().search->FirstFrom(Own().Selected()));
  if (from == 0 && FoundCount() > Hits().size()) return emit LeftDocument(FoundCount() - 1);
  GoTo((from + Hits().size() - 1) % Hits().size());
  origin_ = present_place_;
}

void TreeFinder::GoToNextBehind(const TreeDocumentWindow* window, const SearchPlace& place, SearchField field,
                                std::size_t position) {
  if (!HasHitsNow([=, this] { GoToNextBehind(window, place, field, position); })) return;
  const auto run = std::ranges::find(runs_, window, &Run::window);
  if (run == runs_.end()) return;
  const std::deque<SearchHit>& hits = run->search->Hits();
  std::size_t next = run->search->FirstFrom(place);
  const auto is_before = [&](const SearchHit& hit) {
    return hit.Place() == place && (hit.field < field || (hit.field == field && hit.start < position));
  };
  while (next < hits.size() && is_before(hits[next])) ++next;
  // The own document is gone round, from another one the next follows.
  if (window == &window_ && next == hits.size() && !hits.empty()) next = 0;
  for (auto before = runs_.begin(); before != run; ++before) next += before->search->Hits().size();
  Show(next % FoundCount());
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
  shown_elsewhere_ = index;
  selected_here_ = Own().Selected();
  emit Progressed();
}

std::optional<std::size_t> TreeFinder::Chosen() const {
  if (!shown_elsewhere_ || *shown_elsewhere_ >= FoundCount()) return Present();
  const Found found = At(*shown_elsewhere_);
  const bool is_selected =
      Own().Selected() == selected_here_ && found.window->Searchable().Selected() == found.hit.Place();
  return is_selected ? shown_elsewhere_ : Present();
}

void TreeFinder::FollowSelection() {
  if (matcher_ && !is_going_) emit Progressed();
}

}  // namespace tme
