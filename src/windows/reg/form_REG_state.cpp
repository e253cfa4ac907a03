// What the status line says of a registry document.
#include <QTreeView>

#include "documents/reg/RegAsShown.h"
#include "documents/reg/RegData.h"
#include "shell/DisplayText.h"
#include "windows/reg/RegValueModel.h"
#include "windows/reg/form_REG.h"
#include "windows/tree/RowDragView.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// The node that comes behind one in the order of the tree; null behind the last.
const RegNode* NextInTree(const RegNode* node) {
  if (node->ChildCount() > 0) return node->Child(0);
  for (; node->Parent(); node = node->Parent())
    if (node->Row() + 1 < node->Parent()->ChildCount()) return node->Parent()->Child(node->Row() + 1);
  return nullptr;
}

/// By the rules a name is kept as it stands in the file.
std::string NameInFile(const RegValueRecord& value, Holding holding) {
  return holding == Holding::Whole ? QuotedRegName(value.name) : std::string("\"").append(value.name).append("\"");
}

}  // namespace

QString form_REG::SelectedPath() const {
  const RegNode* node = document_.Selected();
  return QString::fromStdString((node->Tag() == RegTag::Comment ? node->Parent() : node)->KeyPath());
}

void form_REG::AddState(DocumentState& state) const {
  TreeDocumentWindow::AddState(state);
  if (const QString path = SelectedPath(); !path.isEmpty()) state.path = path;
  const QModelIndex row = LV->currentIndex();
  if (FocusMarker != Focus::LV || !LV->selectionModel()->isSelected(row)) return;
  // The list may still show what a document that was closed had.
  const std::size_t record = values_->RecordOf(row);
  if (record < document_.Values().size())
    state.path += u' ' + TextOf(NameInFile(document_.Values()[record], GetHolding()));
}

DocumentFigures form_REG::Figures() const {
  std::uint64_t keys = 0, values = 0;
  for (const RegNode* node = document_.Root(); node; node = NextInTree(node)) {
    keys += node->Tag() == RegTag::Hive || node->Tag() == RegTag::Branch ? 1 : 0;
    document_.ForEachValueOf(node, [&values](const RegValueRecord& record) { values += record.deleted ? 0 : 1; });
  }
  const QString all_keys = Counted(keys, tr("1 key"), tr("%1 keys"));
  return {.count = tr("%1, %2").arg(all_keys, Counted(values, tr("1 value"), tr("%1 values"))),
          .line_ends = IsWhole() ? std::optional(UsedLineEnds()) : std::nullopt};
}

PartProducer form_REG::Characters() {
  if (IsWhole()) return TreeDocumentWindow::Characters();
  // What a save writes by the rules may be any multiple of the document.
  return [this](const PartSink& put) { return WriteRegAsShown(document_, put); };
}

}  // namespace tme
