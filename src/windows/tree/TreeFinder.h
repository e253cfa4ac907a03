#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "documents/search/TreeSearch.h"
#include "windows/tree/SearchTarget.h"

namespace tme {

class DocumentTable;
class TreeDocumentWindow;

enum class FindSyntax : std::uint8_t { Plain, Pattern };
enum class FindScope : std::uint8_t { ThisDocument, AllDocuments };

/// What is sought, and where.
struct FindQuery {
  QString wanted;
  SearchCase search_case = SearchCase::Ignore;
  SearchWords words = SearchWords::Any;
  FindSyntax syntax = FindSyntax::Plain;
  SearchFields left_out = 0;
  FindScope scope = FindScope::ThisDocument;

  bool operator==(const FindQuery&) const = default;
};

/// The search of one tree window: through its own document, and where that is wanted through all open ones that have a
/// tree, in slices between the events. What it finds follows their edits.
class TreeFinder : public QObject {
  Q_OBJECT

 public:
  /// A hit, and the window of its document.
  struct Found {
    TreeDocumentWindow* window;
    SearchHit hit;
  };

  /// Both outlive it.
  TreeFinder(TreeDocumentWindow& window, const DocumentTable& documents);

  const FindQuery& Query() const { return query_; }
  /// Searches anew. With an empty text nothing is found. What is found first from the selected place on is gone to.
  void SetQuery(const FindQuery& query);
  /// Why the expression is none; empty when it is one.
  const QString& Error() const { return error_; }
  /// What finds the marks in texts; null when nothing is sought.
  const std::shared_ptr<const TextMatcher>& Matcher() const { return matcher_; }
  bool LooksIn(SearchField field) const { return (query_.left_out & FieldBit(ChosenAs(field))) == 0; }
  /// Forgets what is sought, and all hits.
  void Stop();

  bool IsSearching() const { return timer_.isActive(); }
  /// Searches on now for at most this long; does not wait for a document that is being read. Returns whether all is
  /// searched.
  bool Finish(std::chrono::milliseconds most);

  /// Of the window's own document.
  const std::deque<SearchHit>& Hits() const { return runs_.front().search->Hits(); }
  /// The index of the hit that is selected; null when another place is.
  std::optional<std::size_t> Present() const;
  /// Goes to the next or previous one from the selected place, around the ends; where several documents are searched,
  /// on into the next of them. When the search takes longer than a moment, once it is done.
  void GoToNext();
  void GoToPrevious();
  /// Shows the next one of a document from this many bytes of a text on.
  void GoToNextBehind(const TreeDocumentWindow* window, const SearchPlace& place, SearchField field,
                      std::size_t position);

  // The hits of all documents that are searched, those of the own one first.
  std::size_t FoundCount() const;
  /// index: below FoundCount.
  Found At(std::size_t index) const;
  /// How many documents have hits.
  std::size_t DocumentCount() const;
  /// Selects the hit in its window, which stays where it is.
  void Show(std::size_t index);
  /// The hit that was shown last, among those of all documents, or else the selected one of the own; null when
  /// something else is selected now.
  std::optional<std::size_t> Chosen() const;
  /// Says so when something else is selected in the own document.
  void FollowSelection();

 signals:
  /// The hits there were are gone.
  void Restarted();
  /// More hits, or all of them, or another one is selected.
  void Progressed();
  /// The user goes on to a hit of another document.
  void LeftDocument(std::size_t index);

 private:
  struct Run {
    TreeDocumentWindow* window;
    std::unique_ptr<TreeSearch> search;
    /// The document has changed: its hits are no longer there.
    bool is_stale = true;
  };

  void MakeMatcher();
  void WatchOthers();
  void FillRuns();
  void Begin();
  void ContentChanged(TreeDocumentWindow* window);
  /// Searches for a slice; false when all is searched.
  bool SearchOn(std::chrono::steady_clock::time_point until);
  void GoOn();
  /// Whether there are hits to go to. When it is not known in a moment, what is to be done is done later.
  bool HasHitsNow(const std::function<void()>& what);
  /// Once it is known: to the first hit from where the search began.
  void GoToFirst();
  SearchTarget& Own() const;
  void GoTo(std::size_t index);

  TreeDocumentWindow& window_;
  const DocumentTable& documents_;
  FindQuery query_;
  QString error_;
  std::shared_ptr<const TextMatcher> matcher_;
  /// The own document's stands first.
  std::vector<Run> runs_;
  QTimer timer_;
  /// Where the search began, until the user goes on.
  SearchPlace origin_;
  /// The place of the hit that was gone to, and its index.
  SearchPlace present_place_;
  std::optional<std::size_t> present_;
  /// A hit of another document that was shown, and what was selected in the own one then.
  std::optional<std::size_t> shown_elsewhere_;
  SearchPlace selected_here_;
  /// Waits for the end of the search.
  std::function<void()> wish_;
  bool goes_to_first_ = false;
  bool is_going_ = false;
  bool watches_others_ = false;
};

}  // namespace tme
