// What it costs that the source follows a document of 50 MB. Run with QT_QPA_PLATFORM=offscreen and an empty HOME.
#include <benchmark/benchmark.h>

#include <QApplication>

#include "BenchEditor.h"
#include "IniInput.h"
#include "RegInput.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "shell/Settings.h"
#include "windows/tree/SourceView.h"

namespace tme {
namespace {

constexpr std::size_t kSections = 30'000, kEntries = 50, kKeys = 100'000, kValues = 10;

/// A large document in its window, with its source.
class SourceEditor {
 public:
  SourceEditor(DocumentKind kind, Holding holding) {
    editor_.frame.MDIForm_Load({});
    Global& global = editor_.frame.Shared();
    global.settings.ini_whole = global.settings.reg_whole = holding == Holding::Whole;
    global.settings.show_source = true;
    window_ = dynamic_cast<TreeDocumentWindow*>(NewDocument(global, kind));
    const bool is_ini = kind == DocumentKind::Ini;
    window_->PutContent(is_ini ? MakeIniInput(kSections, kEntries) : MakeRegInput(kKeys, kValues), holding);
    Turn();
  }
  void Turn() {
    for (int turn = 0; turn < 4; ++turn) QApplication::processEvents();
  }
  /// The document, to be edited behind the window's back.
  IniTree& Ini() { return const_cast<IniTree&>(static_cast<form_INI*>(window_)->Tree()); }
  RegDocument& Reg() { return const_cast<RegDocument&>(std::as_const(*static_cast<form_REG*>(window_)).Document()); }
  SourceView& View() { return *window_->findChild<SourceView*>(); }
  void Follow() {
    Turn();
    window_->Form_Activate();
    Turn();
  }

 private:
  Editor editor_;
  TreeDocumentWindow* window_ = nullptr;
};

Holding HoldingOf(const benchmark::State& state) { return state.range(0) != 0 ? Holding::Whole : Holding::ByRules; }

/// One entry, first or in the middle, gets another value, and the source shows it.
void BM_IniEditFollowed(benchmark::State& state) {
  SourceEditor editor(DocumentKind::Ini, HoldingOf(state));
  const IniNode* section = editor.Ini().Root()->Child(editor.Ini().Root()->ChildCount() / 2);
  int number = 0;
  for (auto _ : state) {
    editor.Ini().SetEntry(section->Child(0), "key", std::to_string(++number));
    editor.Turn();
  }
  state.counters["MB"] = static_cast<double>(editor.View().End()) / 1e6;
}
BENCHMARK(BM_IniEditFollowed)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_RegEditFollowed(benchmark::State& state) {
  SourceEditor editor(DocumentKind::Reg, HoldingOf(state));
  const std::size_t record = editor.Reg().Values().size() / 2;
  int number = 0;
  for (auto _ : state) {
    const std::string text = std::to_string(++number);
    if (HoldingOf(state) == Holding::Whole)
      editor.Reg().SetAssignment(record, '"' + text + '"');
    else
      editor.Reg().SetValueData(record, text);
    editor.Turn();
  }
  state.counters["MB"] = static_cast<double>(editor.View().End()) / 1e6;
}
BENCHMARK(BM_RegEditFollowed)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Another node is selected, and its lines are marked and in sight.
void BM_IniSelectionFollowed(benchmark::State& state) {
  SourceEditor editor(DocumentKind::Ini, HoldingOf(state));
  const IniNode* root = editor.Ini().Root();
  int row = 0;
  for (auto _ : state) {
    row = (row + root->ChildCount() / 3) % root->ChildCount();
    editor.Ini().Select(root->Child(row));
    editor.Follow();
  }
}
BENCHMARK(BM_IniSelectionFollowed)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_RegSelectionFollowed(benchmark::State& state) {
  SourceEditor editor(DocumentKind::Reg, HoldingOf(state));
  std::size_t record = 0;
  for (auto _ : state) {
    record = (record + editor.Reg().Values().size() / 3) % editor.Reg().Values().size();
    editor.Reg().Select(editor.Reg().Values()[record].owner);
    editor.Follow();
  }
}
BENCHMARK(BM_RegSelectionFollowed)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
