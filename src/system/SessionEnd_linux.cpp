#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>

#include "system/SessionEnd.h"

namespace tme {
namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

/// The end that the handler writes to; a handler may do little more than that.
volatile std::sig_atomic_t write_end = -1;

void WakeUp(int) {
  const int error = errno;
  const char byte = 0;
  // A full pipe has woken the program already.
  static_cast<void>(::write(write_end, &byte, 1) < 0);
  errno = error;
}

}  // namespace

class SessionEnd::Signals {
 public:
  explicit Signals(const std::function<void(Questions)>& end) {
    if (::pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    write_end = pipe_[1];
    notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this, end] {
      std::array<char, 64> bytes;
      while (::read(pipe_[0], bytes.data(), bytes.size()) > 0) continue;
      end(Questions::Allowed);
    });
    // A file over the limit of its size, a reader that is gone: the call says so, which is no reason to end.
    for (const int signal : {SIGXFSZ, SIGPIPE}) std::signal(signal, SIG_IGN);
    struct sigaction action {};
    action.sa_handler = WakeUp;
    action.sa_flags = SA_RESTART;
    for (std::size_t index = 0; index < kSignals.size(); ++index) {
      ::sigaction(kSignals[index], nullptr, &before_[index]);
      // What nohup switched off stays off.
      if (before_[index].sa_handler != SIG_IGN) ::sigaction(kSignals[index], &action, nullptr);
    }
  }
  ~Signals() {
    if (!notifier_) return;
    for (std::size_t index = 0; index < kSignals.size(); ++index)
      ::sigaction(kSignals[index], &before_[index], nullptr);
    notifier_.reset();
    write_end = -1;
    ::close(pipe_[0]);
    ::close(pipe_[1]);
  }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

 private:
  std::array<int, 2> pipe_{-1, -1};
  std::array<struct sigaction, kSignals.size()> before_{};
  std::unique_ptr<QSocketNotifier> notifier_;
};

SessionEnd::SessionEnd(const std::function<void(Questions)>& end) : signals_(std::make_unique<Signals>(end)) {
  FollowSessionManager(end);
}

SessionEnd::~SessionEnd() = default;

}  // namespace tme
