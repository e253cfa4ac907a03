#include <QApplication>
#include <QDir>
#include <map>

#include "Editor.h"
#include "FailingSteps.h"
#include "shell/AutoSave.h"
#include "shell/DocumentArea.h"
#include "shell/GlobalMenus.h"
#include "shell/NoticeBar.h"
#include "shell/OpenDispatch.h"
#include "shell/Rescue.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

const Fault kFaults[] = {
    {"disk error", std::errc::io_error, Fault::Lasts::Once, Fault::Folder::Open},
    {"full disk", std::errc::no_space_on_device, Fault::Lasts::FromThenOn, Fault::Folder::Open},
    {"permission", std::errc::permission_denied, Fault::Lasts::Once, Fault::Folder::Open},
    {"folder without temporary files", std::errc::io_error, Fault::Lasts::Once, Fault::Folder::Refuses},
    {"folder that keeps its files", std::errc::io_error, Fault::Lasts::Once, Fault::Folder::KeepsItsFiles}};

struct Kind {
  DocumentKind kind;
  const char* name;
  std::string old_bytes, new_bytes;
  const char* save;
  const char* save_as;
};
const Kind kRows[] = {
    {DocumentKind::Ini, "a.ini", "[A]\r\nx=1\r\n\r\n", "[A]\r\nx=2\r\n\r\n", "SaveFile", "SaveAs"},
    {DocumentKind::Txt, "a.txt", "old text", "the new text", "SaveFile", "SaveAs"},
    {DocumentKind::Rtf, "a.rtf", "{\\rtf1 old}", "{\\rtf1 the new}", "SaveFile", "SaveAs"},
    {DocumentKind::Reg, "a.reg", "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"n\"=\"old\"\r\n\r\n",
     "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"n\"=\"new\"\r\n\r\n", "FileSaveRegular", "FileSaveAsRegular"}};

class RescueTest : public Editor {
 protected:
  DocumentWindow& Window(DocumentKind kind, int slot = 0) { return *global_.documents.At(kind, slot).window; }
  static QString Notice(const DocumentWindow& window) { return window.findChild<NoticeBar*>()->Text(); }
  bool HistoryHolds(const std::string& content) const {
    for (const KeptVersion& version : history_.versions.List())
      if (history_.contents.Read(version.digest) == content) return true;
    return false;
  }
};

enum class Flow { Save, SaveAs, SaveAll, AutoSave, CloseWithYes, Exit };
constexpr const char* kFlowNames[] = {"Save", "SaveAs", "SaveAll", "AutoSave", "CloseWithYes", "Exit"};

/// An editor with a document of each kind that is saved while the file layer fails.
class SaveRound : public RescueTest {
 public:
  SaveRound() {
    registry_.WriteValue(SettingsRoot, u"AutoSave"_s, kTextType, u"0"_s);
    Start();
  }
  void TestBody() override {}

  /// saved: by kind, what a save writes; filled in the round without a fault. Returns the number of steps.
  int Run(Flow flow, const Fault& fault, int failing_step, std::map<DocumentKind, std::string>& saved) {
    // But for the claim on it, which this process holds.
    for (const QFileInfo& part : QDir(history_.folder.Path()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
      QDir(part.filePath()).removeRecursively();
    std::map<DocumentKind, std::string> contents;
    for (const Kind& row : kRows) {
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
    for (const Kind& row : kRows) {
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
    for (const Kind& row : kRows) {
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

TEST_F(RescueTest, OpensWhatACrashLeft) {
  const QString path = File(u"a.ini"_s, "[A]\r\nx=1\r\n\r\n"), saved = File(u"b.txt"_s, "saved");
  {
    History crashed(folder_.filePath(u"history"_s));
    // What the reader of files would not take whole, and what has no file.
    crashed.snapshots.Put(u"1"_s, {DocumentKind::Ini, path, u"a.ini"_s}, "; 1\r\n; 2\r\n[A]\r\nx=2\r\n[A]\r\ny=3\r\n");
    crashed.snapshots.Put(u"2"_s, {DocumentKind::Txt, {}, u"New Text Document"_s}, "never saved");
    crashed.snapshots.Put(u"3"_s, {DocumentKind::Txt, saved, u"b.txt"_s}, "saved");
    crashed.snapshots.Put(u"4"_s, {DocumentKind::Reg, {}, u"New Registry File"_s},
                          "REGEDIT4\r\n; every key as it was shown\r\n\r\n[Renamed\\K]\r\n\"a=dword:b\"=\"c\"\r\n\r\n");
  }
  Start({path});
  EXPECT_EQ(global_.area.ActiveDocument(), &Window(DocumentKind::Ini)) << "not the file as it is";
  DocumentWindow& ini = Window(DocumentKind::Ini);
  EXPECT_EQ(Dump(Ini().Tree()), ">a.ini\n ; 1\n ; 2\n A\n  x=2\n A\n  y=3\n");
  EXPECT_TRUE(ini.Slot().changed && ini.IsTouched());
  EXPECT_EQ(ini.Slot().path, path);
  EXPECT_GT(ini.height(), frame_->height() / 3);
  EXPECT_EQ(ini.windowTitle(), u"a.ini [CHANGED]");
  EXPECT_EQ(Window(DocumentKind::Txt).Content(), "never saved");
  EXPECT_EQ(Window(DocumentKind::Txt, 1).Tag(), u"") << "what the file holds by now needs no rescue";
  EXPECT_NE(Window(DocumentKind::Reg).Content().find("[Renamed\\K]\r\n\"a=dword:b\"=\"c\""), std::string::npos);
  EXPECT_EQ(history_.snapshots.List().size(), 3) << "a second crash loses nothing";

  dialogs_.ExpectMsgBox(u"Save this file?\r"_s + path, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::No);
  ini.FileClose();
  EXPECT_EQ(history_.snapshots.List().size(), 2);
  EXPECT_EQ(history_.versions.List(path).first().reason, KeptReason::NotSaved);
}

TEST_F(RescueTest, WhatEndedTheProgramTwiceIsKeptInstead) {
  {
    History crashed(folder_.filePath(u"history"_s));
    crashed.snapshots.Put(u"1"_s, {DocumentKind::Txt, {}, u"good"_s}, "good");
    crashed.snapshots.Put(u"2"_s, {DocumentKind::Txt, {}, u"bad"_s}, "bad");
  }
  for (int start = 0; start < 2; ++start) {
    History crashed(folder_.filePath(u"history"_s));
    for (const QString& id : {u"1"_s, u"2"_s}) crashed.snapshots.BeginReopening(id);
  }
  dialogs_.ExpectMsgBox(
      u"The unsaved changes of bad could not be opened again: the program ended over it, at 2 starts. "
      "Tools, File History has them."_s,
      kProgramTitle);
  Start();
  EXPECT_EQ(Window(DocumentKind::Txt).Content(), "good");
  EXPECT_EQ(history_.snapshots.List().size(), 1);
  EXPECT_EQ(history_.versions.List().first().reason, KeptReason::Rescued);
  EXPECT_EQ(history_.snapshots.BeginReopening(u"1"_s), 0) << "that start did not end over it";
}

TEST_F(RescueTest, OpeningAndClosingKeepsNothing) {
  QStringList paths;
  for (const Kind& row : kRows) paths.append(File(QString::fromLatin1(row.name), row.old_bytes));
  const std::string marked = "\xEF\xBB\xBF{\\rtf1 a}";
  Start(paths << File(u"marked.rtf"_s, marked));
  EXPECT_EQ(Window(DocumentKind::Rtf, 1).Content(), marked);
  frame_->resize(500, 400);
  QApplication::processEvents();
  global_.rescue.Look(Rescue::Clock::now());
  for (const Kind& row : kRows) Window(row.kind).FileClose();
  EXPECT_FALSE(QDir(history_.folder.Path()).exists());
}

TEST_F(RescueTest, ASavedDocumentIsNotAsideAnyMore) {
  Start();
  Rescue& rescue = global_.rescue;
  auto now = Rescue::Clock::now();
  for (const bool on_its_way : {false, true})
    for (const Kind& row : kRows) {
      const QString path = File(QString::fromLatin1(row.name), row.old_bytes);
      DocumentWindow& window = Window(row.kind);
      window.ShowKept({row.kind, path, u"a"_s}, row.new_bytes);
      common_dialog_.filter_index = 1;
      rescue.Look(now += std::chrono::hours(1));
      if (!on_its_way) {
        rescue.WaitForDisk();
        EXPECT_EQ(history_.snapshots.List().size(), 1) << row.name;
      }
      QMetaObject::invokeMethod(&window, row.save);
      rescue.WaitForDisk();
      QApplication::processEvents();
      EXPECT_TRUE(history_.snapshots.List().isEmpty()) << row.name << on_its_way;
      window.FileClose();
    }
}

TEST_F(RescueTest, ASaveUnderANewNameHasTheOldOneMeanwhile) {
  Start();
  const QString path = File(u"a.txt"_s, "old"), other = File(u"b.txt"_s, "other");
  for (const DocumentKind kind : {DocumentKind::Ini, DocumentKind::Txt}) {
    DocumentWindow& window = Window(kind);
    window.ShowKept({kind, path, u"a.txt"_s}, "new");
    common_dialog_.ExpectSave(other);
    dialogs_.ExpectMsgBox(u"Overwrite existing file?"_s, u"File Exists"_s, MsgButtons::YesNoCancel, MsgAnswer::Cancel);
    dialogs_.while_asking = [this] {
      global_.rescue.Look(Rescue::Clock::now());
      global_.rescue.WaitForDisk();
    };
    QMetaObject::invokeMethod(&window, "SaveAs");
    ASSERT_EQ(history_.snapshots.List().size(), 1);
    EXPECT_EQ(history_.snapshots.List().first().origin.path, path);
    dialogs_.while_asking = [] {};
    dialogs_.ExpectMsgBox(u"Save this file?\r"_s + path, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::No);
    window.FileClose();
  }
}

TEST_F(RescueTest, WhatNoCopyHoldsIsReplacedOnlyWhenTheUserSaysSo) {
  File(u"history"_s, "a file where the folder should be");
  Start();
  for (const Kind& row : kRows) {
    const QString path = File(QString::fromLatin1(row.name), row.old_bytes);
    DocumentWindow& window = Window(row.kind);
    window.ShowKept({row.kind, path, u"a"_s}, row.new_bytes);
    global_.rescue.Look(Rescue::Clock::now());
    global_.rescue.WaitForDisk();
    common_dialog_.filter_index = 1;
    dialogs_.AnswerAll(MsgAnswer::Cancel);
    QMetaObject::invokeMethod(&window, row.save);
    EXPECT_EQ(BytesOf(path), row.old_bytes);
    EXPECT_TRUE(window.IsTouched());
    dialogs_.AnswerAll(MsgAnswer::Yes);
    QMetaObject::invokeMethod(&window, row.save);
    EXPECT_NE(BytesOf(path), row.old_bytes);
    EXPECT_FALSE(window.IsTouched());
    EXPECT_TRUE(Notice(window).contains(u"could not be kept in the history"_s)) << row.name;
    window.PutContent(row.old_bytes);
    dialogs_.AnswerAll(MsgAnswer::No);
    window.FileClose();
    EXPECT_EQ(window.Tag(), u"") << "nor a close";
  }
}

TEST_F(RescueTest, WithoutAHistoryOnlyWhatADocumentHoldsIsReplacedUnasked) {
  File(u"history"_s, "a file where the folder should be");
  const struct {
    const char *name, *bytes;
    bool asks;
  } rows[] = {{"a.ini", "[A]\r\nx=1\r\n\r\n", false},
              {"b.ini", "[B]\nx=1\n\ny=2\n", true},
              {"c.reg", "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"x\"=\"1\"\r\n\r\n", false},
              {"d.reg", "REGEDIT4\r\n\r\n;c\r\n[HKEY_USERS\\A]\r\n\"x\"=\"1\"\r\n\r\n", true},
              {"e.txt", "text", false},
              {"f.rtf", "{\\rtf1 a}", false},
              {"g.rtf", "no rich text", false}};
  Start();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const QString path = File(QString::fromLatin1(row.name), row.bytes);
    OpenPathList(global_, path);
    DocumentWindow& window = *global_.area.ActiveDocument();
    common_dialog_.filter_index = 1;
    for (const bool is_foreign : {false, true}) {
      if (is_foreign) File(QString::fromLatin1(row.name), "theirs");
      const bool asks = row.asks || is_foreign;
      int asked = 0;
      dialogs_.while_asking = [&asked] { ++asked; };
      if (asks) {
        // The reason is the system's.
        dialogs_.ExpectChoice({}, u"Tamarind Editor"_s, {u"Save &Anyway"_s, u"&Save As..."_s, u"Cancel"_s}, 1);
        common_dialog_.ExpectSave(path + u".copy"_s);
      }
      QMetaObject::invokeMethod(&window, window.Kind() == DocumentKind::Reg ? "FileSaveRegular" : "SaveFile");
      EXPECT_EQ(asked, asks ? 1 : 0);
      EXPECT_EQ(window.Slot().path, asks ? path + u".copy"_s : path);
      if (!asks) continue;
      EXPECT_EQ(BytesOf(path), is_foreign ? "theirs" : row.bytes);
      break;
    }
    window.FileClose();
  }
}

TEST_F(RescueTest, AFileOfSeveralNamesIsWrittenInPlaceOnceItsBytesAreKept) {
  const QString path = File(u"a.txt"_s, "old"), other = InFolder(u"b.txt"_s);
  std::error_code error;
  std::filesystem::create_hard_link(path.toStdU16String(), other.toStdU16String(), error);
  if (error) GTEST_SKIP() << error.message();
  Start({path});
  Window(DocumentKind::Txt).PutContent("new");
  QMetaObject::invokeMethod(&Window(DocumentKind::Txt), "SaveFile");
  EXPECT_EQ(BytesOf(path), "new");
  EXPECT_EQ(BytesOf(other), "new");
  EXPECT_TRUE(HistoryHolds("old"));
}

TEST_F(RescueTest, ARecordWithANameThatIsNoTextOpens) {
  history_.snapshots.Put(u"1"_s, {DocumentKind::Txt, u"/a"_s + QChar(0xD800) + u".txt"_s, u"a"_s}, "text");
  Start();
  EXPECT_EQ(Window(DocumentKind::Txt).Content(), "text");
}

TEST_F(RescueTest, AChangeOnTheDiskIsToldOnceAndKept) {
  const QString path = File(u"a.txt"_s, "old");
  Start({path});
  DocumentWindow& window = Window(DocumentKind::Txt);
  const auto count = [&](const QString& words) { return Notice(window).count(words); };
  const QString changed = u"was changed on the disk"_s, gone = u"no longer on the disk"_s;
  window.Form_Activate();
  EXPECT_EQ(Notice(window), u"");
  // What another program does, and which notices stand after it.
  const struct {
    const char* content;
    qsizetype changed, gone;
  } rows[] = {{"theirs", 1, 0}, {nullptr, 0, 1}, {"theirs again", 1, 0}};
  for (const auto& row : rows) {
    if (row.content)
      File(u"a.txt"_s, row.content);
    else
      QFile::remove(path);
    for (int times = 0; times < 2; ++times) window.Form_Activate();
    EXPECT_EQ(count(changed), row.changed);
    EXPECT_EQ(count(gone), row.gone);
    window.findChild<NoticeBar*>()->Clear();
    window.Form_Activate();
    EXPECT_EQ(Notice(window), u"") << "put away, it stays away";
  }
  window.PutContent("mine");
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(count(u"that content is kept"_s), 1);
  EXPECT_TRUE(HistoryHolds("theirs again"));

  // As long as ours, and with our time: only the bytes tell.
  const auto time = std::filesystem::last_write_time(path.toStdU16String());
  File(u"a.txt"_s, "evil");
  std::filesystem::last_write_time(path.toStdU16String(), time);
  window.PutContent("mine 2");
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(count(u"that content is kept"_s), 1);
  EXPECT_TRUE(HistoryHolds("evil"));
  const auto kept = history_.versions.List().size();
  window.PutContent("mine 3");
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(history_.versions.List().size(), kept) << "what was ours needs no keeping";
  EXPECT_EQ(Notice(window), u"");
  QFile::remove(path);
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(Notice(window), u"The file was no longer on the disk; the save made it anew.");
}
