#include "shell/WindowMenu.h"

#include <QDir>
#include <QFileInfo>
#include <QHelpEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QStyle>
#include <QStyleOptionTitleBar>

#include "shell/DocumentArea.h"
#include "shell/DocumentTable.h"
#include "shell/DocumentWindow.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kFolderCharacters = 60;

DocumentWindow* DocumentOf(const QMdiSubWindow& child) { return qobject_cast<DocumentWindow*>(child.widget()); }

/// Where the caption bar shows the name, between its picture and its buttons.
QRect NameRect(const QMdiSubWindow& child) {
  QStyleOptionTitleBar bar;
  bar.initFrom(&child);
  bar.titleBarFlags = child.windowFlags();
  bar.titleBarState = child.windowState().toInt();
  bar.subControls = QStyle::SC_All;
  bar.rect.setHeight(child.style()->pixelMetric(QStyle::PM_TitleBarHeight, &bar, &child));
  return child.style()->subControlRect(QStyle::CC_TitleBar, &bar, QStyle::SC_TitleBarLabel, &child);
}

}  // namespace

WindowMenu::WindowMenu(DocumentTable& documents, DocumentArea& area, QMenu& menu)
    : QObject(&area), documents_(documents), area_(area), menu_(menu) {
  connect(&menu, &QMenu::aboutToShow, this, &WindowMenu::ListDocuments);
  // For the tool tip of its caption bar.
  connect(&area, &DocumentArea::ChildAdded, this, [this](QMdiSubWindow* child) { child->installEventFilter(this); });
}

bool WindowMenu::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto& child = *static_cast<QMdiSubWindow*>(watched);
    const auto& help = *static_cast<QHelpEvent*>(event);
    const DocumentWindow* document = DocumentOf(child);
    if (document && !document->File().Path().isEmpty() && NameRect(child).contains(help.pos())) {
      ShowTip(help.globalPos(), QDir::toNativeSeparators(document->File().Path()), static_cast<QWidget*>(watched));
      return true;
    }
  }
  return QObject::eventFilter(watched, event);
}

QString WindowMenu::CaptionOf(const QMdiSubWindow& child) const {
  const DocumentWindow& document = *DocumentOf(child);
  const DocumentFile& file = document.File();
  bool is_ambiguous = false;
  documents_.ForEachOpen([&](const DocumentWindow& window) {
    const DocumentFile& other = window.File();
    is_ambiguous |= !file.Path().isEmpty() && other.Title() == file.Title() && other.Path() != file.Path();
  });
  const QString caption = document.Caption();
  if (!is_ambiguous) return caption;
  const QString folder = QDir::toNativeSeparators(QFileInfo(file.Path()).path());
  const QFontMetrics& metrics = menu_.fontMetrics();
  return caption + u" - "_s +
         metrics.elidedText(folder, Qt::ElideMiddle, kFolderCharacters * metrics.averageCharWidth());
}

void WindowMenu::ListDocuments() {
  for (QAction* action : menu_.actions()) {
    if (!action->data().toBool()) continue;
    menu_.removeAction(action);
    action->deleteLater();
  }
  int number = 0;
  const auto append = [this](QAction* action) {
    action->setData(true);
    menu_.addAction(action);
  };
  for (QMdiSubWindow* child : area_.subWindowList(QMdiArea::CreationOrder)) {
    const DocumentWindow* document = DocumentOf(*child);
    if (child->isHidden() || !document) continue;
    if (number == 0) {
      auto* separator = new QAction(&menu_);
      separator->setSeparator(true);
      append(separator);
    }
    auto* item = new QAction(u"&%1 %2"_s.arg(++number).arg(MenuText(CaptionOf(*child))), &menu_);
    SetTip(*item, QDir::toNativeSeparators(document->File().Path()));
    item->setCheckable(true);
    item->setChecked(document == area_.ActiveDocument());
    connect(item, &QAction::triggered, child, [this, document] { area_.BringToFront(*document); });
    append(item);
  }
}

}  // namespace tme
