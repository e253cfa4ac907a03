#include <gtest/gtest.h>

#include <csignal>

#include "files/StandardStreams.h"

namespace tme {
namespace {

int handled = 0;

TEST(StandardStreams, InterruptsWaitForTheOuterOfTwo) {
  auto* const before = std::signal(SIGTERM, [](int) { ++handled; });
  {
    const DeferredInterrupts outer;
    { const DeferredInterrupts inner; }
    std::raise(SIGTERM);
    EXPECT_EQ(handled, 0);
  }
  EXPECT_EQ(handled, 1);
  std::signal(SIGTERM, before);
}

}  // namespace
}  // namespace tme
