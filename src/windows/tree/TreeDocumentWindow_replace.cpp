// Replacing in the tree of a document, and in those of all open ones.
#include <QAbstractItemView>
#include <QCoreApplication>

#include "documents/EditableDocument.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/LongWork.h"
#include "shell/WaitCursor.h"
#include "shell/mdform_TMEditor.h"
#include "windows/tree/FindBar.h"
#include "windows/tree/ReplacePreview.h"
#include "windows/tree/SearchTarget.h"
#include "windows/tree/TreeDocumentWindow.h"
#include "windows/tree/TreeFinder.h"

namespace tme {
namespace {

/// Between two looks at the progress of long work.
constexpr std::size_t kAtOnce = 64;
constexpr std::chrono::milliseconds kSearchSlice{30};

bool IsInSameText(const TreeFinder::Found& one, const TreeFinder::Found& other) {
  return one.window == other.window && one.hit.Place() == other.hit.Place() && one.hit.field == other.hit.field;
}

/// While it stands, views of a document show nothing of what changes: each row that one updates costs a walk over its
/// rows.
class HiddenViews {
 public:
  explicit HiddenViews(const SearchTarget& target) : views_(target.Views()) {
    for (QAbstractItemView* view : views_) view->hide();
  }
  ~HiddenViews() {
    for (QAbstractItemView* view : views_) view->show();
  }
  HiddenViews(const HiddenViews&) = delete;
  HiddenViews& operator=(const HiddenViews&) = delete;

 private:
  const std::vector<QAbstractItemView*> views_;
};

/// False when the user stops it.
bool FinishSearch(TreeFinder& finder, LongWork& work) {
  while (!finder.Finish(kSearchSlice)) {
    if (!work.GoOn(0, 1)) return false;
    // Whoever reads a document gets his turn.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  }
  return true;
}

/// Plans for all hits of a finder, each text once. Nothing when the user stops it, or the hits changed meanwhile.
std::vector<PlannedReplacement> PlanAll(TreeFinder& finder, const std::string& with, LongWork& work) {
  std::vector<PlannedReplacement> plans;
  std::unique_ptr<Replacer> replacer;
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the finder may get another one meanwhile.
  const std::shared_ptr<const TextMatcher> matcher = finder.Matcher();
  std::optional<TreeFinder::Found> last;
  const std::size_t count = finder.FoundCount();
  for (std::size_t index = 0; index < count; ++index) {
    if (index % kAtOnce == 0 && (!work.GoOn(index, count) || finder.FoundCount() != count)) return {};
    const TreeFinder::Found found = finder.At(index);
    if (last && IsInSameText(*last, found)) continue;
    if (!last || last->window != found.window) replacer = found.window->Searchable().MakeReplacer();
    last = found;
    auto plan = replacer->Plan(found.hit.Place(), found.hit.field, {.matcher = *matcher, .with = with});
    if (!plan) continue;
    const bool is_possible = plan->refusal.isEmpty();
    plans.push_back({found.window, std::move(*plan), is_possible});
  }
  return plans;
}

}  // namespace

void TreeDocumentWindow::SearchReplace() {
  OpenFindBar();
  find_bar_->ShowReplace();
}

void TreeDocumentWindow::ReplaceOne() {
  const std::optional<std::size_t> chosen = finder_->Chosen();
  if (!chosen) return finder_->GoToNext();
  const auto [window, hit] = finder_->At(*chosen);
  const std::string with = find_bar_->ReplaceText().toStdString();
  const std::unique_ptr<Replacer> replacer = window->Searchable().MakeReplacer();
  const std::size_t size_before = window->Searchable().TextOf(hit.Place(), hit.field).size();
  const std::optional<Replacement> plan =
      replacer->Plan(hit.Place(), hit.field, {.matcher = *finder_->Matcher(), .with = with, .only = hit.start});
  find_bar_->Say(plan ? plan->refusal : QString());
  if (plan && !plan->refusal.isEmpty()) return;
  std::size_t end = hit.start + hit.size;
  if (plan) {
    const EditableDocument::Step step(window->Searchable().Edited(), EditName::Replace);
    if (!replacer->Apply(*plan)) return find_bar_->Say(tr("The file cannot hold this."));
    window->SetChanged(true);
    find_bar_->ForgetTyping();
    end += plan->after.size() - size_before;
  }
  finder_->GoToNextBehind(window, hit.Place(), hit.field, end);
}

void TreeDocumentWindow::ReplaceAll() {
  std::vector<PlannedReplacement> plans;
  {
    LongWork work(&global_.frame, tr("Looking for what is to be replaced"));
    if (!FinishSearch(*finder_, work) || !IsOpen()) return;
    plans = PlanAll(*finder_, find_bar_->ReplaceText().toStdString(), work);
  }
  if (plans.empty() || !IsOpen()) return;
  const std::size_t hits = finder_->FoundCount();
  ReplacePreview preview(plans, this);
  // Documents may change while a dialog stands.
  if (preview.exec() != QDialog::Accepted || finder_->FoundCount() != hits || finder_->IsSearching()) return;
  const WaitCursor wait_cursor;
  std::size_t done = 0, refused = 0;
  for (auto first = plans.begin(); first != plans.end();) {
    const auto end =
        std::find_if(first, plans.end(), [first](const auto& plan) { return plan.window != first->window; });
    first->window->Replace({first, end}, done, refused);
    first = end;
  }
  QString said = Counted(done, tr("1 text was replaced."), tr("%1 texts were replaced."));
  if (refused > 0)
    said += u' ' + Counted(refused, tr("1 text stays: the file cannot hold what it would be."),
                           tr("%1 texts stay: the file cannot hold what they would be."));
  find_bar_->Say(said);
  find_bar_->ForgetTyping();
}

void TreeDocumentWindow::Replace(std::span<const PlannedReplacement> plans, std::size_t& done, std::size_t& refused) {
  const std::size_t done_before = done;
  const std::unique_ptr<Replacer> replacer = Searchable().MakeReplacer();
  {
    const HiddenViews hidden(Searchable());
    const EditableDocument::Step step(Searchable().Edited(), EditName::Replace);
    for (const PlannedReplacement& plan : plans)
      if (plan.is_chosen) ++(replacer->Apply(plan.replacement) ? done : refused);
  }
  if (done > done_before) SetChanged(true);
  Searchable().GoTo(Searchable().Selected());
}

}  // namespace tme
