// What the status line says of an INI document.
#include "shell/DisplayText.h"
#include "windows/ini/form_INI.h"

using namespace Qt::StringLiterals;

namespace tme {

void form_INI::AddState(DocumentState& state) const {
  TreeDocumentWindow::AddState(state);
  const IniNode& node = *tree_.Selected();
  if (node.Tag() == IniTag::OpenedFile) return;
  const IniNode& section = node.Tag() == IniTag::Section ? node : *node.Parent();
  QStringList parts;
  if (section.Tag() == IniTag::Section) parts += u'[' + TextOf(section.Text()) + u']';
  if (node.Tag() == IniTag::Value) parts += TextOf(tree_.KeyOf(node));
  if (node.Tag() == IniTag::Comments) parts += TextOf(node.Text());
  state.path = parts.join(u' ');
}

DocumentFigures form_INI::Figures() const {
  std::uint64_t entries = 0;
  const auto count = [&entries](const IniNode& parent) {
    for (int row = 0; row < parent.ChildCount(); ++row) entries += parent.Child(row)->Tag() == IniTag::Value ? 1 : 0;
  };
  const IniNode& root = *tree_.Root();
  count(root);
  for (int row = 0; row < root.ChildCount(); ++row) count(*root.Child(row));
  const QString sections = Counted(tree_.SectionCount(), tr("1 section"), tr("%1 sections"));
  return {.count = tr("%1, %2").arg(sections, Counted(entries, tr("1 entry"), tr("%1 entries"))),
          .line_ends = IsWhole() ? std::optional(UsedLineEnds()) : std::nullopt};
}

}  // namespace tme
