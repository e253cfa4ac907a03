#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Reversed.h"
#include "documents/WrittenChange.h"

namespace tme {

/// Follows what a document writes by the changes that it tells of, where it does.
class WrittenText {
 public:
  WrittenText(std::uint64_t revision, std::string text) : revision_(revision), text_(std::move(text)) {}

  std::uint64_t Revision() const { return revision_; }
  std::size_t Followed() const { return followed_; }
  /// now: what is written at the revision.
  void Follow(const std::vector<WrittenChange>& changes, std::uint64_t revision, std::string now) {
    for (const WrittenChange& change : Reversed(changes)) {
      const std::vector<std::size_t> starts = LineStarts();
      ASSERT_LE(change.before + change.behind, starts.size() - 1);
      const std::size_t behind = starts[starts.size() - 1 - change.behind];
      EXPECT_EQ(text_.substr(behind, text_.find('\r', behind) - behind), change.next);
      text_.replace(starts[change.before], behind - starts[change.before], change.lines);
    }
    followed_ += changes.empty() ? 0 : 1;
    ASSERT_TRUE(changes.empty() || text_ == now) << text_ << "\ninstead of\n" << now;
    revision_ = revision;
    text_ = std::move(now);
  }

 private:
  /// And the end.
  std::vector<std::size_t> LineStarts() const {
    std::vector<std::size_t> starts{0};
    for (std::size_t at = text_.find('\n'); at != std::string::npos; at = text_.find('\n', at + 1))
      starts.push_back(at + 1);
    return starts;
  }

  std::uint64_t revision_;
  std::string text_;
  std::size_t followed_ = 0;
};

}  // namespace tme
