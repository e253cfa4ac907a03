#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <functional>

#include "documents/DocumentKind.h"

class QAction;
class QMenu;
class QMenuBar;

namespace tme {

class DocumentWindow;
struct Global;

/// The one menu bar. A single table (in the .cpp) holds every menu and item: its name, caption, the command that it
/// sends, and the kinds that show it. Building the bar, RefreshMenus and the routing all read that table.
class GlobalMenus : public QObject {
  Q_OBJECT

 public:
  /// Fills the bar, which owns the menus. send: takes what an item sends to the active document.
  GlobalMenus(QMenuBar& bar, std::function<void(const QByteArray& command)> send);

  /// An item that the frame handles itself. Until it has a handler, such an item is not shown.
  void Handle(const char* item_name, std::function<void()> handler);

  /// Shows the menus and items of a kind and hides the others. Every item is available afterwards.
  void RefreshMenus(DocumentKind kind);
  /// Keeps an item out of its menu whatever RefreshMenus says, until it is taken back; shows or hides it now.
  void SetHidden(const QString& item_name, bool hidden);
  /// Whether an item of the active document can be chosen now.
  void SetAvailable(const char* item_name, bool available);

  /// Another caption for an item of the active document, until RefreshMenus.
  void SetCaption(const char* item_name, const QString& caption);

  /// The check mark of an item; one that was never set has none.
  void SetChecked(const char* item_name, bool checked);

  /// Null for a name that is not in the table.
  QAction* Action(const QString& item_name) const;
  QMenu* Menu(const QString& menu_name) const;
  /// What an item sends to a window of the kind; empty for an item of the frame.
  static QByteArray CommandOf(const QString& item_name, DocumentKind kind);

 private:
  void AddMenu(const QString& name, const QString& caption, QMenu* parent);
  void Choose(std::size_t row);
  void LoadIcons(const QString& menu_name);
  /// Only these stand in the bar: a hidden menu there would still hold its access key, and three are called "&Edit".
  void ShowInBar(const QList<QAction*>& menus);
  bool IsOffered(std::size_t row, DocumentKind kind) const;

  QMenuBar& bar_;
  const std::function<void(const QByteArray& command)> send_;
  QHash<QString, QAction*> actions_;
  QHash<QString, QMenu*> menus_;
  QHash<QString, std::function<void()>> handlers_;
  QSet<QString> hidden_;
  /// Those that have another caption than the table's.
  QSet<QString> captioned_;
  DocumentKind kind_ = DocumentKind::Mdi;
};

/// Calls a command of the window by its name. A window without that command: a message, and false.
bool SendCommand(Global& global, DocumentWindow& window, const QByteArray& command);

}  // namespace tme
