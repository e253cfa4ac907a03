// What a save after a change writes, without a window: tme_rtf_roundtrip IN OUT [IN OUT]...
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfWriter.h"
#include "files/CodePage.h"

namespace {

bool RoundTrip(const char* from, const char* to) {
  std::ifstream in(from, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  std::ofstream out(to, std::ios::binary);
  const tme::rtf::RtfDocument document = tme::rtf::ReadRtf(bytes, tme::BytesToUtf8);
  return tme::rtf::WriteRtf(document, [&out](std::string_view part) {
    return out.write(part.data(), static_cast<std::streamsize>(part.size())).good();
  });
}

}  // namespace

int main(int argc, char** argv) {
  int failed = 0;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (RoundTrip(argv[i], argv[i + 1])) continue;
    std::fprintf(stderr, "%s: not written\n", argv[i]);
    failed = 1;
  }
  return failed;
}
