#include <sys/resource.h>

#include <csignal>

#include "Editor.h"
#include "WaitFor.h"
#include "files/FileBytes.h"
#include "shell/SessionShutdown.h"
#include "system/FilePath.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(Editor, KillSignalLeavesWhateverIsAsked) {
  Dialogs dialogs;
  mdform_TMEditor frame({registry_, shell_utilities_, dialogs, common_dialog_, link_, history_},
                        [](Global& global, DocumentKind kind, int slot) {
                          return kind == DocumentKind::Ini ? new form_INI(global, slot) : nullptr;
                        });
  frame.MDIForm_Load({File(u"a.ini"_s, "[A]\r\n\r\n"), File(u"b.ini"_s, "[A]\r\n\r\n")});
  frame.Shared().documents.ForEach(
      [](DocumentWindow& window) { window.File().SetChanged(!window.File().Path().isEmpty()); });
  SessionShutdown shutdown(frame, std::chrono::milliseconds(1));
  const SessionEnd session_end([&](SessionEnd::Questions questions) { shutdown.EndSession(questions); });
  for (const int signal : {SIGTERM, SIGHUP}) std::raise(signal);
  EXPECT_EQ(dialogs.MsgBox(u"A question"_s, MsgButtons::YesNoCancel, MsgIcon::Question, {}), MsgAnswer::Cancel);
  EXPECT_FALSE(frame.IsLeaving()) << "not from within the question";
  WaitFor([&] { return frame.HasLeft(); });
  EXPECT_EQ(registry_.ReadValue(SettingsRoot, u"WinRegistration"_s), u"");
}

TEST_F(Editor, AFileOverItsLimitIsAFailureAndNoEnd) {
  const SessionEnd session_end([](SessionEnd::Questions /*questions*/) {});
  const QString path = File(u"a.txt"_s, "old");
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small{4096, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &small);
  const auto failure = WriteFileBytes(FilePath(path), std::string(10'000, 'x'));
  ::setrlimit(RLIMIT_FSIZE, &before);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->reason, "File too large");
  EXPECT_EQ(BytesOf(path), "old");
}
