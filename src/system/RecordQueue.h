#pragma once

#include <deque>
#include <functional>
#include <memory>

#include "system/InstanceLink.h"

namespace tme {

/// The records that other launches sent, until they are delivered: one after the other, on the user-interface thread.
/// They wait while `receive` runs, perhaps inside a message box, and while the wait cursor (Qt's override cursor) is
/// set.
class RecordQueue : public std::enable_shared_from_this<RecordQueue> {
 public:
  using Receive = std::function<void(const CopyData&)>;

  explicit RecordQueue(Receive receive) : receive_(std::move(receive)) {}

  /// done: called once the record is dealt with; never for one that Clear takes away.
  void Add(
      CopyData record, std::function<void()> done = [] {});
  /// Delivers what waits, now if possible, else as soon as it is. `receive` may end whoever owns the queue.
  void Deliver();
  /// Delivers from the event loop, where the caller may not be ended.
  void DeliverLater();
  void Clear() { waiting_.clear(); }

 private:
  struct Waiting {
    CopyData record;
    std::function<void()> done;
  };

  const Receive receive_;
  std::deque<Waiting> waiting_;
  bool delivering_ = false;
};

}  // namespace tme
