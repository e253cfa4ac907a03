#include <cstdio>
#include <cstdlib>

#include "RegInput.h"

int main(int argc, char** argv) {
  const std::size_t keys = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100'000;
  const std::size_t values_per_key = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 10;
  const std::string text = tme::MakeRegInput(keys, values_per_key);
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}
