#pragma once

/// How long a test waits for what should come at once, in ms: long, since a busy machine is slow, and a good run never
/// waits so long.
constexpr int kPatience = 60'000;
