#pragma once

#include <QByteArray>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tme {

/// Sizes of the packed record, and the most data that one can carry.
inline constexpr std::uint32_t kCopyDataHeaderBytes = 12;
inline constexpr std::uint32_t kMaxCopyDataBytes = 255;

/// dwData of a record whose data may be longer; a receiver that does not know it, such as an older version, says that
/// it did not take it. The number is chosen so that no other program means something by it ("TMEW").
inline constexpr std::uint32_t kLongData = 0x544D4557;
/// An argument on Linux (MAX_ARG_STRLEN, binfmts.h); the 32767 characters of a command line on Windows are fewer bytes.
inline constexpr std::uint32_t kMaxLongDataBytes = 131072;

/// Most data of a record with this dwData, in bytes.
constexpr std::uint32_t MaxDataBytes(std::uint32_t dwData) {
  return dwData == kLongData ? kMaxLongDataBytes : kMaxCopyDataBytes;
}

/// What one launch hands to the running one. On Windows this is COPYDATASTRUCT (winuser.h) sent with WM_COPYDATA;
/// elsewhere the same packed record goes over a local socket: dwData, cbData, lpData as 32-bit little-endian numbers
/// (lpData 12, the offset of the data), then cbData bytes.
struct CopyData {
  std::uint32_t dwData = 0;
  QByteArray data;      ///< cbData bytes, a zero byte at the end included
  bool is_cut = false;  ///< received: the sender had more than fits. Not packed
};

/// Packs a record. data: at most MaxDataBytes.
QByteArray PackCopyData(const CopyData& record);
/// Most bytes of a record that need to be read: one more than the longest has.
inline constexpr std::uint32_t kMaxRecordBytes = kCopyDataHeaderBytes + kMaxLongDataBytes + 1;
/// Whether a record of which these bytes have come may become whole when more do; never so of kMaxRecordBytes.
bool IsBeginningOfRecord(const QByteArray& bytes);
/// Null for a record that is truncated, over-long (cbData over MaxDataBytes) or inconsistent.
std::optional<CopyData> UnpackCopyData(const QByteArray& bytes);

/// What became of a record that was sent.
enum class Delivery : std::uint8_t {
  DealtWith,    ///< on Windows also: it waits in the receiver's queue
  NotTaken,     ///< there is a receiver, and it does not take records of this kind
  NobodyThere,  ///< no receiver, or one that does not come to it; nothing becomes of the record then
};

/// One instance per user and program, and the way to the one that runs.
class InstanceLink {
 public:
  InstanceLink();
  /// Stops listening and gives up the claim.
  ~InstanceLink();
  InstanceLink(const InstanceLink&) = delete;
  InstanceLink& operator=(const InstanceLink&) = delete;

  /// Claims to be the only instance of this user: on Windows in the log-on session, elsewhere on the machine with these
  /// settings. The claim lasts until this object or the process ends; that of a dead process is taken over. Returns
  /// false if another one lives.
  bool ClaimOnlyInstance();
  /// From here on a new launch is the only instance.
  void GiveUpClaim();

  /// The receiving side: calls `receive` for each record, in the order and at the times of RecordQueue. The sender
  /// waits until it returns; on Windows, the sender of a record that has to wait only until it is queued.
  ///
  /// Only processes of the same user reach it; on Windows, all of the same desktop that do not run at a lower integrity
  /// level, and a message does not tell its sender for certain.
  ///
  /// On Windows the window behind the handle is subclassed, and data beyond kMaxCopyDataBytes of other programs'
  /// records is cut off. One window of a process can listen, and not again if others had subclassed it too by
  /// StopListening. Returns false if the endpoint cannot be made.
  bool Listen(std::uint32_t handle, const std::function<void(const CopyData&)>& receive);
  void StopListening();

  /// The sending side: returns when the receiver has dealt with the record (on Windows, has it waiting). A receiver
  /// that does not take it within kHangPatience (on Windows, one that the system knows as hanging) counts as nobody.
  /// handle: what the settings name; without one, or if nobody is behind it, the record goes to whoever holds the
  /// claim.
  static Delivery Send(std::optional<std::uint32_t> handle, const CopyData& record);
  static constexpr std::chrono::milliseconds kHangPatience{3000};

 private:
  struct System;
  std::unique_ptr<System> system_;
};

}  // namespace tme
