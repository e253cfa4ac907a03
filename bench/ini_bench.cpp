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

void ReadWhole(IniTree& tree, std::string bytes) {
  tree.Reset("f.ini", Holding::Whole);
  ReadWholeIni(tree, DecodeText(std::move(bytes)).text);
}

using Reader = void (*)(IniTree& tree, std::string bytes);

void SetBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Input().size()));
}

/// What a document keeps, the file's own bytes included. Only the first benchmark of a process finds no memory ready
/// from before: choose one of the two with --benchmark_filter.
void BM_IniDocumentMemory(benchmark::State& state, Reader read) {
  Input();
  for (auto _ : state) {
    const std::size_t before = ResidentBytes();
    IniTree tree;
    read(tree, Input());
    const auto growth = static_cast<double>(ResidentBytes() - before);
    state.counters["memory/file"] = growth / static_cast<double>(Input().size());
  }
}
BENCHMARK_CAPTURE(BM_IniDocumentMemory, by_rules, ReadInto)
    ->Iterations(1)
    ->Repetitions(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_IniDocumentMemory, whole, ReadWhole)->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond);

/// Opening moves the bytes in, and closing is another benchmark: neither is timed.
void BM_IniDocumentFromBytes(benchmark::State& state, Reader read) {
  std::optional<IniTree> tree;
  for (auto _ : state) {
    state.PauseTiming();
    tree.reset();
    std::string bytes = Input();
    state.ResumeTiming();
    tree.emplace();
    read(*tree, std::move(bytes));
  }
  SetBytes(state);
}
BENCHMARK_CAPTURE(BM_IniDocumentFromBytes, by_rules, ReadInto)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_IniDocumentFromBytes, whole, ReadWhole)->Unit(benchmark::kMillisecond);

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
BENCHMARK(BM_IniDocumentClose)->Iterations(20)->Unit(benchmark::kMillisecond);

void BM_MillionSections(benchmark::State& state, Reader read) {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += "[Section " + std::to_string(i) + "]\r\nkey=value\r\n";
  for (auto _ : state) {
    IniTree tree;
    read(tree, text);
  }
}
BENCHMARK_CAPTURE(BM_MillionSections, by_rules, ReadInto)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_MillionSections, whole, ReadWhole)->Unit(benchmark::kMillisecond);

void BM_WriteIni(benchmark::State& state, Reader read) {
  IniTree tree;
  read(tree, Input());
  for (auto _ : state) {
    std::string written;
    WriteIni(tree, [&written](std::string_view part) { return written += part, true; });
    benchmark::DoNotOptimize(written);
  }
  SetBytes(state);
}
BENCHMARK_CAPTURE(BM_WriteIni, by_rules, ReadInto)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_WriteIni, whole, ReadWhole)->Unit(benchmark::kMillisecond);

/// Reads a file of one section of a million entries.
IniNode* ReadLargeSection(IniTree& tree, Reader read) {
  read(tree, MakeIniInput(1, 1'000'000));
  return tree.Root()->Child(0);
}

/// Adds an entry, changes its value and removes it: in whole holding at the end of the section, by the rules in order.
void BM_EditInMillionEntries(benchmark::State& state, Reader read) {
  IniTree tree;
  IniNode* section = ReadLargeSection(tree, read);
  for (auto _ : state) {
    IniNode* entry = tree.AddEntry(section, "new", "1");
    tree.SetEntry(entry, "new", "2");
    tree.Remove(entry);
  }
}
BENCHMARK_CAPTURE(BM_EditInMillionEntries, by_rules, ReadInto)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_EditInMillionEntries, whole, ReadWhole)->Unit(benchmark::kMicrosecond);

/// The worst place: every entry behind it gets another row.
void BM_RemoveFirstOfMillionEntries(benchmark::State& state) {
  IniTree tree;
  const IniNode* section = ReadLargeSection(tree, ReadWhole);
  for (auto _ : state) tree.Remove(section->Child(0));
}
BENCHMARK(BM_RemoveFirstOfMillionEntries)->Iterations(200)->Unit(benchmark::kMicrosecond);

void BM_SortMillionEntriesByName(benchmark::State& state) {
  IniTree tree;
  ReadLargeSection(tree, ReadWhole);
  for (auto _ : state) {
    tree.Arrange(IniArrangement::ByName);
    tree.Arrange(IniArrangement::AsInFile);
  }
}
BENCHMARK(BM_SortMillionEntriesByName)->Unit(benchmark::kMillisecond);

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

/// A million entries go and come back; what stands alone in the timed part is what the name says.
enum class Timed { Delete, Undo };

template <typename Edit>
void TimeDeletion(benchmark::State& state, IniTree& tree, Timed timed, Edit edit) {
  for (auto _ : state) {
    if (timed == Timed::Undo) state.PauseTiming();
    edit();
    if (timed == Timed::Undo)
      state.ResumeTiming();
    else
      state.PauseTiming();
    tree.Undo();
    if (timed == Timed::Delete) state.ResumeTiming();
  }
}

void BM_LargeSection(benchmark::State& state, Reader read, Timed timed) {
  IniTree tree;
  IniNode* section = ReadLargeSection(tree, read);
  TimeDeletion(state, tree, timed, [&] { tree.Remove(section); });
}
BENCHMARK_CAPTURE(BM_LargeSection, delete_by_rules, ReadInto, Timed::Delete)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_LargeSection, delete_whole, ReadWhole, Timed::Delete)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_LargeSection, undo_by_rules, ReadInto, Timed::Undo)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_LargeSection, undo_whole, ReadWhole, Timed::Undo)->Unit(benchmark::kMicrosecond);

/// One in each of a million sections.
void BM_KeyOfMillionSections(benchmark::State& state, Reader read, Timed timed) {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += "[Section " + std::to_string(i) + "]\r\nkey=value\r\nother=1\r\n";
  IniTree tree;
  read(tree, text);
  tree.Select(tree.Root()->Child(0)->Child(0));
  TimeDeletion(state, tree, timed, [&] { tree.RemoveSelectedKey(); });
}
BENCHMARK_CAPTURE(BM_KeyOfMillionSections, delete_by_rules, ReadInto, Timed::Delete)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_KeyOfMillionSections, delete_whole, ReadWhole, Timed::Delete)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_KeyOfMillionSections, undo_by_rules, ReadInto, Timed::Undo)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_KeyOfMillionSections, undo_whole, ReadWhole, Timed::Undo)->Unit(benchmark::kMillisecond);

/// 10,000 edits of a document with a million entries, each a step.
void BM_UndoEverything(benchmark::State& state, Reader read) {
  IniTree tree;
  read(tree, Input());
  const IniNode* root = tree.Root();
  for (int edit = 0; edit < 10'000; ++edit) {
    IniNode* section = root->Child(edit % root->ChildCount());
    if (edit % 2 == 0)
      tree.AddEntry(section, "new", std::to_string(edit));
    else
      tree.Remove(section->Child(0));
  }
  for (auto _ : state) {
    while (tree.CanUndo()) tree.Undo();
    state.PauseTiming();
    while (tree.CanRedo()) tree.Redo();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(BM_UndoEverything, by_rules, ReadInto)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_UndoEverything, whole, ReadWhole)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tme

BENCHMARK_MAIN();
