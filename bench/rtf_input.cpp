#include <cstdio>
#include <cstdlib>

#include "RtfInput.h"

int main(int argc, char** argv) {
  const std::size_t megabytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 20;
  const std::string text = tme::MakeRtfInput(megabytes * 1'000'000);
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}
