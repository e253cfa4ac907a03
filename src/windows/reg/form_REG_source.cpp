// What the source pane asks of form_REG.
#include <QTreeView>
#include <algorithm>
#include <functional>

#include "windows/reg/RegKeyModel.h"
#include "windows/reg/RegSource.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/RowDragView.h"

namespace tme {

std::unique_ptr<SourceDocument> form_REG::MakeSourceDocument() {
  const auto selected = [this] {
    RegPlace place{document_.Selected(), {}};
    const QModelIndex row = LV->currentIndex();
    if (FocusMarker == Focus::LV && row.isValid() && values_->RecordOf(row) < document_.Values().size())
      place.record = values_->RecordOf(row);
    return place;
  };
  const auto change = [this](const std::function<void()>& edit) {
    const Focus focus = FocusMarker;
    const int row = LV->currentIndex().row();
    edit();
    if (focus != Focus::LV || values_->rowCount() == 0) return;
    GoToRow(std::max(row, 0));
    SetFocusMarker(focus);
  };
  return std::make_unique<RegSource>(
      document_, RegSource::Window{selected, [this](const RegPlace& place) { SelectPlace(place); }, change});
}

void form_REG::SelectPlace(const RegPlace& place) {
  if (place.key != document_.Selected()) {
    document_.Select(RegKeyModel::NodeOf(keys_->IndexOf(place.key)));
    ShowSelection();
  }
  const int row = place.record ? values_->RowOf(*place.record) : -1;
  if (row >= 0) GoToRow(row);
  SetFocusMarker(row >= 0 ? Focus::LV : Focus::TV);
}

}  // namespace tme
