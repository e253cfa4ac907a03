#include <QApplication>
#include <QDir>
#include <stdexcept>

#include "KindsEditor.h"
#include "WaitFor.h"
#include "shell/DocumentArea.h"
#include "shell/OpenDispatch.h"
#include "shell/RecoverySnapshots.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class SnapshotsTest : public KindsEditor {};

}  // namespace

TEST_F(SnapshotsTest, OpensWhatACrashLeft) {
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
  EXPECT_TRUE(ini.File().IsChanged() && ini.IsModified());
  EXPECT_EQ(ini.File().Path(), path);
  EXPECT_GT(ini.height(), frame_->height() / 3);
  EXPECT_EQ(ini.windowTitle(), u"a.ini [CHANGED]");
  EXPECT_EQ(Window(DocumentKind::Txt).Content(), "never saved");
  EXPECT_EQ(Window(DocumentKind::Txt, 1).Tag(), u"") << "what the file holds by now needs no recovery";
  EXPECT_NE(Window(DocumentKind::Reg).Content().find("[Renamed\\K]\r\n\"a=dword:b\"=\"c\""), std::string::npos);
  EXPECT_EQ(history_.snapshots.List().size(), 3) << "a second crash loses nothing";

  dialogs_.ExpectMsgBox(u"Save this file?\r"_s + path, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::No);
  ini.FileClose();
  EXPECT_EQ(history_.snapshots.List().size(), 2);
  EXPECT_EQ(history_.versions.List(path).first().reason, KeptReason::NotSaved);
}

TEST_F(SnapshotsTest, WhatEndedTheProgramTwiceIsKeptInstead) {
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

TEST_F(SnapshotsTest, OpeningAndClosingKeepsNothing) {
  QStringList paths;
  for (const SavedKind& row : kSavedKinds) paths.append(File(QString::fromLatin1(row.name), row.old_bytes));
  const std::string marked = "\xEF\xBB\xBF{\\rtf1 a}";
  Start(paths << File(u"marked.rtf"_s, marked));
  EXPECT_EQ(Window(DocumentKind::Rtf, 1).Content(), marked);
  frame_->resize(500, 400);
  QApplication::processEvents();
  global_.snapshots.Poll(RecoverySnapshots::Clock::now());
  for (const SavedKind& row : kSavedKinds) Window(row.kind).FileClose();
  EXPECT_FALSE(QDir(history_.folder.Path()).exists());
}

TEST_F(SnapshotsTest, ASavedDocumentHasNoSnapshotAnyMore) {
  Start();
  RecoverySnapshots& snapshots = global_.snapshots;
  auto now = RecoverySnapshots::Clock::now();
  for (const bool on_its_way : {false, true})
    for (const SavedKind& row : kSavedKinds) {
      const QString path = File(QString::fromLatin1(row.name), row.old_bytes);
      DocumentWindow& window = Window(row.kind);
      window.ShowKept({row.kind, path, u"a"_s}, row.new_bytes);
      common_dialog_.filter_index = 1;
      snapshots.Poll(now += std::chrono::hours(1));
      if (!on_its_way) {
        snapshots.WaitForDisk();
        EXPECT_EQ(history_.snapshots.List().size(), 1) << row.name;
      }
      QMetaObject::invokeMethod(&window, row.save);
      snapshots.WaitForDisk();
      QApplication::processEvents();
      EXPECT_TRUE(history_.snapshots.List().isEmpty()) << row.name << on_its_way;
      window.FileClose();
    }
}

TEST_F(SnapshotsTest, ASaveUnderANewNameHasTheOldOneMeanwhile) {
  Start();
  const QString path = File(u"a.txt"_s, "old"), other = File(u"b.txt"_s, "other");
  for (const DocumentKind kind : {DocumentKind::Ini, DocumentKind::Txt}) {
    DocumentWindow& window = Window(kind);
    window.ShowKept({kind, path, u"a.txt"_s}, "new");
    common_dialog_.ExpectSave(other);
    dialogs_.ExpectMsgBox(u"Overwrite existing file?"_s, u"File Exists"_s, MsgButtons::YesNoCancel, MsgAnswer::Cancel);
    dialogs_.while_asking = [this] {
      global_.snapshots.Poll(RecoverySnapshots::Clock::now());
      global_.snapshots.WaitForDisk();
    };
    QMetaObject::invokeMethod(&window, "SaveAs");
    ASSERT_EQ(history_.snapshots.List().size(), 1);
    EXPECT_EQ(history_.snapshots.List().first().origin.path, path);
    dialogs_.while_asking = [] {};
    dialogs_.ExpectMsgBox(u"Save this file?\r"_s + path, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::No);
    window.FileClose();
  }
}

TEST_F(SnapshotsTest, ARecordWithANameThatIsNoTextOpens) {
  history_.snapshots.Put(u"1"_s, {DocumentKind::Txt, u"/a"_s + QChar(0xD800) + u".txt"_s, u"a"_s}, "text");
  Start();
  EXPECT_EQ(Window(DocumentKind::Txt).Content(), "text");
}

TEST_F(SnapshotsTest, WhatIsThrownWhereTheDiskIsWrittenIsTold) {
  history_.versions.Keep({DocumentKind::Txt, u"/b"_s, u"b"_s}, KeptReason::BeforeSave, "kept");
  history_.folder.before_access = [](const QString&) { throw std::runtime_error("Out of order"); };
  Start({File(u"a.txt"_s, "text")});
  DocumentWindow& window = Window(DocumentKind::Txt);
  WaitFor([&] { return !Notice(window).isEmpty(); });
  EXPECT_EQ(Notice(window), u"Old versions could not be removed from the history: Out of order.");
  window.PutContent("new", Holding::ByRules);
  global_.snapshots.Poll(RecoverySnapshots::Clock::now());
  global_.snapshots.WaitForDisk();
  EXPECT_TRUE(Notice(window).contains(u"cannot be put aside for the case of a crash: Out of order."_s));
  history_.folder.before_access = {};
  global_.snapshots.Poll(RecoverySnapshots::Clock::now() + std::chrono::hours(1));
  global_.snapshots.WaitForDisk();
  EXPECT_EQ(history_.snapshots.List().size(), 1) << "tried again";
}
