// What the status line says of a tree.
#include <QAbstractItemView>

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
  const QString in_another_form = tr("File, Save As Another Form changes it.");
  if (GetHolding() == Holding::Whole) {
    state.encoding_stays = state.line_ends_stay = in_another_form;
    return;
  }
  state.encoding_stays = tr("A save keeps the file's encoding as long as it holds all characters.");
  state.line_ends = LineEnds::CrLf;
  state.line_ends_stay =
      tr("By the rules, all lines are written with CR LF.  View, Whole File keeps the line ends that the file has.");
}

}  // namespace tme
