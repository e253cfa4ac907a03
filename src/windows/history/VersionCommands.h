#pragma once

#include <QCoreApplication>
#include <optional>
#include <string>

#include "history/KeptVersion.h"

namespace tme {

class DocumentWindow;
struct Global;

/// What can be done with a kept version. A failure is a message, after which nothing has changed.
class VersionCommands {
  Q_DECLARE_TR_FUNCTIONS(VersionCommands)

 public:
  explicit VersionCommands(Global& global) : global_(global) {}

  /// Opens the version in a document without a file. False when it could not be opened.
  bool OpenAsNew(const KeptVersion& version);
  /// Asks for a path and writes the version there; what the copy replaces is kept, too.
  void SaveCopy(const KeptVersion& version);
  /// Gives the version to its document, marked changed; what it held is kept first. False when nothing changed.
  bool Restore(const KeptVersion& version);

  /// What a document holds, when no file does; nothing otherwise and for no window.
  static std::optional<std::string> UnsavedOf(DocumentWindow* window);
  /// The same for the version's document.
  std::optional<std::string> UnsavedNow(const KeptVersion& version) const;

 private:
  void Say(const QString& text);
  /// The version's content; a message and nothing when it is gone.
  std::optional<std::string> ContentOf(const KeptVersion& version);
  /// The window that holds the version's document now, the active one if there are several; null when it is not open.
  DocumentWindow* WindowOf(const KeptVersion& version) const;
  /// Where the copy goes; empty when cancelled.
  QString AskForCopyPath(const ContentOrigin& origin);

  Global& global_;
};

}  // namespace tme
