#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace tme {

/// A figure of a content that may take long to find out: found out at once as long as that is quick, else when no edit
/// came for a while, and what was known before stands meanwhile.
template <class Figure>
class QuietFigure {
 public:
  /// found: a figure that was put off is known now.
  explicit QuietFigure(std::function<void()> found) : found_(std::move(found)) {
    pause_.setSingleShot(true);
    pause_.setInterval(kPauseMs);
    QObject::connect(&pause_, &QTimer::timeout, [this] {
      is_quick_ = true;
      found_();
    });
  }

  /// Of the content with this revision.
  template <class Find>
  const Figure& Of(std::uint64_t revision, Find find) {
    if (figure_ && revision_ == revision) return *figure_;
    if (figure_ && !is_quick_) {
      if (std::exchange(awaited_, revision) != revision || !pause_.isActive()) pause_.start();
      return *figure_;
    }
    QElapsedTimer timer;
    timer.start();
    figure_ = find();
    revision_ = revision;
    is_quick_ = timer.elapsed() < kQuickMs;
    return *figure_;
  }
  /// Another content begins.
  void Forget() {
    figure_.reset();
    pause_.stop();
  }

 private:
  static constexpr int kQuickMs = 3, kPauseMs = 500;

  const std::function<void()> found_;
  QTimer pause_;
  std::optional<Figure> figure_;
  std::uint64_t revision_ = 0;
  std::uint64_t awaited_ = 0;
  bool is_quick_ = true;
};

}  // namespace tme
