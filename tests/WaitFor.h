#pragma once

#include <QTest>

/// Turns the event loop until the condition holds. No limit of its own, which a busy machine would reach: ctest has
/// one.
template <typename Condition>
void WaitFor(const Condition& condition) {
  while (!QTest::qWaitFor(condition)) continue;
}
