// What the windows cost on top of the documents. Run with QT_QPA_PLATFORM=offscreen and an empty HOME.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QTemporaryDir>
#include <QTreeView>
#include <chrono>
#include <fstream>

#include "BenchEditor.h"
#include "IniInput.h"
#include "RtfInput.h"
#include "documents/ini/IniReader.h"
#include "files/FileBytes.h"
#include "files/TextEncoding.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "shell/RecoverySnapshots.h"
#include "windows/rich/RtfPad.h"

namespace tme {
namespace {

QString InputFile() {
  static const QTemporaryDir folder;
  static const QString path = [] {
    const std::string input = MakeIniInput(20'000, 50);
    std::ofstream(folder.filePath(QStringLiteral("large.ini")).toStdString(), std::ios::binary) << input;
    return folder.filePath(QStringLiteral("large.ini"));
  }();
  return path;
}

/// The same file through the document side alone.
void BM_OpenDocument(benchmark::State& state) {
  const std::filesystem::path path = InputFile().toStdString();
  for (auto _ : state) {
    std::string bytes;
    if (ReadFileBytes(path, bytes)) state.SkipWithError("cannot read the input");
    IniTree tree;
    ReadIni(tree, DecodeText(std::move(bytes)).text, {[](std::string_view) { return true; }});
    state.PauseTiming();
    tree.Reset({});
    state.ResumeTiming();
  }
}
BENCHMARK(BM_OpenDocument)->Unit(benchmark::kMillisecond);

/// From the choice of the file to the painted tree.
void BM_OpenToPaintedTree(benchmark::State& state) {
  const QString path = InputFile();
  Editor editor;
  editor.frame.MDIForm_Load({});
  QApplication::processEvents();
  auto& window = static_cast<form_INI&>(*editor.frame.Shared().documents.At(DocumentKind::Ini, 0));
  for (auto _ : state) {
    OpenPathList(editor.frame.Shared(), path);
    QApplication::processEvents();
    window.findChild<QTreeView*>()->viewport()->repaint();
    state.PauseTiming();
    window.FileClose();
    QApplication::processEvents();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_OpenToPaintedTree)->Unit(benchmark::kMillisecond);

void BM_EmptyFrame(benchmark::State& state) {
  for (auto _ : state) {
    auto editor = std::make_unique<Editor>();
    editor->frame.MDIForm_Load({});
    QApplication::processEvents();
    state.PauseTiming();
    editor.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_EmptyFrame)->Unit(benchmark::kMillisecond);

void BM_BareFrame(benchmark::State& state) {
  for (auto _ : state) {
    auto frame = std::make_unique<QMainWindow>();
    frame->setCentralWidget(new QMdiArea);
    frame->show();
    QApplication::processEvents();
    state.PauseTiming();
    frame.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_BareFrame)->Unit(benchmark::kMillisecond);

/// A changed document of 100 MB of text, or of a million entries.
DocumentWindow& LargeDocument(Editor& editor, DocumentKind kind, const QString& path = {}) {
  std::string content;
  if (kind == DocumentKind::Ini) {
    content = MakeIniInput(20'000, 50);
  } else {
    while (content.size() < 100'000'000) content += "A line of the length that lines have, give or take.\r\n";
  }
  DocumentWindow& window = *editor.frame.Shared().documents.At(kind, 0);
  window.ShowKept({kind, path, QStringLiteral("large")}, std::move(content));
  return window;
}

void BM_Content(benchmark::State& state, DocumentKind kind) {
  Editor editor;
  editor.frame.MDIForm_Load({});
  DocumentWindow& window = LargeDocument(editor, kind);
  for (auto _ : state) benchmark::DoNotOptimize(window.Content());
}
BENCHMARK_CAPTURE(BM_Content, text, DocumentKind::Txt)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Content, ini, DocumentKind::Ini)->Unit(benchmark::kMillisecond);

/// A save of what this document wrote before.
void BM_Save(benchmark::State& state, DocumentKind kind) {
  const QTemporaryDir folder;
  Editor editor;
  editor.frame.MDIForm_Load({});
  DocumentWindow& window = LargeDocument(editor, kind, folder.filePath(QStringLiteral("large")));
  for (auto _ : state) QMetaObject::invokeMethod(&window, "SaveFile");
}
BENCHMARK_CAPTURE(BM_Save, text, DocumentKind::Txt)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Save, ini, DocumentKind::Ini)->Unit(benchmark::kMillisecond);

/// How long the window waits for the poll that takes a snapshot, and for a save's Forget while the snapshot is on its
/// way to the disk.
void BM_Snapshot(benchmark::State& state, DocumentKind kind) {
  Editor editor;
  editor.frame.MDIForm_Load({});
  DocumentWindow& window = LargeDocument(editor, kind);
  RecoverySnapshots& snapshots = editor.frame.Shared().snapshots;
  for (auto _ : state) {
    snapshots.Poll(RecoverySnapshots::Clock::now());
    snapshots.Forget(&window);
    state.PauseTiming();
    snapshots.WaitForDisk();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(BM_Snapshot, text, DocumentKind::Txt)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Snapshot, ini, DocumentKind::Ini)->Unit(benchmark::kMillisecond);

/// Half an hour of steady work on a large document, a poll every two seconds: the part of it that the window waited.
void BM_SnapshotShare(benchmark::State& state, DocumentKind kind) {
  using Seconds = std::chrono::duration<double>;
  Editor editor;
  editor.frame.MDIForm_Load({});
  DocumentWindow& window = LargeDocument(editor, kind);
  RecoverySnapshots& snapshots = editor.frame.Shared().snapshots;
  constexpr std::chrono::minutes kWork{30};
  for (auto _ : state) {
    RecoverySnapshots::Clock::duration waited{};
    const auto start = RecoverySnapshots::Clock::now();
    for (auto now = start; now < start + kWork; now += std::chrono::seconds(2)) {
      if (kind == DocumentKind::Txt)
        QMetaObject::invokeMethod(&window, "EditTimeDate");
      else
        const_cast<IniTree&>(static_cast<form_INI&>(window).Tree()).AddSection("B");
      const auto begin = RecoverySnapshots::Clock::now();
      snapshots.Poll(now);
      waited += RecoverySnapshots::Clock::now() - begin;
      snapshots.WaitForDisk();
    }
    state.counters["percent"] = 100 * Seconds(waited) / Seconds(kWork);
  }
}
BENCHMARK_CAPTURE(BM_SnapshotShare, text, DocumentKind::Txt)->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK_CAPTURE(BM_SnapshotShare, ini, DocumentKind::Ini)->Unit(benchmark::kSecond)->Iterations(1);

/// Rich text of shapes that no letter has. Opening is to take less than a second but for the last three, which show
/// progress; a key less than 50 ms.
struct OddShape {
  const char* name;
  std::string (*body)();
};

std::string Repeated(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

std::string NestedTables() {
  std::string text;
  for (int level = 1; level < 20; ++level) text += "\\itap" + std::to_string(level) + " a\\nestcell ";
  return text;
}

constexpr OddShape kOddShapes[] = {
    {"nested_tables", [] { return NestedTables(); }},
    {"rows",
     [] {
       return Repeated(20'000, "\\trowd\\cellx2000\\cellx4000\\cellx6000 \\pard\\intbl a\\cell b\\cell c\\cell\\row\n");
     }},
    {"cells", [] { return "\\trowd\\pard\\intbl " + Repeated(20'000, "c\\cell ") + "\\row"; }},
    {"objects", [] { return Repeated(50'000, "{\\object\\objemb{\\*\\objclass X}{\\result x}} ") + "\\par"; }},
    {"paragraph", [] { return Repeated(1'000'000, "the letter of a win ") + "\\par"; }},
    {"letter", [] { return Repeated(60'000, Repeated(20, "the letter of ") + "{\\b the window}\\par\n"); }},
    {"mixed", [] { return MakeRtfInput(20'000'000); }},
};

form_RTF& OddDocument(Editor& editor, const OddShape& shape) {
  static const QTemporaryDir folder;
  const QString path = folder.filePath(QLatin1StringView(shape.name) + QStringLiteral(".rtf"));
  std::ofstream(path.toStdString(), std::ios::binary) << "{\\rtf1\\ansi " << shape.body() << "}";
  OpenPathList(editor.frame.Shared(), path);
  QApplication::processEvents();
  return static_cast<form_RTF&>(*editor.frame.Shared().documents.At(DocumentKind::Rtf, 0));
}

/// From the choice of the file to the painted text.
void BM_OpenOddRtf(benchmark::State& state) {
  Editor editor;
  editor.frame.MDIForm_Load({});
  for (auto _ : state) {
    form_RTF& window = OddDocument(editor, kOddShapes[state.range(0)]);
    static_cast<RtfPad&>(window.EditingArea()).viewport()->repaint();
    state.PauseTiming();
    window.FileClose();
    state.ResumeTiming();
  }
  state.SetLabel(kOddShapes[state.range(0)].name);
}
BENCHMARK(BM_OpenOddRtf)->DenseRange(0, std::size(kOddShapes) - 1)->Unit(benchmark::kMillisecond)->Iterations(1);

/// A character typed in the middle, with all that follows it.
void BM_KeyInOddRtf(benchmark::State& state) {
  Editor editor;
  editor.frame.MDIForm_Load({});
  Pad& pad = OddDocument(editor, kOddShapes[state.range(0)]).EditingArea();
  pad.Select(pad.End() / 2, pad.End() / 2);
  for (auto _ : state) {
    pad.ReplaceSelection(QStringLiteral("x"));
    static_cast<RtfPad&>(pad).viewport()->repaint();
  }
  state.SetLabel(kOddShapes[state.range(0)].name);
}
BENCHMARK(BM_KeyInOddRtf)->DenseRange(0, std::size(kOddShapes) - 1)->Unit(benchmark::kMillisecond)->Iterations(10);

/// Select all and Bold, up to where the window answers again.
void BM_BoldInOddRtf(benchmark::State& state) {
  Editor editor;
  editor.frame.MDIForm_Load({});
  form_RTF& window = OddDocument(editor, kOddShapes[state.range(0)]);
  for (auto _ : state) {
    window.EditSelectAll();
    window.FormatBold();
    static_cast<RtfPad&>(window.EditingArea()).viewport()->repaint();
  }
  state.SetLabel(kOddShapes[state.range(0)].name);
}
BENCHMARK(BM_BoldInOddRtf)->DenseRange(0, std::size(kOddShapes) - 1)->Unit(benchmark::kMillisecond)->Iterations(1);

/// A store of 2,000 versions of 100 files.
class Store : public benchmark::Fixture {
 public:
  void SetUp(benchmark::State& /*state*/) override {
    for (; count_ < 2'000; ++count_)
      history_.versions.Keep(OriginOf(count_), KeptReason::BeforeSave, std::to_string(count_));
  }

 protected:
  static ContentOrigin OriginOf(int number) {
    return {DocumentKind::Txt, QStringLiteral("/folder/file %1").arg(number % 100), QStringLiteral("file")};
  }
  const QTemporaryDir folder_;
  History history_{folder_.path()};
  int count_ = 0;
};
BENCHMARK_F(Store, Keep)(benchmark::State& state) {
  for (auto _ : state) {
    history_.versions.Keep(OriginOf(count_), KeptReason::BeforeSave, std::to_string(count_));
    ++count_;
  }
}
BENCHMARK_F(Store, PutAside)(benchmark::State& state) {
  for (auto _ : state) history_.snapshots.Put(QStringLiteral("1"), OriginOf(0), std::to_string(count_++));
}
BENCHMARK_F(Store, Versions)(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(history_.versions.List());
}
BENCHMARK_F(Store, VersionsOfAFile)(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(history_.versions.List(OriginOf(0).path));
}
BENCHMARK_F(Store, Prune)(benchmark::State& state) {
  for (auto _ : state) history_.pruner.Prune();
}

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
