// What rich text of many shapes costs, as a table: tme_rtf_shapes [SHAPE...]. Times are of the processor, in
// milliseconds. Run with QT_QPA_PLATFORM=offscreen and an empty HOME.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string_view>

#include "BenchEditor.h"
#include "RtfSamples.h"
#include "documents/rtf/RtfReader.h"
#include "documents/rtf/RtfSource.h"
#include "files/CodePage.h"
#include "shell/Global.h"
#include "shell/OpenDispatch.h"
#include "windows/rich/RtfPad.h"

namespace tme {
namespace {

constexpr rlim_t kSeconds = 60;  ///< that a shape may take

double Milliseconds(const rusage& use) {
  return static_cast<double>(use.ru_utime.tv_sec + use.ru_stime.tv_sec) * 1e3 +
         static_cast<double>(use.ru_utime.tv_usec + use.ru_stime.tv_usec) / 1e3;
}

double Used(int who) {
  rusage use{};
  getrusage(who, &use);
  return Milliseconds(use);
}

/// Of the thread that paints; others go on beside it.
double TimeOfWindows(const std::function<void()>& work) {
  const double begin = Used(RUSAGE_THREAD);
  work();
  return Used(RUSAGE_THREAD) - begin;
}

double Time(const std::function<void()>& work) {
  const double begin = Used(RUSAGE_SELF);
  work();
  return Used(RUSAGE_SELF) - begin;
}

double PeakBytes() {
  rusage use{};
  getrusage(RUSAGE_SELF, &use);
  return static_cast<double>(use.ru_maxrss) * 1024;
}

/// Another reader of the same file; 0 where it is not installed.
double Unrtf(const std::string& path) {
  const double begin = Used(RUSAGE_CHILDREN);
  const bool worked = std::system(("timeout 20 unrtf --text '" + path + "' >/dev/null 2>&1").c_str()) == 0;
  return worked ? Used(RUSAGE_CHILDREN) - begin : 0;
}

void Cell(double value, const char* form = " %.0f |") {
  std::printf(form, value);
  std::fflush(stdout);
}

void MeasureReader(const std::string& path, double& reader, double& copy) {
  const QTemporaryDir folder;
  copy = Time([&] { std::filesystem::copy_file(path, folder.filePath(QStringLiteral("copy")).toStdString()); });
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  reader = 1e9;
  for (int i = 0; i < 3; ++i) {
    rtf::RtfDocument document;
    reader = std::min(reader, Time([&] { document = rtf::ReadRtf(bytes, BytesToUtf8); }));
  }
}

void Measure(const RtfSample& shape) {
  const rlimit limit{kSeconds, kSeconds};
  setrlimit(RLIMIT_CPU, &limit);
  const QTemporaryDir folder;
  const QString name = folder.filePath(QLatin1StringView(shape.name) + QStringLiteral(".rtf"));
  const std::string path = name.toStdString();
  std::ofstream(path, std::ios::binary) << shape.make();
  const auto size = static_cast<double>(std::filesystem::file_size(path));
  double reader = 0, copy = 0;
  MeasureReader(path, reader, copy);
  std::printf("| %s | %.1f |", shape.name, size / 1e6);
  Cell(std::getenv("TME_NO_UNRTF") == nullptr ? Unrtf(path) / reader : 0, " %.1f |");
  Cell(reader);

  int argc = 1;
  char program[] = "tme_rtf_shapes";
  char* argv[] = {program, nullptr};
  const QApplication application(argc, argv);
  Editor editor;
  editor.frame.MDIForm_Load({});
  QApplication::processEvents();
  auto& window = static_cast<form_RTF&>(*editor.frame.Shared().documents.At(DocumentKind::Rtf, 0));
  const auto paint = [&window] { static_cast<RtfPad&>(window.EditingArea()).viewport()->repaint(); };
  const double begin = Used(RUSAGE_SELF);
  const double open = TimeOfWindows([&] {
    OpenPathList(editor.frame.Shared(), name);
    paint();
  });
  Cell(open);
  Cell(open / reader, " %.1f |");
  static_cast<RtfPad&>(window.EditingArea()).Complete();
  paint();
  Cell(Used(RUSAGE_SELF) - begin);
  const auto cell_of = [&](const std::function<void()>& work, double unit) {
    const double time = Time(work);
    Cell(time);
    Cell(time / unit, " %.1f |");
  };
  Pad& pad = window.EditingArea();
  Cell(Time([&] { pad.Select(pad.End(), pad.End()); }));
  pad.Select(pad.End() / 2, pad.End() / 2);
  Cell(Time([&] {
    pad.ReplaceSelection(QStringLiteral("x"));
    paint();
  }));
  cell_of([&] { QMetaObject::invokeMethod(&window, "SaveFile"); }, reader + copy);
  Cell(PeakBytes() / size, " %.1f |");
  std::printf(" %+.0f |", static_cast<double>(std::filesystem::file_size(path)) - size);
  Cell(Time([&] { window.ShowContents(); }));
  cell_of(
      [&] {
        window.EditSelectAll();
        window.FormatBold();
        paint();
      },
      reader);
  Cell(Time([&] {
    pad.Undo();
    paint();
    pad.Redo();
  }));
  cell_of([&] { QMetaObject::invokeMethod(&window, "SaveFile"); }, reader + copy);
  Cell(PeakBytes() / size, " %.1f |\n");
  std::_Exit(0);
}

int Run(std::span<char*> names) {
  std::puts(
      "| shape | MB | unrtf/reader | reader | open | /reader | whole | to its end | key | save | /(cp + reader) | "
      "peak/file | "
      "bytes | "
      "contents | all bold | /reader | undo, redo | save | /(cp + reader) | peak/file |");
  std::puts("|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|");
  for (const RtfSample& shape : RtfSamples()) {
    const bool is_named =
        std::ranges::any_of(names, [&](const char* name) { return name == std::string_view(shape.name); });
    if (!names.empty() && !is_named) continue;
    std::fflush(stdout);
    // Each in a process of its own, whose memory is measured.
    const pid_t child = fork();
    if (child == 0) Measure(shape);
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0) std::puts(" (given up)");
  }
  return 0;
}

}  // namespace
}  // namespace tme

int main(int argc, char** argv) { return tme::Run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1)); }
