#include "windows/tree/SourcePane.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QEvent>
#include <QScopedValueRollback>
#include <QSplitter>
#include <algorithm>
#include <utility>

#include "shell/Global.h"
#include "shell/Settings.h"
#include "system/Twips.h"
#include "windows/tree/SourceEdit.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kTypingPause = 800;  // milliseconds
/// Where the settings have no size, the pane takes this share of the room.
constexpr double kShare = 0.45;
/// It leaves the tree the rest, whatever the settings have.
constexpr double kMostShare = 0.75;
constexpr QSize kLeastSize{120, 60};  // pixels
/// Rows of the tree that stay in sight where there is any room for them.
constexpr int kLeastRows = 4;

}  // namespace

SourcePane::SourcePane(Global& global, QSplitter& splitter, std::unique_ptr<SourceDocument> document)
    : global_(global), splitter_(splitter), document_(std::move(document)) {
  follow_.setSingleShot(true);
  pause_.setSingleShot(true);
  pause_.setInterval(kTypingPause);
  connect(&follow_, &QTimer::timeout, this, &SourcePane::FollowNow);
  connect(&pause_, &QTimer::timeout, this, &SourcePane::Commit);
  connect(&splitter_, &QSplitter::splitterMoved, this, &SourcePane::WriteSize);
  splitter_.installEventFilter(this);
}

SourcePane::~SourcePane() {
  // The document may be gone.
  if (view_) view_->disconnect(this);
  delete view_;
}

void SourcePane::ApplySettings() {
  if (!global_.settings.show_source) return Hide();
  const Qt::Orientation orientation = global_.settings.source_beside ? Qt::Horizontal : Qt::Vertical;
  const bool is_turned = splitter_.orientation() != orientation;
  splitter_.setOrientation(orientation);
  if (!view_)
    Show();
  else if (is_turned)
    ReadSize();
}

bool SourcePane::IsBeside() const { return splitter_.orientation() == Qt::Horizontal; }

void SourcePane::Show() {
  view_ = new SourceView(&splitter_, document_->Lexer());
  view_->setMinimumSize(kLeastSize);
  view_->SetTextFont(global_.settings.font_name, global_.settings.font_size);
  splitter_.addWidget(view_);
  view_->show();
  ReadSize();
  document_->Listen([this] { Follow(); });
  connect(view_, &SourceView::CaretMoved, this, &SourcePane::SelectCaretLine, Qt::QueuedConnection);
  connect(view_, &SourceView::CaretMoved, this, &SourcePane::FindFault, Qt::QueuedConnection);
  connect(view_, &SourceView::PlaceChanged, this, &SourcePane::PlaceChanged, Qt::QueuedConnection);
  connect(view_, &SourceView::Entered, this, &SourcePane::FocusChanged);
  connect(view_, &SourceView::Left, this, [this] {
    Commit();
    emit FocusChanged();
  });
  connect(qApp, &QApplication::focusChanged, view_, [this](const QWidget*, const QWidget* now) {
    // The status line keeps what it says while it is read.
    if (now != nullptr && now != view_ && splitter_.isAncestorOf(now)) SetFault({});
  });
  connect(view_, &SourceView::Typed, this, [this] {
    if (!pause_.isActive()) QCoreApplication::instance()->installEventFilter(this);
    pause_.start();
  });
  Follow();
}

void SourcePane::Hide() {
  if (!view_) return;
  Commit();
  document_->Listen({});
  follow_.stop();
  revision_.reset();
  SetFault({});
  const bool had_focus = view_->hasFocus();
  // A press of the mouse in it may be what brought us here.
  SourceView* const gone = std::exchange(view_, nullptr);
  gone->disconnect(this);
  gone->setParent(nullptr);
  gone->deleteLater();
  if (had_focus) splitter_.widget(0)->setFocus();
}

void SourcePane::ReadSize() {
  const QString text = global_.registry.ReadValue(SettingsRoot, IsBeside() ? u"Source Width"_s : u"Source Height"_s);
  wanted_size_ = TwipsToPixels(std::max(ParseTwips(text).value_or(0), 0), splitter_.logicalDpiX());
  ApplySize();
}

void SourcePane::ApplySize() {
  const int room = IsBeside() ? splitter_.width() : splitter_.height();
  const double wanted = wanted_size_ > 0 ? std::min<double>(wanted_size_, room * kMostShare) : room * kShare;
  const int size = IsBeside()
                       ? static_cast<int>(wanted)
                       : std::clamp(room - HeightOfFewRows(), std::min(kLeastSize.height(), static_cast<int>(wanted)),
                                    static_cast<int>(wanted));
  splitter_.setSizes({room - size, size});
}

int SourcePane::HeightOfFewRows() const {
  const QWidget& area = *splitter_.widget(0);
  const auto* tree = area.findChild<QAbstractItemView*>();
  if (tree == nullptr) return 0;
  const int around = std::max(area.height() - tree->height(), 0);
  return around + kLeastRows * std::max(tree->sizeHintForRow(0), tree->fontMetrics().height());
}

void SourcePane::WriteSize() {
  if (!view_) return;
  wanted_size_ = IsBeside() ? view_->width() : view_->height();
  if (!global_.settings.present) return;
  global_.registry.WriteValue(SettingsRoot, IsBeside() ? u"Source Width"_s : u"Source Height"_s,
                              QString::number(PixelsToTwips(wanted_size_, splitter_.logicalDpiX())));
}

void SourcePane::Follow() {
  if (view_ && !follow_.isActive()) follow_.start(0);
}

void SourcePane::FollowNow() {
  if (!view_) return;
  if (revision_ != document_->Revision()) {
    // What was typed is older, or it would be a step by now.
    pause_.stop();
    if (!revision_ || !view_->Follow(document_->ChangesSince(*revision_)))
      view_->Follow([this](const PartSink& put) { return document_->Write(put); });
    revision_ = document_->Revision();
    selected_line_.reset();
  }
  view_->SetEditable(IsEditable());
  if (!view_->IsTyped()) ShowSelection();
}

void SourcePane::ShowSelection() {
  const std::vector<SourceLineRange> lines = document_->SelectedLines(*view_);
  if (lines == view_->Marked()) return;
  view_->Mark(lines);
  if (!lines.empty() && !selected_line_) view_->Reveal(lines.front());
  selected_line_.reset();
}

void SourcePane::SelectCaretLine() {
  if (!view_ || view_->IsTyped() || revision_ != document_->Revision()) return;
  const PadPosition line = view_->CaretLine();
  for (const SourceLineRange& marked : view_->Marked())
    if (line >= marked.first && line < marked.first + marked.count) return;
  selected_line_ = line;
  document_->SelectLine(*view_, line);
  Follow();
}

std::optional<DocumentState::Place> SourcePane::Place() const {
  if (!view_) return std::nullopt;
  const PadPosition line = view_->CaretLine();
  const std::int64_t column = view_->CharactersBetween(view_->StartOf(line), view_->Caret(), TextPad::Count::Column);
  return DocumentState::Place{.line = line + 1, .column = column + 1, .lines = view_->LineCount()};
}

void SourcePane::GoToLine(std::int64_t line) {
  if (!view_) return;
  Commit();
  if (follow_.isActive()) FollowNow();
  const PadPosition start = view_->StartOf(line - 1);
  view_->Select(start, start);
  selected_line_ = line - 1;
  document_->SelectLine(*view_, line - 1);
  Follow();
}

void SourcePane::FindFault() {
  if (view_ && view_->hasFocus()) SetFault(view_->FaultAt(view_->CaretLine()));
}

void SourcePane::SetFault(const QString& fault) {
  if (fault == fault_) return;
  fault_ = fault;
  if (view_) view_->setAccessibleDescription(fault_);
  emit FaultChanged();
}

void SourcePane::Commit() {
  pause_.stop();
  QCoreApplication::instance()->removeEventFilter(this);
  const SourceLines* pieces = document_->Pieces();
  if (!view_ || !view_->IsTyped() || pieces == nullptr || is_committing_) return;
  const QScopedValueRollback committing(is_committing_, true);
  const std::optional<SourceEdit> edit = EditOf(*pieces, view_->Text());
  const std::string lines(edit ? edit->lines : std::string_view());
  view_->Accept();
  if (!edit) return;
  document_->ReplaceLines(edit->first, edit->last, lines);
  // The text is another one than that of the revision, which an undo may bring back before the pane follows.
  revision_.reset();
  if (view_->hasFocus()) document_->SelectLine(*view_, view_->CaretLine());
  emit DocumentEdited();
  Follow();
}

bool SourcePane::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::Resize:
      // A window that opens has its size only now.
      if (watched == &splitter_ && view_) ApplySize();
      break;
    case QEvent::MouseButtonPress:
      if (watched != view_ && watched != view_->viewport()) Commit();
      break;
    case QEvent::Shortcut:
    case QEvent::Close:
      Commit();
      break;
    default:
      break;
  }
  return false;
}

}  // namespace tme
