// A text file of 100 MB in its window, and one of 10 MB that is a single line. Run with QT_QPA_PLATFORM=offscreen and
// an empty HOME.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <map>

#include "BenchEditor.h"
#include "ResidentMemory.h"
#include "Shuffle.h"
#include "files/FileBytes.h"
#include "files/TextEncoding.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "windows/text/TextPad.h"

namespace tme {
namespace {

constexpr std::size_t kBytes = 100'000'000;

struct TextEditor : Editor {
  TextEditor() {
    frame.MDIForm_Load({});
    QApplication::processEvents();
  }
  form_TXT& Open(const QString& path) {
    OpenPathList(frame.Shared(), path);
    QApplication::processEvents();
    auto& window = static_cast<form_TXT&>(*frame.Shared().documents.At(DocumentKind::Txt, 0));
    static_cast<TextPad&>(window.EditingArea()).viewport()->repaint();
    return window;
  }
};

/// A file of words, in lines that end or as one that does not.
QString InputFile(std::size_t bytes = kBytes, std::string_view line_end = "\r\n") {
  static const QTemporaryDir folder;
  static std::map<std::size_t, QString> made;
  QString& path = made[bytes];
  if (path.isEmpty()) {
    constexpr std::array kWords{"printer", "driver", "the", "of", "configuration", "value=1", "Window", "path"};
    Shuffle shuffle;
    std::string text;
    while (text.size() < bytes) {
      for (unsigned left = 4 + shuffle.Below(14); left > 0; --left) text.append(shuffle.Pick(kWords)).append(" ");
      text += line_end;
    }
    path = folder.filePath(QStringLiteral("%1.txt").arg(bytes));
    std::ofstream(path.toStdString(), std::ios::binary) << text;
  }
  return path;
}

void BM_DecodeText(benchmark::State& state) {
  const std::filesystem::path path = InputFile().toStdString();
  for (auto _ : state) {
    std::string bytes;
    if (ReadFileBytes(path, bytes)) state.SkipWithError("cannot read the input");
    benchmark::DoNotOptimize(DecodeText(std::move(bytes)));
  }
}
BENCHMARK(BM_DecodeText)->Unit(benchmark::kMillisecond);

/// From the choice of the file to the painted text; `memory` is what the document takes, in files.
void BM_OpenToPaintedText(benchmark::State& state) {
  const QString path = InputFile();
  TextEditor editor;
  for (auto _ : state) {
    const auto before = static_cast<double>(ResidentBytes());
    form_TXT& window = editor.Open(path);
    state.PauseTiming();
    state.counters["memory"] = (static_cast<double>(ResidentBytes()) - before) / kBytes;
    window.FileClose();
    QApplication::processEvents();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_OpenToPaintedText)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_Save(benchmark::State& state) {
  TextEditor editor;
  form_TXT& window = editor.Open(InputFile());
  for (auto _ : state) window.SaveFile();
}
BENCHMARK(BM_Save)->Unit(benchmark::kMillisecond)->UseRealTime();

/// What the save is measured by.
void BM_CopyFile(benchmark::State& state) {
  const std::filesystem::path path = InputFile().toStdString();
  for (auto _ : state)
    std::filesystem::copy_file(path, path.string() + ".copy", std::filesystem::copy_options::overwrite_existing);
}
BENCHMARK(BM_CopyFile)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A key in the middle of the text, painted.
void BM_Key(benchmark::State& state) {
  TextEditor editor;
  auto& pad = static_cast<TextPad&>(editor.Open(InputFile()).EditingArea());
  const auto middle = static_cast<PadPosition>(kBytes / 2);
  pad.Select(middle, middle);
  for (auto _ : state) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QApplication::sendEvent(&pad, &press);
    pad.viewport()->repaint();
  }
}
BENCHMARK(BM_Key)->Unit(benchmark::kMillisecond)->Iterations(100);

constexpr int kWrapTwips = 6000;

constexpr std::size_t kLineBytes = 10'000'000;

void BM_OpenLongLine(benchmark::State& state) {
  const QString path = InputFile(kLineBytes, "");
  TextEditor editor;
  for (auto _ : state) {
    form_TXT& window = editor.Open(path);
    state.PauseTiming();
    window.FileClose();
    QApplication::processEvents();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_OpenLongLine)->Unit(benchmark::kMillisecond)->Iterations(5);

/// A key at the start, in the middle or at the end of the line, without and with word wrap.
void BM_KeyInLongLine(benchmark::State& state) {
  TextEditor editor;
  auto& pad = static_cast<TextPad&>(editor.Open(InputFile(kLineBytes, "")).EditingArea());
  if (state.range(1)) pad.SetRightMargin(kWrapTwips);
  const auto at = static_cast<PadPosition>(kLineBytes / 2) * state.range(0);
  pad.Select(at, at);
  pad.viewport()->repaint();
  for (auto _ : state) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QApplication::sendEvent(&pad, &press);
    pad.viewport()->repaint();
  }
}
BENCHMARK(BM_KeyInLongLine)
    ->ArgNames({"half", "wrap"})
    ->ArgsProduct({{0, 1, 2}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);

/// Word wrap switched on in the large file, and a jump to its end, painted.
void BM_WrapAndJump(benchmark::State& state) {
  TextEditor editor;
  auto& pad = static_cast<TextPad&>(editor.Open(InputFile()).EditingArea());
  for (auto _ : state) {
    pad.SetRightMargin(kWrapTwips);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_End, Qt::ControlModifier);
    QApplication::sendEvent(&pad, &press);
    pad.viewport()->repaint();
  }
}
BENCHMARK(BM_WrapAndJump)->Unit(benchmark::kMillisecond)->Iterations(1);

/// All lines of a text of 50 MB get the other end, and one that is painted.
void BM_ChangeLineEnds(benchmark::State& state) {
  TextEditor editor;
  form_TXT& window = editor.Open(InputFile(kBytes / 2));
  bool is_windows = true;
  for (auto _ : state) {
    is_windows = !is_windows;
    window.ChangeLineEnds(is_windows ? LineEnds::CrLf : LineEnds::Lf);
    QApplication::processEvents();
  }
  window.SavePlain({});
}
BENCHMARK(BM_ChangeLineEnds)->Unit(benchmark::kMillisecond)->Iterations(6);

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
