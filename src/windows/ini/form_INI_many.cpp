// Commands of form_INI on several selected nodes.
#include <QLocale>

#include "base/LineReader.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniWriter.h"
#include "shell/DisplayText.h"
#include "shell/Global.h"
#include "shell/WaitCursor.h"
#include "system/Dialogs.h"
#include "windows/ini/IniItemModel.h"
#include "windows/ini/form_INI.h"
#include "windows/tree/DocumentTreeView.h"
#include "windows/tree/TreeSelection.h"

using namespace Qt::StringLiterals;

namespace tme {

std::vector<IniNode*> form_INI::SelectedForCommand() {
  std::vector<IniNode*> nodes = SelectedTops<IniItemModel>(*TV->selectionModel());
  if (nodes.size() == 1 && nodes.front() != tree_.Selected()) {
    tree_.Select(nodes.front());
    ShowSelection();
  }
  return nodes;
}

std::function<void()> form_INI::SelectionAgain() const {
  const auto ranges = SelectedRanges<IniItemModel>(*TV->selectionModel());
  if (ranges.empty() || (ranges.size() == 1 && ranges.front().first == ranges.front().second)) return {};
  return [this, ranges, arrangement = tree_.Arrangement()] {
    if (tree_.Arrangement() == arrangement)
      SelectRanges(*TV->selectionModel(), ranges, *model_, [](const IniNode*) { return true; });
  };
}

std::string form_INI::LinesOfMany(const std::vector<IniNode*>& nodes) const {
  const WaitCursor wait_cursor;
  if (IsWhole()) return tree_.SourceOf(nodes);
  std::string lines;
  // Lines behind a section would be its own.
  for (const IniNode* node : nodes)
    if (node->Tag() != IniTag::Section) lines.append(node->Text()).append("\r\n");
  for (const IniNode* node : nodes)
    if (node->Tag() == IniTag::Section) lines.append(ClipboardText(tree_, *node)).append("\r\n");
  return lines;
}

void form_INI::RemoveMany(const std::vector<IniNode*>& nodes, IniComments comments) {
  const WaitCursor wait_cursor;
  tree_.Remove(nodes, comments);
  SetChanged(true);
}

void form_INI::DeleteManyWhenConfirmed(const std::vector<IniNode*>& nodes) {
  const QString question = tr("Are you sure you want to delete these %1 items?")
                               .arg(QLocale().toString(static_cast<qulonglong>(nodes.size())));
  if (global_.dialogs.MsgBox(question, MsgButtons::YesNo, MsgIcon::Question, tr("Deletion Confirmation")) !=
      MsgAnswer::Yes)
    return;
  RemoveMany(nodes, IniComments::Stay);
}

std::vector<IniNode*> form_INI::PutManyLines(const std::string& lines, IniReadResult& result) {
  const IniTree::Step step(tree_, EditName::Paste);
  IniNode* section = tree_.Selected();
  if (section->Tag() == IniTag::Value || section->Tag() == IniTag::Comments) section = section->Parent();
  std::vector<std::string_view> own;
  std::size_t own_bytes = 0;
  LineReader reader(lines);
  for (std::string_view line; reader.Next(line) && KindOf(line) != IniLine::Header;) {
    own_bytes = static_cast<std::size_t>(reader.Position() - lines.data());
    // The root takes comments alone.
    if (KindOf(line) == IniLine::Comment || (KindOf(line) == IniLine::Entry && section != tree_.Root()))
      own.push_back(line);
  }
  std::vector<IniNode*> added;
  if (!own.empty()) added = tree_.AddLines(section, own);
  tree_.Select(section);
  ShowSelection();
  if (own_bytes < lines.size()) result = Read(lines.substr(own_bytes));
  return added;
}

}  // namespace tme
