// What the status line says of a tree.
#include <QAbstractItemView>

#include "shell/WaitCursor.h"
#include "windows/tree/SourcePane.h"
#include "windows/tree/TreeDocumentWindow.h"

namespace tme {

void TreeDocumentWindow::WatchState(const QAbstractItemView& view) {
  const auto follow = [this] { StateChanged(); };
  connect(view.selectionModel(), &QItemSelectionModel::currentChanged, this, follow);
  const QAbstractItemModel& model = *view.model();
  connect(&model, &QAbstractItemModel::modelReset, this, follow);
  connect(&model, &QAbstractItemModel::rowsInserted, this, follow);
  connect(&model, &QAbstractItemModel::rowsRemoved, this, follow);
  connect(&model, &QAbstractItemModel::dataChanged, this, follow);
}

void TreeDocumentWindow::AddState(DocumentState& state) const {
  state.holding = GetHolding();
  if (source_) {
    state.fault = source_->Fault();
    state.place = source_->Place();
  }
  if (GetHolding() == Holding::Whole) return;
  state.line_ends = LineEnds::CrLf;
  state.line_ends_stay =
      tr("By the rules, all lines are written with CR LF.  View, Whole File keeps the line ends that the file has.");
}

void TreeDocumentWindow::ChangeLineEnds(LineEnds ends) {
  if (GetHolding() != Holding::Whole || ends == UsedLineEnds()) return;
  const WaitCursor wait_cursor;
  SetLineEnds(ends);
  SetChanged(true);
}

}  // namespace tme
