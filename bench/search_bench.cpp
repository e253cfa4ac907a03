// Looking for a word that is nowhere in 100 MB of text, ASCII and not. What to compare with, on the file that
// `tme_search_bench --write FILE` leaves:
//   time grep -c -i zyzzyva FILE | cat     (the pipe keeps grep from stopping at the first match)
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "documents/search/TextSearch.h"

namespace tme {
namespace {

constexpr std::size_t kBytes = 100'000'000;

std::string MakeText() {
  static constexpr std::string_view kWords[] = {"the ", "editor ", "keeps ", "every ", "line ", "of Text ", "Zurich ",
                                                "and ", "vary ",   "only ",  "what ",  "is\n",  "asked ",   "für "};
  std::string text;
  text.reserve(kBytes + 16);
  for (std::uint32_t random = 1; text.size() < kBytes;) {
    random = random * 1664525 + 1013904223;
    text += kWords[(random >> 16) % std::size(kWords)];
  }
  return text;
}

const std::string& Text() {
  static const std::string text = MakeText();
  return text;
}

void BM_MissingWord(benchmark::State& state, std::string_view wanted, SearchCase search_case) {
  const std::string_view text = Text();
  for (auto _ : state) {
    const TextSearch search(wanted, search_case, SearchWords::Any);
    if (search.Find(text, 0, text.size())) std::abort();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK_CAPTURE(BM_MissingWord, ignoring_case, "zyzzyva", SearchCase::Ignore)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_MissingWord, matching_case, "zyzzyva", SearchCase::Match)->Unit(benchmark::kMillisecond);
// Made of the commonest letters of the text, and ending in one with forms of several lengths.
BENCHMARK_CAPTURE(BM_MissingWord, common_letters, "tetheros", SearchCase::Ignore)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_MissingWord, single_long_form, "sss", SearchCase::Ignore)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_MissingWord, beyond_ascii, "Führung", SearchCase::Ignore)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  if (argc == 3 && std::string_view(argv[1]) == "--write") {
    std::ofstream(argv[2], std::ios::binary) << tme::Text();
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
