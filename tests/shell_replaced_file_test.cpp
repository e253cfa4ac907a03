#include <QApplication>
#include <QDir>

#include "KindsEditor.h"
#include "shell/DocumentArea.h"
#include "shell/OpenDispatch.h"
#include "shell/RecoverySnapshots.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

class ReplacedFileTest : public KindsEditor {};

}  // namespace

TEST_F(ReplacedFileTest, WhatNoCopyHoldsIsReplacedOnlyWhenTheUserSaysSo) {
  File(u"history"_s, "a file where the folder should be");
  Start();
  for (const SavedKind& row : kSavedKinds) {
    const QString path = File(QString::fromLatin1(row.name), row.old_bytes);
    DocumentWindow& window = Window(row.kind);
    window.ShowKept({row.kind, path, u"a"_s}, row.new_bytes);
    global_.snapshots.Poll(RecoverySnapshots::Clock::now());
    global_.snapshots.WaitForDisk();
    common_dialog_.filter_index = 1;
    dialogs_.AnswerAll(MsgAnswer::Cancel);
    QMetaObject::invokeMethod(&window, row.save);
    EXPECT_EQ(BytesOf(path), row.old_bytes);
    EXPECT_TRUE(window.IsModified());
    dialogs_.AnswerAll(MsgAnswer::Yes);
    QMetaObject::invokeMethod(&window, row.save);
    EXPECT_NE(BytesOf(path), row.old_bytes);
    EXPECT_FALSE(window.IsModified());
    EXPECT_TRUE(Notice(window).contains(u"could not be kept in the history"_s)) << row.name;
    window.PutContent(row.old_bytes, Holding::ByRules);
    dialogs_.AnswerAll(MsgAnswer::No);
    window.FileClose();
    EXPECT_EQ(window.Tag(), u"") << "nor a close";
  }
}

TEST_F(ReplacedFileTest, WithoutAHistoryOnlyWhatADocumentHoldsIsReplacedUnasked) {
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
      EXPECT_EQ(window.File().Path(), asks ? path + u".copy"_s : path);
      if (!asks) continue;
      EXPECT_EQ(BytesOf(path), is_foreign ? "theirs" : row.bytes);
      break;
    }
    window.FileClose();
  }
}

TEST_F(ReplacedFileTest, AFileOfSeveralNamesIsWrittenInPlaceOnceItsBytesAreKept) {
  const QString path = File(u"a.txt"_s, "old"), other = InFolder(u"b.txt"_s);
  std::error_code error;
  std::filesystem::create_hard_link(path.toStdU16String(), other.toStdU16String(), error);
  if (error) GTEST_SKIP() << error.message();
  Start({path});
  Window(DocumentKind::Txt).PutContent("new", Holding::ByRules);
  QMetaObject::invokeMethod(&Window(DocumentKind::Txt), "SaveFile");
  EXPECT_EQ(BytesOf(path), "new");
  EXPECT_EQ(BytesOf(other), "new");
  EXPECT_TRUE(HistoryHolds("old"));
}

TEST_F(ReplacedFileTest, AChangeOnTheDiskIsToldOnceAndKept) {
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
  window.PutContent("mine", Holding::ByRules);
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(count(u"that content is kept"_s), 1);
  EXPECT_TRUE(HistoryHolds("theirs again"));

  // As long as ours, and with our time: only the bytes tell.
  const auto time = std::filesystem::last_write_time(path.toStdU16String());
  File(u"a.txt"_s, "evil");
  std::filesystem::last_write_time(path.toStdU16String(), time);
  window.PutContent("mine 2", Holding::ByRules);
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(count(u"that content is kept"_s), 1);
  EXPECT_TRUE(HistoryHolds("evil"));
  const auto kept = history_.versions.List().size();
  window.PutContent("mine 3", Holding::ByRules);
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(history_.versions.List().size(), kept) << "what was ours needs no keeping";
  EXPECT_EQ(Notice(window), u"");
  QFile::remove(path);
  QMetaObject::invokeMethod(&window, "SaveFile");
  EXPECT_EQ(Notice(window), u"The file was no longer on the disk; the save made it anew.");
}
