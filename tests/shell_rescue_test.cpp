#include <QApplication>
#include <QDir>
#include <cerrno>

#include "Editor.h"
#include "shell/GlobalMenus.h"
#include "shell/Rescue.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

/// Fails at the n-th step. The folder may refuse temporary files altogether.
class FailingSteps : public FileSteps {
 public:
  enum class Folder { Open, Refuses };
  FailingSteps(int failing_step, Folder folder) : left_(failing_step), folder_(folder) {}
  bool HasFailed() const { return left_ <= 0; }

  int OpenExisting(const std::filesystem::path& path, int& handle) override {
    return Fails() ? EIO : FileSteps::OpenExisting(path, handle);
  }
  int OpenTemporary(const std::filesystem::path& path, unsigned mode, int& handle) override {
    if (folder_ == Folder::Refuses) return EACCES;
    return Fails() ? ENOSPC : FileSteps::OpenTemporary(path, mode, handle);
  }
  long Write(int handle, const char* data, std::size_t size, int& error) override {
    if (Fails()) return error = ENOSPC, -1;
    return FileSteps::Write(handle, data, std::min<std::size_t>(size, 7), error);
  }
  int Truncate(int handle, std::size_t size) override { return Fails() ? EIO : FileSteps::Truncate(handle, size); }
  int Flush(int handle) override { return Fails() ? EIO : FileSteps::Flush(handle); }
  int Close(int handle) override {
    const int error = FileSteps::Close(handle);
    return Fails() ? ENOSPC : error;
  }
  int Replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return Fails() ? EIO : FileSteps::Replace(from, to);
  }

 private:
  bool Fails() { return --left_ == 0; }
  int left_;
  const Folder folder_;
};

struct Kind {
  DocumentKind kind;
  const char* name;
  std::string old_bytes, new_bytes;
  const char* save;
};
const Kind kRows[] = {{DocumentKind::Ini, "a.ini", "[A]\r\nx=1\r\n\r\n", "[A]\r\nx=2\r\n\r\n", "SaveFile"},
                      {DocumentKind::Txt, "a.txt", "old text", "the new text", "SaveFile"},
                      {DocumentKind::Rtf, "a.rtf", "{\\rtf1 old}", "{\\rtf1 the new}", "SaveFile"},
                      {DocumentKind::Reg, "a.reg", "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"n\"=\"old\"\r\n\r\n",
                       "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"n\"=\"new\"\r\n\r\n", "FileSaveRegular"}};

class RescueTest : public Editor {
 protected:
  DocumentWindow& Window(DocumentKind kind, int slot = 0) { return *global_.documents.At(kind, slot).window; }
  bool HistoryHolds(const std::string& content) const {
    for (const KeptVersion& version : history_.Versions())
      if (history_.Content(version.digest) == content) return true;
    return false;
  }
};

}  // namespace

TEST_F(RescueTest, FailureAtAnyStepOfAnySaveLosesNothing) {
  registry_.WriteValue(SettingsRoot, u"AutoSave"_s, kTextType, u"0"_s);
  Start();
  for (const Kind& row : kRows)
    for (const auto folder : {FailingSteps::Folder::Open, FailingSteps::Folder::Refuses})
      for (const QByteArray flow : {"save", "save as", "save all"}) {
        bool done = false;
        for (int step = 1; !done; ++step) {
          SCOPED_TRACE(row.name + (" " + flow).toStdString() + " step " + std::to_string(step));
          const QString path = File(QString::fromLatin1(row.name), row.old_bytes);
          DocumentWindow& window = Window(row.kind);
          window.ShowKept({row.kind, flow == "save as" ? QString() : path, u"a"_s}, row.new_bytes);
          const std::string written = window.Content();
          FailingSteps steps(step, folder);
          global_.file_steps = &steps;
          ASSERT_LT(step, 90);
          dialogs_.AnswerAll(MsgAnswer::Yes);
          if (flow == "save as") common_dialog_.ExpectSave(path);
          common_dialog_.filter_index = 1;
          if (flow == "save all")
            frame_->Menus().Action(u"menu_FileSaveAll"_s)->trigger();
          else
            QMetaObject::invokeMethod(&window, row.save);
          global_.file_steps = nullptr;
          done = !steps.HasFailed();
          const std::string disk = BytesOf(path);
          EXPECT_TRUE(disk == row.old_bytes || !window.IsTouched()) << disk;
          EXPECT_EQ(QDir(folder_.path()).entryList({u".tme-*"_s}, QDir::Files | QDir::Hidden).size(), 0);
          if (disk != row.old_bytes) {
            EXPECT_TRUE(HistoryHolds(row.old_bytes));
          }
          const bool unsaved = window.IsTouched();
          dialogs_.AnswerAll(MsgAnswer::No);
          window.FileClose();
          if (unsaved) {
            EXPECT_TRUE(HistoryHolds(written));
          }
          EXPECT_EQ(window.Tag(), u"");
        }
      }
}

TEST_F(RescueTest, OpensWhatACrashLeft) {
  const QString path = File(u"a.ini"_s, "[A]\r\nx=1\r\n\r\n"), saved = File(u"b.txt"_s, "saved");
  {
    History crashed(folder_.filePath(u"history"_s));
    // What the reader of files would not take whole, and what has no file.
    crashed.PutAside(u"1"_s, {DocumentKind::Ini, path, u"a.ini"_s}, "; 1\r\n; 2\r\n[A]\r\nx=2\r\n[A]\r\ny=3\r\n");
    crashed.PutAside(u"2"_s, {DocumentKind::Txt, {}, u"New Text Document"_s}, "never saved");
    crashed.PutAside(u"3"_s, {DocumentKind::Txt, saved, u"b.txt"_s}, "saved");
    crashed.PutAside(u"4"_s, {DocumentKind::Reg, {}, u"New Registry File"_s},
                     "REGEDIT4\r\n; every key as it was shown\r\n\r\n[Renamed\\K]\r\n\"a=dword:b\"=\"c\"\r\n\r\n");
  }
  Start();
  DocumentWindow& ini = Window(DocumentKind::Ini);
  EXPECT_EQ(Dump(Ini().Tree()), ">a.ini\n ; 1\n ; 2\n A\n  x=2\n A\n  y=3\n");
  EXPECT_TRUE(ini.Slot().changed && ini.IsTouched());
  EXPECT_EQ(ini.Slot().path, path);
  EXPECT_GT(ini.height(), frame_->height() / 3);
  EXPECT_EQ(ini.windowTitle(), u"a.ini [CHANGED]");
  EXPECT_EQ(Window(DocumentKind::Txt).Content(), "never saved");
  EXPECT_EQ(Window(DocumentKind::Txt, 1).Tag(), u"") << "what the file holds by now needs no rescue";
  EXPECT_NE(Window(DocumentKind::Reg).Content().find("[Renamed\\K]\r\n\"a=dword:b\"=\"c\""), std::string::npos);
  EXPECT_EQ(history_.Aside().size(), 3) << "a second crash loses nothing";

  dialogs_.ExpectMsgBox(u"Save this file?\r"_s + path, u"Document Changed"_s, MsgButtons::YesNoCancel, MsgAnswer::No);
  ini.FileClose();
  EXPECT_EQ(history_.Aside().size(), 2);
  EXPECT_EQ(history_.Versions(path).first().reason, KeptReason::NotSaved);
}

TEST_F(RescueTest, OpeningAndClosingKeepsNothing) {
  QStringList paths;
  for (const Kind& row : kRows) paths.append(File(QString::fromLatin1(row.name), row.old_bytes));
  Start(paths);
  frame_->resize(500, 400);
  QApplication::processEvents();
  frame_->UnsavedContent().Look(Rescue::Clock::now());
  for (const Kind& row : kRows) Window(row.kind).FileClose();
  EXPECT_FALSE(QDir(history_.Folder()).exists());
}
