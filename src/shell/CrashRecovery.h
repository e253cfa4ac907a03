#pragma once

#include <QCoreApplication>
#include <QSet>
#include <string>

#include "history/KeptVersion.h"

namespace tme {

class DocumentWindow;
class RecoverySnapshots;
struct Global;

/// Opens the documents that an earlier run left with unsaved changes, as they were, marked changed. Their snapshots
/// stay until they are saved or closed.
class CrashRecovery {
  Q_DECLARE_TR_FUNCTIONS(CrashRecovery)

 public:
  CrashRecovery(Global& global, RecoverySnapshots& snapshots) : global_(global), snapshots_(snapshots) {}

  /// Windows of a kind that are all taken, or a content that ended the program at two starts: it becomes a version of
  /// the history, which a notice or a message says.
  void Run();

 private:
  void Reopen(const KeptVersion& snapshot, std::string content);
  /// False when it could not be kept; the snapshot stays then.
  bool KeepAsVersion(const KeptVersion& snapshot, const std::string& content);
  void TellNoRoom(DocumentKind kind);

  Global& global_;
  RecoverySnapshots& snapshots_;
  QSet<DocumentWindow*> reopened_;
};

}  // namespace tme
