// The source below or beside the tree.
#include <QMdiSubWindow>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/DocumentArea.h"
#include "shell/DocumentTable.h"
#include "shell/Global.h"
#include "shell/GlobalMenus.h"
#include "shell/Settings.h"
#include "windows/tree/RowEditor.h"
#include "windows/tree/SourceDocument.h"
#include "windows/tree/SourcePane.h"
#include "windows/tree/TreeDocumentWindow.h"

using namespace Qt::StringLiterals;

namespace tme {

QWidget* TreeDocumentWindow::MakeTreeArea(QWidget& client) {
  auto* column = new QVBoxLayout(&client);
  column->setContentsMargins(0, 0, 0, 0);
  auto* splitter = new QSplitter(&client);
  splitter->setObjectName(u"source_splitter"_s);
  splitter->setAccessibleName(tr("Divider between tree and source"));
  splitter->setChildrenCollapsible(false);
  column->addWidget(splitter);
  auto* area = new QWidget(splitter);
  splitter->addWidget(area);
  source_ = std::make_unique<SourcePane>(global_, *splitter, MakeSourceDocument());
  connect(source_.get(), &SourcePane::DocumentEdited, this, [this] { SetChanged(true); });
  connect(source_.get(), &SourcePane::FaultChanged, this, &TreeDocumentWindow::StateChanged);
  connect(source_.get(), &SourcePane::PlaceChanged, this, &TreeDocumentWindow::StateChanged);
  // The focus also goes while all windows do, when there are no commands any more.
  connect(source_.get(), &SourcePane::FocusChanged, this, &TreeDocumentWindow::UpdateCommands, Qt::QueuedConnection);
  return area;
}

void TreeDocumentWindow::ViewSource() {
  global_.settings.SetFlag(&Settings::show_source, !global_.settings.show_source, global_.registry);
  ApplySourceSettings();
}

void TreeDocumentWindow::ViewSourceBeside() {
  global_.settings.SetFlag(&Settings::source_beside, !global_.settings.source_beside, global_.registry);
  ApplySourceSettings();
}

void TreeDocumentWindow::ApplySourceSettings() {
  MakeRoomForSource();
  UpdateCommands();
  global_.documents.ForEachOpen([](DocumentWindow& window) {
    if (auto* tree = qobject_cast<TreeDocumentWindow*>(&window)) tree->FollowInSource();
  });
}

void TreeDocumentWindow::MakeRoomForSource() {
  QMdiSubWindow* sub_window = SubWindow();
  if (!global_.settings.show_source || !global_.settings.source_beside || sub_window->isMaximized()) return;
  const int room = sub_window->parentWidget()->width() - sub_window->x();
  sub_window->resize(std::max(sub_window->width(), std::min(2 * PreferredWidth(), room)), sub_window->height());
}

void TreeDocumentWindow::ShowSourceItems() {
  const Settings& settings = global_.settings;
  global_.menus.SetChecked("menu_ViewSource", settings.show_source);
  global_.menus.SetChecked("menu_ViewSourceBeside", settings.source_beside);
  global_.menus.SetAvailable("menu_ViewSourceBeside", settings.show_source);
  // Lines have numbers in the source alone.
  global_.menus.SetAvailable("menu_SearchGoToLine", settings.show_source);
}

void TreeDocumentWindow::FollowInSource() {
  if (!source_) return;
  source_->ApplySettings();
  source_->Follow();
}

void TreeDocumentWindow::GoToLine(std::int64_t line) {
  if (source_) source_->GoToLine(line);
}

bool TreeDocumentWindow::TakeCommand(const QByteArray& command) {
  return source_ && source_->TakeCommand({command.constData(), static_cast<std::size_t>(command.size())});
}

void TreeDocumentWindow::ShowSourceCommands() {
  if (!source_ || !source_->HasFocus() || global_.area.ActiveDocument() != this) return;
  global_.menus.SetAvailable("menu_EditRegCopy", true);
  for (const char* item : {"menu_EditRegCut", "menu_EditRegPaste"})
    global_.menus.SetAvailable(item, source_->IsEditable());
}

void TreeDocumentWindow::CommitTyping() {
  if (source_) source_->Commit();
  RowEditor::Finish(*this);
}

}  // namespace tme
