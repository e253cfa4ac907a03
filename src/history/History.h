#pragma once

#include "history/ContentStore.h"
#include "history/FileReplacer.h"
#include "history/SnapshotStore.h"
#include "history/StorePruner.h"
#include "history/VersionStore.h"

namespace tme {

/// The parts of one store. A content is on the disk before what names it, so a crash leaves at most a content that
/// nothing names, which a later Prune takes away. Any thread may call, and no lock that Keep needs is held meanwhile.
class History {
 public:
  /// limits: for tests.
  explicit History(QString path, HistoryLimits limits = {})
      : folder(std::move(path)), pruner(folder, contents, versions, snapshots, limits) {}

  StoreFolder folder;
  ContentStore contents{folder};
  VersionStore versions{folder, contents};
  SnapshotStore snapshots{folder, contents};
  FileReplacer files{versions};
  StorePruner pruner;
};

}  // namespace tme
