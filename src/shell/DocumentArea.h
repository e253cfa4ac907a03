#pragma once

#include <QHash>
#include <QMdiArea>
#include <QPointer>

namespace tme {

class DocumentWindow;
class GlobalMenus;
struct Settings;

/// The frame's area of document windows: which of them is the active one, and where they stand.
class DocumentArea : public QMdiArea {
  Q_OBJECT

 public:
  /// The menus and the settings must outlive it.
  DocumentArea(GlobalMenus& menus, const Settings& settings, QWidget* parent);
  ~DocumentArea() override;

  /// The document that menu commands go to; null when none is open.
  DocumentWindow* ActiveDocument() const { return active_document_; }
  /// To be called by the document that becomes the active one.
  void SetActiveDocument(DocumentWindow* window) { active_document_ = window; }

  /// Shows a document window as the active child.
  void ShowDocument(DocumentWindow* window);
  /// A document that is shown becomes the active child.
  void Activate(const DocumentWindow& window);
  /// The same, from an icon as well; nothing while the document is not shown yet.
  void BringToFront(const DocumentWindow& window);
  /// A window let its document go: the menus follow what is active now.
  void DocumentClosed(const DocumentWindow* window);
  /// The program is being left: none becomes the active one for another that was closed.
  void StopActivating() { activates_next_ = false; }

  /// 0 cascade, 1 tile horizontally, 2 tile vertically, 3 arrange icons; anything else does nothing.
  void ArrangeWindows(int arrangement);
  /// Cascades after files were opened, at the latest when the area is shown; where the editors start maximised, the
  /// active one is maximised again.
  void CascadeAfterOpening();

 signals:
  /// A document window is shown for the first time.
  void ChildAdded(QMdiSubWindow* child);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  /// Notes which control of a document has the keys, but for what windows do that are arranged.
  void NoteKeys(QWidget* now);
  void GiveKeysBack(QMdiSubWindow& child);
  QMdiSubWindow* AddChild(DocumentWindow& window);
  QList<QMdiSubWindow*> ShownChildren(bool minimised) const;
  void ArrangeIcons(const QSize& room);
  /// Where a cascade puts its n-th window, from 0.
  QRect CascadeRect(int place, const QWidget* window) const;

  GlobalMenus& menus_;
  const Settings& settings_;
  DocumentWindow* active_document_ = nullptr;
  bool activates_next_ = true;
  bool is_arranging_ = false;
  QHash<const QMdiSubWindow*, QPointer<QWidget>> keys_;
  /// Files were opened before the area had its real size.
  bool cascade_when_shown_ = false;
};

}  // namespace tme
