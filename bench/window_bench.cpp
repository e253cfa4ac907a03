// What the windows cost on top of the documents. Run with QT_QPA_PLATFORM=offscreen and an empty HOME.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QTemporaryDir>
#include <QTreeView>
#include <fstream>

#include "IniInput.h"
#include "ini/IniReader.h"
#include "ini/form_INI.h"
#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "platform/InstanceLink.h"
#include "platform/RegistryAccess.h"
#include "platform/ShellUtilities.h"
#include "shell/Global.h"
#include "shell/History.h"
#include "shell/OpenDispatch.h"
#include "shell/mdform_TMEditor.h"

namespace tme {
namespace {

struct Editor {
  RegistryAccess registry;
  ShellUtilities shell_utilities;
  Dialogs dialogs;
  CommonDialog common_dialog;
  InstanceLink link;
  const QTemporaryDir history_folder;
  History history{history_folder.path()};
  Global global{registry, shell_utilities, dialogs, common_dialog, link, history};
  mdform_TMEditor frame{global, [this](DocumentKind kind, int slot) -> DocumentWindow* {
                          return kind == DocumentKind::Ini ? new form_INI(global, slot) : nullptr;
                        }};
};

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
    IniReader::Read(tree, DecodeText(std::move(bytes)).text, {[](std::string_view) { return true; }});
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
  auto& window = static_cast<form_INI&>(*editor.global.documents.At(DocumentKind::Ini, 0).window);
  for (auto _ : state) {
    OpenPathList(editor.global, path);
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

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
