// What documents cost in their windows that are held whole, beside the same held by the rules. Run with
// QT_QPA_PLATFORM=offscreen and an empty HOME.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTreeView>
#include <filesystem>
#include <fstream>

#include "BenchEditor.h"
#include "IniInput.h"
#include "RegInput.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"

namespace tme {
namespace {

constexpr std::size_t kMillion = 1'000'000;

/// An editor with one document, which is made once a benchmark.
class Opened {
 public:
  Opened(DocumentKind kind, Holding holding, const std::string& content)
      : path_(folder_.filePath(kind == DocumentKind::Ini ? QStringLiteral("a.ini") : QStringLiteral("a.reg"))),
        kind_(kind) {
    std::ofstream(path_.toStdString(), std::ios::binary) << content;
    editor_.frame.MDIForm_Load({});
    editor_.frame.resize(1000, 700);
    Global& global = editor_.frame.Shared();
    (kind == DocumentKind::Ini ? global.settings.ini_whole : global.settings.reg_whole) = holding == Holding::Whole;
    Open();
  }
  void Open() {
    OpenPathList(editor_.frame.Shared(), path_);
    Paint();
  }
  void Close() {
    Window().FileClose();
    QApplication::processEvents();
  }
  /// Until all that the last edit brought with it is on the screen.
  void Paint() {
    QApplication::processEvents();
    for (QTreeView* view : Window().findChildren<QTreeView*>()) view->viewport()->repaint();
  }
  DocumentWindow& Window() { return *editor_.frame.Shared().documents.At(kind_, 0); }
  IniTree& Tree() { return const_cast<IniTree&>(static_cast<form_INI&>(Window()).Tree()); }
  RegDocument& Document() { return const_cast<RegDocument&>(static_cast<form_REG&>(Window()).Document()); }
  const QString& Path() const { return path_; }
  QTreeView* View(const char* name) { return Window().findChild<QTreeView*>(QLatin1StringView(name)); }

 private:
  const QTemporaryDir folder_;
  const QString path_;
  const DocumentKind kind_;
  Editor editor_;
};

/// From the choice of the file to the painted tree, a million entries or values.
void BM_Open(benchmark::State& state, DocumentKind kind, Holding holding) {
  Opened opened(kind, holding, kind == DocumentKind::Ini ? MakeIniInput(20'000, 50) : MakeRegInput(100'000, 10));
  for (auto _ : state) {
    state.PauseTiming();
    opened.Close();
    state.ResumeTiming();
    opened.Open();
  }
}
BENCHMARK_CAPTURE(BM_Open, ini_by_rules, DocumentKind::Ini, Holding::ByRules)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Open, ini_whole, DocumentKind::Ini, Holding::Whole)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Open, reg_whole, DocumentKind::Reg, Holding::Whole)->Unit(benchmark::kMillisecond);

/// A save of a file of about 50 MB that nobody edited, beside a copy of it.
void BM_SaveUntouched(benchmark::State& state) {
  Opened opened(DocumentKind::Ini, Holding::Whole, MakeIniInput(25'000, 50));
  for (auto _ : state) QMetaObject::invokeMethod(&opened.Window(), "SaveFile");
  state.SetBytesProcessed(static_cast<std::int64_t>(std::filesystem::file_size(opened.Path().toStdString())) *
                          state.iterations());
}
BENCHMARK(BM_SaveUntouched)->Unit(benchmark::kMillisecond);
void BM_Copy(benchmark::State& state) {
  Opened opened(DocumentKind::Ini, Holding::Whole, MakeIniInput(25'000, 50));
  const std::string from = opened.Path().toStdString(), to = from + "2";
  const std::string command = "cp '" + from + "' '" + to + "'";
  for (auto _ : state)
    if (std::system(command.c_str()) != 0) state.SkipWithError("no copy");
}
BENCHMARK(BM_Copy)->Unit(benchmark::kMillisecond);

/// One edit until it is painted, in an open section of a million entries: its first, a middle and its last line.
void BM_EditIni(benchmark::State& state) {
  Opened opened(DocumentKind::Ini, Holding::Whole, MakeIniInput(1, kMillion));
  IniTree& tree = opened.Tree();
  IniNode* section = tree.Root()->Child(0);
  opened.View("TV")->expandAll();
  opened.Paint();
  const int row = static_cast<int>(state.range(0));
  int number = 0;
  for (auto _ : state) {
    const std::string text = std::to_string(++number);
    switch (state.range(1)) {
      case 0:
        tree.SetEntry(section->Child(row), "key", text);
        break;
      case 1:
        tree.AddEntry(section, "new", text);
        break;
      default:
        tree.Remove(section->Child(row));
    }
    opened.Paint();
  }
  constexpr const char* kEdits[] = {"change", "add", "remove"};
  state.SetLabel(kEdits[state.range(1)]);
}
BENCHMARK(BM_EditIni)->ArgsProduct({{0, kMillion / 2, kMillion - 20'000}, {0, 1, 2}})->Unit(benchmark::kMillisecond);

/// The same in a key of a million values.
void BM_EditReg(benchmark::State& state) {
  Opened opened(DocumentKind::Reg, Holding::Whole, MakeRegInput(1, kMillion));
  RegDocument& document = opened.Document();
  RegNode* key = document.Root();
  while (key->ChildCount() > 0) key = key->Child(0);
  opened.View("TV")->expandAll();
  const auto index = [&](auto& self, const RegNode* node) -> QModelIndex {
    QAbstractItemModel& model = *opened.View("TV")->model();
    return node->Parent() ? model.index(node->Row(), 0, self(self, node->Parent())) : model.index(0, 0);
  };
  opened.View("TV")->setCurrentIndex(index(index, key));
  opened.Paint();
  std::size_t record = kMillion / 2;
  int number = 0;
  for (auto _ : state) {
    switch (state.range(0)) {
      case 0:
        document.SetAssignment(record, "\"" + std::to_string(++number) + "\"");
        break;
      case 1:
        document.AddValue(key, std::to_string(++number), "dword:00000001");
        break;
      default:
        document.DeleteValue(++record);
    }
    opened.Paint();
  }
  constexpr const char* kEdits[] = {"change", "add", "remove"};
  state.SetLabel(kEdits[state.range(0)]);
}
BENCHMARK(BM_EditReg)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
