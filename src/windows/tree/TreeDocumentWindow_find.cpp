// Finding in the tree of a document: the bar, the marks and the list of hits.
#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>

#include "documents/search/PathText.h"
#include "shell/DocumentArea.h"
#include "shell/Global.h"
#include "windows/tree/FindBar.h"
#include "windows/tree/HitList.h"
#include "windows/tree/HitMarks.h"
#include "windows/tree/TreeDocumentWindow.h"
#include "windows/tree/TreeFinder.h"
#include "windows/tree/TreeItemModel.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Of the last search in any window.
FindQuery last_query;

/// Pixels; in a narrower window the list of hits comes below the tree.
constexpr int kWidthForList = 800;
/// Of UTF-8.
constexpr std::size_t kMostBytesOfUnit = 3;

/// What is marked of an item of the document's views.
std::vector<MarkedRange> MarksAt(const QModelIndex& index, qsizetype in_sight, const TreeFinder& finder,
                                 const SearchTarget& target) {
  if (!finder.Matcher()) return {};
  std::vector<MarkedRange> marks;
  std::vector<TextMatch> matches;
  for (const SearchTarget::ShownField& shown : target.ShownAt(index, *finder.Matcher())) {
    if (!finder.LooksIn(shown.field)) continue;
    matches.clear();
    const std::string_view text = shown.text;
    const qsizetype units_left = std::max<qsizetype>(0, in_sight - shown.units_before);
    finder.Matcher()->FindAll(text, matches, shown.hidden + static_cast<std::size_t>(units_left) * kMostBytesOfUnit);
    const auto units = [&](std::size_t from, std::size_t to) {
      return QString::fromUtf8(text.data() + from, static_cast<qsizetype>(to - from)).size();
    };
    qsizetype at = shown.units_before;
    std::size_t from = shown.hidden;
    for (const TextMatch& match : matches) {
      if (shown.field == SearchField::Path && !ReachesOverParts(text, match)) continue;
      const std::size_t start = std::max(match.start, shown.hidden);
      at += units(from, start);
      const qsizetype size = units(start, match.end);
      marks.push_back({at, size});
      at += size;
      from = match.end;
    }
  }
  return marks;
}

}  // namespace

SearchTarget& TreeDocumentWindow::Searchable() {
  if (!search_target_) search_target_ = MakeSearchTarget();
  return *search_target_;
}

void TreeDocumentWindow::WatchContent(const TreeItemModelBase& model) {
  content_ = &model;
  for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
    connect(&model, signal, this, &TreeDocumentWindow::ContentChanged);
  connect(&model, &QAbstractItemModel::dataChanged, this, &TreeDocumentWindow::ContentChanged);
  connect(&model, &QAbstractItemModel::modelReset, this, &TreeDocumentWindow::ContentChanged);
}

bool TreeDocumentWindow::IsContentChanging() const { return content_ && content_->IsChanging(); }

QSplitter& TreeDocumentWindow::Panes() {
  if (panes_) return *panes_;
  auto* client = findChild<QWidget*>(u"client"_s, Qt::FindDirectChildrenOnly);
  panes_ = new QSplitter(this);
  panes_->setObjectName(u"panes"_s);
  panes_->setAccessibleName(tr("Divider between the tree and what stands beside it"));
  panes_->setChildrenCollapsible(false);
  delete layout()->replaceWidget(client, panes_);
  static_cast<QVBoxLayout*>(layout())->setStretchFactor(panes_, 1);
  panes_->addWidget(client);
  panes_->setStretchFactor(0, 1);
  return *panes_;
}

void TreeDocumentWindow::BuildFindBar() {
  if (find_bar_) return;
  SearchTarget& target = Searchable();
  finder_ = new TreeFinder(*this, global_.documents);
  finder_->setParent(this);
  find_bar_ = new FindBar(*finder_, target.Fields(), this);
  layout()->addWidget(find_bar_);
  connect(find_bar_, &FindBar::NextWanted, this, &TreeDocumentWindow::SearchAgain);
  connect(find_bar_, &FindBar::PreviousWanted, this, &TreeDocumentWindow::SearchPrevious);
  connect(find_bar_, &FindBar::CloseWanted, this, &TreeDocumentWindow::CloseFindBar);
  connect(find_bar_, &FindBar::ReplaceWanted, this, &TreeDocumentWindow::ReplaceOne);
  connect(find_bar_, &FindBar::ReplaceAllWanted, this, &TreeDocumentWindow::ReplaceAll);
  connect(find_bar_, &FindBar::ListWanted, this, &TreeDocumentWindow::ShowHitList);
  connect(find_bar_, &FindBar::ListFocusWanted, this, [this] {
    if (hit_list_ && hit_list_->isVisible()) hit_list_->setFocus();
  });
  connect(finder_, &TreeFinder::LeftDocument, this, &TreeDocumentWindow::GoToHit);
  const auto marks = [this](const QModelIndex& index, qsizetype units) {
    return MarksAt(index, units, *finder_, Searchable());
  };
  for (QAbstractItemView* view : target.Views()) {
    static_cast<HitMarks*>(view->itemDelegate())->SetMarks(marks);
    connect(finder_, &TreeFinder::Restarted, view->viewport(), qOverload<>(&QWidget::update));
    connect(view->selectionModel(), &QItemSelectionModel::currentChanged, finder_, &TreeFinder::FollowSelection);
  }
  connect(this, &TreeDocumentWindow::ContentChanged, this, [this] {
    if (!IsOpen()) HideFindBar();
  });
  auto* escape = new QShortcut(Qt::Key_Escape, this);
  escape->setContext(Qt::WidgetWithChildrenShortcut);
  escape->setEnabled(false);
  escape_ = escape;
  connect(escape, &QShortcut::activated, this, &TreeDocumentWindow::CloseFindBar);
}

void TreeDocumentWindow::OpenFindBar() {
  BuildFindBar();
  find_bar_->Open(last_query);
  escape_->setEnabled(true);
}

void TreeDocumentWindow::CloseFindBar() {
  if (!find_bar_ || find_bar_->isHidden()) return;
  HideFindBar();
  Searchable().FocusSelected();
}

void TreeDocumentWindow::HideFindBar() {
  if (find_bar_->isHidden()) return;
  last_query = finder_->Query();
  escape_->setEnabled(false);
  find_bar_->SetListChecked(false);
  find_bar_->hide();
  finder_->Stop();
}

void TreeDocumentWindow::SearchFind() {
  OpenFindBar();
  find_bar_->FocusText();
}

void TreeDocumentWindow::SearchAgain() {
  OpenFindBar();
  if (finder_->Query().wanted.isEmpty()) return find_bar_->FocusText();
  finder_->GoToNext();
}

void TreeDocumentWindow::SearchPrevious() {
  OpenFindBar();
  if (finder_->Query().wanted.isEmpty()) return find_bar_->FocusText();
  finder_->GoToPrevious();
}

void TreeDocumentWindow::ShowHitList(bool is_shown) {
  if (!hit_list_ && is_shown) {
    hit_list_ = new HitList(*finder_, &Panes());
    Panes().addWidget(hit_list_);
    connect(hit_list_, &HitList::Chosen, this, &TreeDocumentWindow::GoToHit);
  }
  if (!hit_list_) return;
  const bool is_beside = width() >= kWidthForList;
  const int room = is_beside ? width() : Panes().height();
  Panes().setOrientation(is_beside ? Qt::Horizontal : Qt::Vertical);
  hit_list_->setVisible(is_shown);
  if (is_shown) Panes().setSizes({room / 2, room / 2});
}

void TreeDocumentWindow::GoToHit(std::size_t index) {
  TreeDocumentWindow* window = finder_->At(index).window;
  finder_->Show(index);
  if (window != this) {
    global_.area.BringToFront(*window);
    window->GoOnWith(*find_bar_);
  }
  window->Searchable().FocusSelected();
}

void TreeDocumentWindow::GoOnWith(const FindBar& other) {
  BuildFindBar();
  find_bar_->OpenWith(other);
  escape_->setEnabled(true);
}

}  // namespace tme
