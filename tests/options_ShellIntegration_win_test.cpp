#include <windows.h>

#include <QDir>
#include <QFileInfo>

#include "Editor.h"
#include "TestSystem.h"
#include "windows/options/ShellIntegration.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST_F(Editor, HooksAreOfThisCopyAndLeaveNothingBehind) {
  AwaitSystemTurn();
  const QString folder = QDir::toNativeSeparators(folder_.path());
  const QString key = u"HKEY_CLASSES_ROOT\\*\\Shell\\Tamarind Editor"_s;
  const QString own_key = u"HKEY_CURRENT_USER\\Software\\Classes\\*\\Shell\\Tamarind Editor"_s;
  File(u"tme.exe"_s, "MZ");
  ShellIntegration here(registry_, folder_.path() + u"/tme.exe"_s);
  const ShellIntegration copy(registry_, u"C:\\copy\\tme.exe"_s);
  for (const ShellHook hook : {ShellHook::SendTo, ShellHook::ContextMenu}) {
    SCOPED_TRACE(static_cast<int>(hook));
    for (int times = 0; times < 2; ++times) EXPECT_TRUE(here.Set(hook, HookState::On).empty());
    EXPECT_EQ(here.State(hook), HookState::On);
  }
  EXPECT_EQ(copy.State(ShellHook::ContextMenu), HookState::Off) << "of another copy";
  EXPECT_EQ(copy.State(ShellHook::SendTo), HookState::On) << "the link is there";
  EXPECT_EQ(registry_.ReadValue(key, {}), u"Tamarind Editor");
  EXPECT_EQ(registry_.ReadValue(key + u"\\Command"_s, {}), folder + u"\\TME.EXE %1"_s);
  registry_.WriteValue(own_key + u"\\Command"_s, {}, u"left by a run without the right"_s);
  for (const ShellHook hook : {ShellHook::SendTo, ShellHook::ContextMenu}) {
    for (int times = 0; times < 2; ++times) EXPECT_TRUE(here.Set(hook, HookState::Off).empty());
    EXPECT_EQ(here.State(hook), HookState::Off);
  }
  QDir send_to(QFileInfo(SendToEntry()).path());
  ASSERT_TRUE(send_to.removeRecursively());
  EXPECT_EQ(here.State(ShellHook::SendTo), HookState::Off);
  EXPECT_TRUE(here.Set(ShellHook::SendTo, HookState::Off).empty());
  EXPECT_FALSE(send_to.exists()) << "made for a look";
  EXPECT_TRUE(here.Set(ShellHook::SendTo, HookState::On).empty());
  for (const QString& gone : {key, own_key}) EXPECT_EQ(registry_.ReadValue(gone + u"\\Command"_s, {}), u"");
}
