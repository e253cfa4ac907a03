#include <windows.h>
#include <sddl.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "system/InstanceLink.h"
#include "system/RecordQueue.h"

namespace tme {
namespace {

HWND WindowOf(std::uint32_t handle) { return reinterpret_cast<HWND>(static_cast<ULONG_PTR>(handle)); }

/// Text of the user's security identifier; empty when the system does not tell.
std::wstring UserId() {
  HANDLE token = nullptr;
  if (::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token) == 0) return {};
  DWORD size = 0;
  ::GetTokenInformation(token, TokenUser, nullptr, 0, &size);
  std::vector<std::byte> bytes(size);
  const bool known = ::GetTokenInformation(token, TokenUser, bytes.data(), size, &size) != 0;
  ::CloseHandle(token);
  wchar_t* text = nullptr;
  if (!known || ::ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(bytes.data())->User.Sid, &text) == 0) return {};
  std::wstring id(text);
  ::LocalFree(text);
  return id;
}

/// Marks a window behind which a frame of this user listens: a stale handle that another window got is known as such,
/// and the frame is found where the handle is lost.
const std::wstring& FrameMark() {
  static const std::wstring mark = L"TamarindEditor.Frame-" + UserId();
  return mark;
}

bool IsFrame(HWND window) { return ::IsWindow(window) != 0 && ::GetPropW(window, FrameMark().c_str()) != nullptr; }

/// The frame of this desktop; null when none listens.
HWND FindFrame() {
  HWND found = nullptr;
  const WNDENUMPROC check = [](HWND window, LPARAM result) {
    if (!IsFrame(window)) return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
  };
  ::EnumWindows(check, reinterpret_cast<LPARAM>(&found));
  return found;
}

/// A frame whose window procedure is ours. The sender of a record that has to wait is let go, since this thread could
/// not come back to what it does before it has answered it.
class HookedFrame {
 public:
  HookedFrame(HWND window, const RecordQueue::Receive& receive)
      : window_(window), queue_(std::make_shared<RecordQueue>(receive)) {}

  bool Hook(WNDPROC procedure);
  void Unhook();
  /// Whether it is taken; the result of the message for records that need one.
  bool Take(const COPYDATASTRUCT& record);

  HWND window() const { return window_; }
  WNDPROC previous() const { return previous_; }

 private:
  const HWND window_;
  const std::shared_ptr<RecordQueue> queue_;
  WNDPROC previous_ = nullptr;
  bool hooked_ = false;
};

/// The one of this process; shared with the procedure, which may run when the frame is unhooked.
std::shared_ptr<HookedFrame> hooked_frame;
/// Where messages go whose frame was unhooked while something stood before it in the window's chain of procedures.
WNDPROC left_behind = nullptr;

/// The frame's window procedure while it is hooked: takes what other launches send, and passes every message on.
LRESULT CALLBACK FrameWindowProc(HWND window, UINT message, WPARAM w_param, LPARAM l_param) {
  const std::shared_ptr<HookedFrame> frame = hooked_frame;
  const bool is_hooked = frame && frame->window() == window;
  const WNDPROC next = is_hooked ? frame->previous() : left_behind ? left_behind : ::DefWindowProcW;
  bool taken = false;
  if (is_hooked && message == WM_COPYDATA && l_param != 0) {
    const auto& record = *reinterpret_cast<const COPYDATASTRUCT*>(l_param);
    // The result of a command line's is the next procedure's, as it always was.
    taken = frame->Take(record) && record.dwData == kLongData;
  }
  if (message == WM_NCDESTROY) {  // the last one
    if (is_hooked) frame->Unhook();
    left_behind = nullptr;
  }
  const LRESULT result = ::CallWindowProcW(next, window, message, w_param, l_param);
  return taken ? TRUE : result;
}

bool HookedFrame::Hook(WNDPROC procedure) {
  // Our procedure still stands in a chain: hooked there again, it would come to itself.
  if (left_behind != nullptr) return false;
  DWORD process = 0;
  ::GetWindowThreadProcessId(window_, &process);
  if (process != ::GetCurrentProcessId()) return false;
  previous_ = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(window_, GWLP_WNDPROC));
  if (previous_ == nullptr) return false;
  hooked_ = ::SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)) != 0;
  if (hooked_) ::SetPropW(window_, FrameMark().c_str(), window_);
  return hooked_;
}

void HookedFrame::Unhook() {
  if (!std::exchange(hooked_, false)) return;
  queue_->Clear();
  ::RemovePropW(window_, FrameMark().c_str());
  const auto now = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(window_, GWLP_WNDPROC));
  if (now == FrameWindowProc) {
    ::SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous_));
  } else {
    left_behind = previous_;
  }
}

bool HookedFrame::Take(const COPYDATASTRUCT& record) {
  if (!hooked_ || record.dwData > 0xFFFFFFFF) return false;
  const auto meaning = static_cast<std::uint32_t>(record.dwData);
  const bool is_cut = record.cbData > MaxDataBytes(meaning);
  if (is_cut && meaning == kLongData) return false;
  // At most what the buffer of a command line holds, and never more than came.
  const auto size = record.lpData ? std::min<DWORD>(record.cbData, MaxDataBytes(meaning)) : 0;
  queue_->Add({meaning, QByteArray(static_cast<const char*>(record.lpData), static_cast<qsizetype>(size)), is_cut});
  queue_->Deliver();
  return true;
}

}  // namespace

struct InstanceLink::System {
  HANDLE claim = nullptr;
  std::shared_ptr<HookedFrame> frame;
};

InstanceLink::InstanceLink() : system_(std::make_unique<System>()) {}

InstanceLink::~InstanceLink() {
  StopListening();
  GiveUpClaim();
}

/// The claim is a named object of the log-on session, which goes with the last process that has it open.
bool InstanceLink::ClaimOnlyInstance() {
  if (system_->claim != nullptr) return true;
  const std::wstring name = LR"(Local\TamarindEditor-)" + UserId();
  const HANDLE mutex = ::CreateMutexW(nullptr, FALSE, name.c_str());
  if (mutex == nullptr) return true;  // nobody can be found out about: rather a second frame than none
  if (::GetLastError() == ERROR_ALREADY_EXISTS) {
    ::CloseHandle(mutex);
    return false;
  }
  system_->claim = mutex;
  return true;
}

void InstanceLink::GiveUpClaim() {
  if (system_->claim != nullptr) ::CloseHandle(std::exchange(system_->claim, nullptr));
}

bool InstanceLink::Listen(std::uint32_t handle, const std::function<void(const CopyData&)>& receive) {
  StopListening();
  if (hooked_frame) return false;
  hooked_frame = std::make_shared<HookedFrame>(WindowOf(handle), receive);  // before the first message comes
  if (hooked_frame->Hook(FrameWindowProc)) system_->frame = hooked_frame;
  if (!system_->frame) hooked_frame.reset();
  return system_->frame != nullptr;
}

void InstanceLink::StopListening() {
  if (!system_->frame) return;
  system_->frame->Unhook();
  system_->frame.reset();
  hooked_frame.reset();
}

Delivery InstanceLink::Send(std::optional<std::uint32_t> handle, const CopyData& record) {
  HWND window = handle ? WindowOf(*handle) : nullptr;
  if (!IsFrame(window)) window = FindFrame();
  if (window == nullptr || ::IsHungAppWindow(window) != 0) return Delivery::NobodyThere;
  DWORD process = 0;
  ::GetWindowThreadProcessId(window, &process);
  ::AllowSetForegroundWindow(process);  // else the frame could only blink in the taskbar

  // The buffer of a command line is as long as the most that it holds, whatever the record says.
  QByteArray buffer(record.data.first(std::min<qsizetype>(record.data.size(), MaxDataBytes(record.dwData))));
  const auto size = static_cast<DWORD>(buffer.size());
  buffer.resize(std::max<qsizetype>(buffer.size(), kMaxCopyDataBytes));
  COPYDATASTRUCT message{record.dwData, size, buffer.data()};
  ::SetLastError(ERROR_SUCCESS);
  // No time limit: the receiver may have a question to its user open.
  const LRESULT result = ::SendMessageW(window, WM_COPYDATA, reinterpret_cast<WPARAM>(::GetModuleHandleW(nullptr)),
                                        reinterpret_cast<LPARAM>(&message));
  const DWORD error = ::GetLastError();
  if (error == ERROR_INVALID_WINDOW_HANDLE || error == ERROR_ACCESS_DENIED) return Delivery::NobodyThere;
  // The result of a command line's says nothing.
  return record.dwData == kLongData && result == 0 ? Delivery::NotTaken : Delivery::DealtWith;
}

}  // namespace tme
