#include <QApplication>
#include <QDir>
#include <map>

#include "FailingSteps.h"
#include "KindsEditor.h"
#include "shell/AutoSave.h"
#include "shell/GlobalMenus.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

const Fault kFaults[] = {
    {"disk error", std::errc::io_error, Fault::Lasts::Once, Fault::Folder::Open},
    {"full disk", std::errc::no_space_on_device, Fault::Lasts::FromThenOn, Fault::Folder::Open},
    {"permission", std::errc::permission_denied, Fault::Lasts::Once, Fault::Folder::Open},
    {"folder without temporary files", std::errc::io_error, Fault::Lasts::Once, Fault::Folder::Refuses},
    {"folder that keeps its files", std::errc::io_error, Fault::Lasts::Once, Fault::Folder::KeepsItsFiles}};

enum class Flow { Save, SaveAs, SaveAll, AutoSave, CloseWithYes, Exit };
constexpr const char* kFlowNames[] = {"Save", "SaveAs", "SaveAll", "AutoSave", "CloseWithYes", "Exit"};

/// An editor with a document of each kind that is saved while the file layer fails.
class SaveRound : public KindsEditor {
 public:
  SaveRound() {
    registry_.WriteValue(SettingsRoot, u"AutoSave"_s, u"0"_s);
    Start();
  }
  void TestBody() override {}

  /// saved: by kind, what a save writes; filled in the round without a fault. Returns the number of steps.
  int Run(Flow flow, const Fault& fault, int failing_step, std::map<DocumentKind, std::string>& saved) {
    // But for the claim on it, which this process holds.
    for (const QFileInfo& part : QDir(history_.folder.Path()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
      QDir(part.filePath()).removeRecursively();
    std::map<DocumentKind, std::string> contents;
    for (const SavedKind& row : kSavedKinds) {
      const QString target = File(QString::fromLatin1(row.name), row.old_bytes);
      const QString own = flow == Flow::SaveAs ? File(u"own"_s, "own") : target;
      Window(row.kind).ShowKept({row.kind, own, u"a"_s}, row.new_bytes);
      Window(row.kind).AddNotice(u"It stands."_s);
      contents[row.kind] = Window(row.kind).Content();
    }
    FailingSteps steps(failing_step, fault);
    global_.file_steps = &steps;
    dialogs_.AnswerAll(MsgAnswer::Yes);
    Drive(flow);
    global_.file_steps = nullptr;
    dialogs_.AnswerAll(MsgAnswer::No);
    for (const SavedKind& row : kSavedKinds) {
      SCOPED_TRACE(row.name);
      const std::string disk = BytesOf(InFolder(QString::fromLatin1(row.name)));
      if (flow == Flow::Save) {
        EXPECT_EQ(Notice(Window(row.kind)).contains(u"It stands."_s), disk == row.old_bytes);
      }
      if (flow != Flow::Exit) Window(row.kind).FileClose();
      if (failing_step == 0) saved[row.kind] = disk;
      EXPECT_NE(saved[row.kind], row.old_bytes);
      EXPECT_TRUE(disk == row.old_bytes || disk == saved[row.kind]) << disk;
      EXPECT_TRUE(HistoryHolds(disk == row.old_bytes ? contents[row.kind] : row.old_bytes)) << disk;
    }
    if (flow == Flow::SaveAs) {
      EXPECT_EQ(BytesOf(InFolder(u"own"_s)), "own");
    }
    EXPECT_TRUE(QDir(folder_.path()).entryList({u".tme-*"_s}, QDir::Files | QDir::Hidden).isEmpty());
    EXPECT_TRUE(history_.snapshots.List().isEmpty());
    return steps.Count();
  }

 private:
  void Drive(Flow flow) {
    if (flow == Flow::SaveAll) return global_.menus.Action(u"menu_FileSaveAll"_s)->trigger();
    if (flow == Flow::AutoSave) {
      frame_->Saver().SetAutoSaveTimer(global_.settings.auto_save_period = 1);
      auto* timer = frame_->Saver().findChild<QTimer*>(u"AutoSaveTimer"_s);
      QTimerEvent minute(timer->timerId());
      QApplication::sendEvent(timer, &minute);
      return frame_->Saver().SetAutoSaveTimer(0);
    }
    if (flow == Flow::Exit) {
      common_dialog_.AnswerSaves({});
      return frame_->ExitApplication();
    }
    for (const SavedKind& row : kSavedKinds) {
      common_dialog_.AnswerSaves(InFolder(QString::fromLatin1(row.name)));
      common_dialog_.filter_index = 1;
      if (flow == Flow::CloseWithYes)
        Window(row.kind).FileClose();
      else
        QMetaObject::invokeMethod(&Window(row.kind), flow == Flow::Save ? row.save : row.save_as);
    }
  }
};

class FailingSave : public testing::TestWithParam<Flow> {};

}  // namespace

TEST_P(FailingSave, AtAnyStepLosesNothing) {
  for (const Fault& fault : kFaults) {
    std::map<DocumentKind, std::string> saved;
    std::unique_ptr<SaveRound> editor;
    int steps = 0;
    for (int step = 0; step <= steps; ++step) {
      SCOPED_TRACE(fault.name + (" at step " + std::to_string(step)));
      if (!editor || GetParam() == Flow::Exit) editor = std::make_unique<SaveRound>();
      const int taken = editor->Run(GetParam(), fault, step, saved);
      if (step == 0) steps = taken;
      ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(steps, 20);
  }
}
INSTANTIATE_TEST_SUITE_P(Flows, FailingSave,
                         testing::Values(Flow::Save, Flow::SaveAs, Flow::SaveAll, Flow::AutoSave, Flow::CloseWithYes,
                                         Flow::Exit),
                         [](const auto& flow) { return kFlowNames[static_cast<std::size_t>(flow.param)]; });
