// Run with --benchmark_repetitions=9 --benchmark_report_aggregates_only=true and compare the medians of one run.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "IniInput.h"
#include "ResidentMemory.h"
#include "documents/ini/IniLine.h"
#include "documents/ini/IniReader.h"
#include "documents/ini/IniTree.h"
#include "documents/ini/IniWriter.h"
#include "files/TextEncoding.h"

#ifdef BENCH_INIH
#include <ini.h>
#endif
#ifdef BENCH_GLIB
#include <glib.h>
#endif
#ifdef BENCH_SIMPLEINI
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#endif

namespace tme {
namespace {

constexpr std::size_t kSections = 20'000;
constexpr std::size_t kEntriesPerSection = 50;

const std::string& Input() {
  static const std::string input = MakeIniInput(kSections, kEntriesPerSection);
  return input;
}

void ReadInto(IniTree& tree, std::string bytes) {
  const IniQuestions ask{[](std::string_view) { return true; }};
  ReadIni(tree, DecodeText(std::move(bytes)).text, ask);
}

void SetBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Input().size()));
}

/// First, while no memory lies ready from before: what a document keeps, the file's own bytes included.
void BM_IniDocumentMemory(benchmark::State& state) {
  Input();
  for (auto _ : state) {
    const std::size_t before = ResidentBytes();
    IniTree tree;
    ReadInto(tree, Input());
    const auto growth = static_cast<double>(ResidentBytes() - before);
    state.counters["memory/file"] = growth / static_cast<double>(Input().size());
  }
}
BENCHMARK(BM_IniDocumentMemory)->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);

/// Opening moves the bytes in, and closing is another benchmark: neither is timed.
void BM_IniDocumentFromBytes(benchmark::State& state) {
  std::optional<IniTree> tree;
  for (auto _ : state) {
    state.PauseTiming();
    tree.reset();
    std::string bytes = Input();
    state.ResumeTiming();
    tree.emplace();
    ReadInto(*tree, std::move(bytes));
  }
  SetBytes(state);
}
BENCHMARK(BM_IniDocumentFromBytes)->Unit(benchmark::kMillisecond);

#ifdef BENCH_INIH
void BM_inih(benchmark::State& state) {
  std::size_t lines = 0;
  const auto count = [](void* user, const char*, const char*, const char*) { return ++*static_cast<size_t*>(user), 1; };
  for (auto _ : state) benchmark::DoNotOptimize(ini_parse_string(Input().c_str(), count, &lines));
  SetBytes(state);
}
BENCHMARK(BM_inih)->Unit(benchmark::kMillisecond);
#endif

#ifdef BENCH_GLIB
void BM_GLibKeyFile(benchmark::State& state) {
  for (auto _ : state) {
    GKeyFile* file = g_key_file_new();
    if (!g_key_file_load_from_data(file, Input().data(), Input().size(), G_KEY_FILE_NONE, nullptr)) std::abort();
    state.PauseTiming();
    g_key_file_free(file);
    state.ResumeTiming();
  }
  SetBytes(state);
}
BENCHMARK(BM_GLibKeyFile)->Unit(benchmark::kMillisecond);
#endif

#ifdef BENCH_SIMPLEINI
void BM_SimpleIni(benchmark::State& state) {
  std::optional<CSimpleIniA> file;
  for (auto _ : state) {
    state.PauseTiming();
    file.emplace();
    state.ResumeTiming();
    if (file->LoadData(Input()) != SI_OK) std::abort();
  }
  SetBytes(state);
}
BENCHMARK(BM_SimpleIni)->Unit(benchmark::kMillisecond);
#endif

void BM_IniDocumentClose(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    std::optional<IniTree> tree(std::in_place);
    ReadInto(*tree, Input());
    state.ResumeTiming();
    tree.reset();
  }
}
BENCHMARK(BM_IniDocumentClose)->Unit(benchmark::kMillisecond);

void BM_MillionSections(benchmark::State& state) {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += "[Section " + std::to_string(i) + "]\r\nkey=value\r\n";
  for (auto _ : state) {
    IniTree tree;
    ReadInto(tree, text);
  }
}
BENCHMARK(BM_MillionSections)->Unit(benchmark::kMillisecond);

void BM_WriteIni(benchmark::State& state) {
  IniTree tree;
  ReadInto(tree, Input());
  for (auto _ : state) benchmark::DoNotOptimize(WriteIni(tree));
  SetBytes(state);
}
BENCHMARK(BM_WriteIni)->Unit(benchmark::kMillisecond);

/// Each turn adds to the document that the turns before have left, as a user would.
void BM_AddEntryToAllSections(benchmark::State& state) {
  IniTree tree;
  ReadInto(tree, Input());
  for (auto _ : state) tree.AddEntryToAllSections("NewEntry", "1");
}
BENCHMARK(BM_AddEntryToAllSections)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_RemoveSelectedKey(benchmark::State& state) {
  IniTree tree;
  ReadInto(tree, Input());
  for (auto _ : state) {
    state.PauseTiming();
    tree.AddEntryToAllSections("NewEntry", "1");
    IniNode* section = tree.Root()->Child(0);
    for (int row = 0; row < section->ChildCount(); ++row) {
      if (EntryKeyOf(section->Child(row)->Text()) == "NewEntry") tree.Select(section->Child(row));
    }
    state.ResumeTiming();
    tree.RemoveSelectedKey();
  }
}
BENCHMARK(BM_RemoveSelectedKey)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tme

BENCHMARK_MAIN();
