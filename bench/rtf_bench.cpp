// Run with --benchmark_repetitions=9 --benchmark_report_aggregates_only=true and compare the medians of one run:
// reading is to take at most a tenth of BM_UnrtfText (left out where unrtf is not installed), writing no longer than
// reading.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "ResidentMemory.h"
#include "RtfInput.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfWriter.h"
#include "files/CodePage.h"

namespace tme {
namespace {

constexpr std::size_t kBytes = 20'000'000;

const std::string& Input() {
  static const std::string input = MakeRtfInput(kBytes);
  return input;
}

/// First, while no memory lies ready from before: what a document keeps, the file's bytes not included.
void BM_RtfDocumentMemory(benchmark::State& state) {
  Input();
  for (auto _ : state) {
    const std::size_t before = ResidentBytes();
    const rtf::RtfDocument document = rtf::ReadRtf(Input(), BytesToUtf8);
    const auto growth = static_cast<double>(ResidentBytes() - before);
    state.counters["memory/file"] = growth / static_cast<double>(Input().size());
    state.counters["runs"] = static_cast<double>(document.runs.size());
    state.counters["formats"] = static_cast<double>(document.char_formats.size());
  }
}
BENCHMARK(BM_RtfDocumentMemory)->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);

/// The yardstick: another reader of the same file.
void BM_UnrtfText(benchmark::State& state) {
  const std::filesystem::path path = std::filesystem::temp_directory_path() / "tme_rtf_bench.rtf";
  std::ofstream(path, std::ios::binary) << Input();
  const std::string command = "unrtf --text '" + path.string() + "' >/dev/null 2>&1";
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) state.SkipWithError("no unrtf");
  }
  std::filesystem::remove(path);
}
BENCHMARK(BM_UnrtfText)->UseRealTime()->Unit(benchmark::kMillisecond);

void BM_RtfRead(benchmark::State& state) {
  std::optional<rtf::RtfDocument> document;
  for (auto _ : state) {
    state.PauseTiming();
    document.reset();
    state.ResumeTiming();
    document = rtf::ReadRtf(Input(), BytesToUtf8);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Input().size()));
}
BENCHMARK(BM_RtfRead)->UseRealTime()->Unit(benchmark::kMillisecond);

void Write(benchmark::State& state, bool (*write)(const rtf::RtfDocument&, const PartSink&)) {
  const rtf::RtfDocument document = rtf::ReadRtf(Input(), BytesToUtf8);
  std::size_t written = 0;
  for (auto _ : state) {
    write(document, [&written](std::string_view part) {
      written += part.size();
      benchmark::DoNotOptimize(part.data());
      return true;
    });
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(written));
}
void BM_RtfWrite(benchmark::State& state) { Write(state, rtf::WriteRtf); }
void BM_RtfWriteAsText(benchmark::State& state) { Write(state, rtf::WriteRtfAsText); }
BENCHMARK(BM_RtfWrite)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RtfWriteAsText)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tme

BENCHMARK_MAIN();
