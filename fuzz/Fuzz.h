#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What libFuzzer calls with each input; the rest of a target stands beside it. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tme::fuzz {

/// The program promises this of every input. A broken promise ends the process, which the fuzzer takes for a find.
inline void Promise(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "Broken promise: %s\n", promise);
  std::abort();
}

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// The first byte of an input, taken off it: what the user answers, or which of several ways is gone. 0 when it is
/// empty.
inline std::uint8_t TakeByte(std::string_view& input) {
  if (input.empty()) return 0;
  const auto byte = static_cast<std::uint8_t>(input.front());
  input.remove_prefix(1);
  return byte;
}

}  // namespace tme::fuzz
