#include "shell/DocumentArea.h"

#include <QApplication>
#include <QMdiSubWindow>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStyle>
#include <QTimer>
#include <utility>

#include "shell/DocumentWindow.h"
#include "shell/GlobalMenus.h"
#include "shell/Settings.h"
#include "shell/WindowArrangement.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Part of the area that a cascaded window takes in each direction.
constexpr double kCascadeShare = 0.75;

}  // namespace

DocumentArea::DocumentArea(GlobalMenus& menus, const Settings& settings, QWidget* parent)
    : QMdiArea(parent), menus_(menus), settings_(settings) {
  setObjectName(u"mdi_area"_s);
  setAccessibleName(tr("Documents"));
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  connect(this, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* child) {
    // Null when the whole program loses the focus: the document stays the active one.
    auto* window = child ? qobject_cast<DocumentWindow*>(child->widget()) : nullptr;
    if (window && !window->Tag().isEmpty()) window->Form_Activate();
    if (child) GiveKeysBack(*child);
  });
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { NoteKeys(now); });
}

/// The windows that go with it hand the keys on.
DocumentArea::~DocumentArea() { disconnect(qApp, nullptr, this, nullptr); }

void DocumentArea::NoteKeys(QWidget* now) {
  if (is_arranging_ || now == nullptr || !isAncestorOf(now)) return;
  for (QMdiSubWindow* child : subWindowList())
    if (child->isAncestorOf(now)) keys_[child] = now;
}

/// A window that is resized while it is maximised is hidden for a moment, which hands the keys on to its next control.
void DocumentArea::GiveKeysBack(QMdiSubWindow& child) {
  QWidget* const keys = keys_.value(&child);
  const QWidget* now = QApplication::focusWidget();
  if (is_arranging_ || keys == now || (now && !isAncestorOf(now))) return;
  if (keys && child.isAncestorOf(keys) && keys->isVisibleTo(&child)) keys->setFocus();
}

QMdiSubWindow* DocumentArea::AddChild(DocumentWindow& window) {
  QMdiSubWindow* child = addSubWindow(&window);
  child->setAttribute(Qt::WA_DeleteOnClose, false);
  child->setObjectName(window.objectName() + u"_child"_s);
  child->setWindowIcon(window.windowIcon());
  // The File menu holds the keys for closing.
  for (QAction* action : child->systemMenu()->actions()) action->setShortcuts({});
  emit ChildAdded(child);
  return child;
}

void DocumentArea::ShowDocument(DocumentWindow* window) {
  QMdiSubWindow* child = window->SubWindow() ? window->SubWindow() : AddChild(*window);
  // The next place of the cascade; the area's own choice may lie out of sight.
  const auto place = static_cast<int>((ShownChildren(false) + ShownChildren(true)).size());
  {
    const QScopedValueRollback arranging(is_arranging_, true);
    // Maximised documents stay so: the new one is, too.
    const QMdiSubWindow* before = activeSubWindow();
    const bool maximised = settings_.start_editors_max || (before && !before->isHidden() && before->isMaximized());
    window->show();
    child->showNormal();
    child->setGeometry(CascadeRect(place, window));
    if (maximised) child->showMaximized();
    setActiveSubWindow(child);
    window->Form_Activate();
  }
  NoteKeys(QApplication::focusWidget());
}

void DocumentArea::Activate(const DocumentWindow& window) { setActiveSubWindow(window.SubWindow()); }

void DocumentArea::BringToFront(const DocumentWindow& window) {
  QMdiSubWindow* child = window.SubWindow();
  // While it is being read, a question may stand before its window does.
  if (!child || child->isHidden()) return;
  if (child->isMinimized()) child->showNormal();
  setActiveSubWindow(child);
}

void DocumentArea::DocumentClosed(const DocumentWindow* window) {
  if (active_document_ != window) return;
  active_document_ = nullptr;
  menus_.RefreshMenus(DocumentKind::Mdi);
  const QList<QMdiSubWindow*> children = ShownChildren(false) + ShownChildren(true);
  if (children.isEmpty() || !activates_next_) return;
  setActiveSubWindow(children[std::max<qsizetype>(0, ShownChildren(false).size() - 1)]);
  if (auto* next = qobject_cast<DocumentWindow*>(activeSubWindow()->widget())) next->Form_Activate();
}

QList<QMdiSubWindow*> DocumentArea::ShownChildren(bool minimised) const {
  QList<QMdiSubWindow*> children;
  for (QMdiSubWindow* child : subWindowList(QMdiArea::StackingOrder))
    if (!child->isHidden() && child->isMinimized() == minimised) children.append(child);
  return children;
}

QRect DocumentArea::CascadeRect(int place, const QWidget* window) const {
  const QSize room = viewport()->size();
  const QSize share = (QSizeF(room) * kCascadeShare).toSize();
  const int step =
      style()->pixelMetric(QStyle::PM_TitleBarHeight) + style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  const auto* document = qobject_cast<const DocumentWindow*>(window);
  const int width = document && document->PreferredWidth() > 0 ? document->PreferredWidth() : share.width();
  return {CascadeOrigin(place, room, step, share), QSize(width, share.height())};
}

void DocumentArea::ArrangeIcons(const QSize& room) {
  const QList<QMdiSubWindow*> icons = ShownChildren(true);
  if (icons.isEmpty()) return;
  const std::vector<QPoint> origins = IconOrigins(static_cast<int>(icons.size()), room, icons.first()->size());
  for (qsizetype index = 0; index < icons.size(); ++index) icons[index]->move(origins[static_cast<std::size_t>(index)]);
}

void DocumentArea::ArrangeWindows(int arrangement) {
  // Tiles need no scroll bars: those that stand now make room.
  const bool cascades = arrangement == static_cast<int>(Arrangement::Cascade);
  const QSize room = cascades ? viewport()->size() : maximumViewportSize();
  ArrangeIcons(room);
  const QList<QMdiSubWindow*> children = ShownChildren(false);
  if (children.isEmpty()) return;
  QMdiSubWindow* active = children.last();
  const auto count = static_cast<int>(children.size());
  std::vector<QRect> rects;
  if (cascades) {
    for (int place = 0; place < count; ++place) rects.push_back(CascadeRect(place, children[place]->widget()));
  } else if (arrangement == static_cast<int>(Arrangement::TileHorizontally) ||
             arrangement == static_cast<int>(Arrangement::TileVertically)) {
    rects = TileRects(count, room, static_cast<Arrangement>(arrangement));
  } else {
    return;
  }
  for (qsizetype index = 0; index < children.size(); ++index) {
    if (children[index]->isMaximized()) children[index]->showNormal();
    children[index]->setGeometry(rects[static_cast<std::size_t>(index)]);
  }
  setActiveSubWindow(active);
}

void DocumentArea::CascadeAfterOpening() {
  if (!isVisible()) {
    cascade_when_shown_ = true;
    return;
  }
  {
    const QScopedValueRollback arranging(is_arranging_, true);
    ArrangeWindows(static_cast<int>(Arrangement::Cascade));
    QMdiSubWindow* active = activeSubWindow();
    if (settings_.start_editors_max && active && !active->isHidden()) active->showMaximized();
  }
  if (QMdiSubWindow* active = activeSubWindow()) GiveKeysBack(*active);
}

void DocumentArea::showEvent(QShowEvent* event) {
  QMdiArea::showEvent(event);
  if (std::exchange(cascade_when_shown_, false)) QTimer::singleShot(0, this, &DocumentArea::CascadeAfterOpening);
}

}  // namespace tme
