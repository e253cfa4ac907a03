#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>

#include "Editor.h"
#include "windows/options/ShellIntegration.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

void WriteFile(const QString& path, const QByteArray& bytes) {
  QDir().mkpath(QFileInfo(path).path());
  QFile file(path);
  if (file.open(QIODevice::WriteOnly)) file.write(bytes);
}

QStringList FilesBelow(const QString& folder) {
  QStringList files;
  const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
  for (QDirIterator each(folder, all, QDirIterator::Subdirectories); each.hasNext();) files.append(each.next());
  files.sort();
  return files;
}

class Integration : public Editor {
 protected:
  Integration() { registry_.CreateKey(SettingsRoot); }

  static QByteArray ReadFile(const QString& path) { return QByteArray::fromStdString(BytesOf(path)); }
  static std::string Failed(const std::vector<IntegrationFailure>& failures) {
    QString text;
    for (const IntegrationFailure& failure : failures) text += failure.place + u": "_s + failure.reason + u"\n"_s;
    return text.replace(QDir::homePath(), u"~"_s).toStdString();
  }

  const QString home_ = QDir::homePath(), uca_ = home_ + u"/.config/Thunar/uca.xml"_s;
  const QString entry_ = home_ + u"/.local/share/applications/tamarind-editor.desktop"_s;
  const QString script_ = home_ + u"/.local/share/nautilus/scripts/Tamarind Editor"_s;
};

}  // namespace

TEST_F(Integration, OnAndOffLeaveNothingBehind) {
  ASSERT_TRUE(QDir().mkpath(home_ + u"/.local/share/nemo/actions"_s));  // empty, but not ours
  const QStringList before = FilesBelow(home_);
  ShellIntegration here(registry_, u"/opt/a b/tme"_s);
  const ShellIntegration copy(registry_, u"/opt/c/tme"_s);
  for (const ShellHook hook : {ShellHook::SendTo, ShellHook::ContextMenu}) {
    EXPECT_EQ(here.State(hook), HookState::Off);
    for (int times = 0; times < 2; ++times) EXPECT_EQ(Failed(here.Set(hook, HookState::On)), "");
    EXPECT_EQ(here.State(hook), HookState::On);
    EXPECT_EQ(copy.State(hook), HookState::Off) << "another copy";
  }
  EXPECT_FALSE(QFileInfo::exists(uca_)) << "no Thunar here";
  EXPECT_TRUE(ReadFile(home_ + u"/.local/share/icons/hicolor/scalable/apps/tamarind-editor.svg"_s).contains("<svg"));
  EXPECT_EQ(Failed(here.Set(ShellHook::SendTo, HookState::Off)), "");
  EXPECT_EQ(here.State(ShellHook::ContextMenu), HookState::On);
  EXPECT_EQ(Failed(ShellIntegration(registry_, u"/opt/c/tme"_s).Set(ShellHook::ContextMenu, HookState::Off)), "");
  EXPECT_EQ(FilesBelow(home_), before);
}

TEST_F(Integration, ProgramOfAnyNameIsStarted) {
  const QString program = home_ + u"/my \"$HOME\" `x` 100%f\\it's/tme"_s;
  WriteFile(program, "#!/bin/sh\nprintf '%s|' \"$@\" > \"$HOME/args\"\n");
  QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
  ShellIntegration integration(registry_, program);
  for (const ShellHook hook : {ShellHook::SendTo, ShellHook::ContextMenu}) integration.Set(hook, HookState::On);
  EXPECT_EQ(integration.State(ShellHook::SendTo), HookState::On);
  EXPECT_EQ(QProcess::execute(script_, {u"a b.ini"_s, u"c"_s}), 0);
  EXPECT_EQ(ReadFile(home_ + u"/args"_s), "a b.ini|c|");
  const QByteArray exec = "Exec=\"" + home_.toUtf8() + R"(/my \\"\\$HOME\\" \\`x\\` 100%%f\\\\it's/tme" %F)" + "\n";
  for (const QString& path : {entry_, home_ + u"/.local/share/kio/servicemenus/tamarind-editor.desktop"_s})
    EXPECT_TRUE(ReadFile(path).contains(exec)) << ReadFile(path).toStdString();
}

TEST_F(Integration, EntrySaysWhatThePackagesSays) {
  ShellIntegration(registry_, u"/opt/tme"_s).Set(ShellHook::SendTo, HookState::On);
  QByteArray packaged = ReadFile(QStringLiteral(TME_PACKAGING "/linux/tamarind-editor.desktop"));
  packaged.replace("Exec=tme %F\n", "Exec=\"/opt/tme\" %F\n");
  EXPECT_EQ(ReadFile(entry_).toStdString(), packaged.toStdString());
}

TEST_F(Integration, FailureIsNamedAndTheRestIsDone) {
  ASSERT_TRUE(QDir().mkpath(entry_));
  WriteFile(home_ + u"/.local/share/nautilus"_s, "in the way");
  ShellIntegration integration(registry_, u"/opt/tme"_s);
  EXPECT_EQ(Failed(integration.Set(ShellHook::SendTo, HookState::On)),
            "~/.local/share/applications/tamarind-editor.desktop: Is a directory\n");
  EXPECT_TRUE(ReadFile(home_ + u"/.local/share/Thunar/sendto/tamarind-editor.desktop"_s).contains("/opt/tme"));
  EXPECT_EQ(Failed(integration.Set(ShellHook::ContextMenu, HookState::On)),
            "~/.local/share/nautilus/scripts/Tamarind Editor: Not a directory\n");
  EXPECT_EQ(integration.State(ShellHook::ContextMenu), HookState::On) << "for the other file managers";
  EXPECT_EQ(Failed(integration.Set(ShellHook::SendTo, HookState::Off)), "");
  EXPECT_TRUE(QFileInfo(entry_).isDir()) << "not ours";
}

TEST_F(Integration, ThunarKeepsTheOtherActionsByteForByte) {
  const QByteArray other = "<action>\r\n  <name>T&amp;x</name><unique-id>17-1</unique-id>\n</action>";
  const std::pair<QByteArray, bool> rows[] = {
      {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n" + other + "\n</actions>\n", true},
      {"<actions>" + other + "<!-- tamarind-editor </action> --></actions><!-- </actions> -->", false},
      {"<actions></actions>", true},
      {"<actions/>", false},
      {"<actions>" + other, false},
      {"<menu></menu>", false},
      {"", false}};
  ShellIntegration integration(registry_, u"/opt/a & b/tme"_s);
  for (const auto& [bytes, takes_ours] : rows) {
    WriteFile(uca_, bytes);
    EXPECT_EQ(integration.Set(ShellHook::ContextMenu, HookState::On).empty(), takes_ours) << bytes.toStdString();
    EXPECT_EQ(ReadFile(uca_).contains("&quot;/opt/a &amp; b/tme&quot; %F"), takes_ours) << ReadFile(uca_).toStdString();
    // Another action joins behind ours; ours stays where the user has it.
    WriteFile(uca_, ReadFile(uca_).replace("</actions>\n", other + "</actions>\n"));
    const QByteArray joined = ReadFile(uca_);
    integration.Set(ShellHook::ContextMenu, HookState::On);
    EXPECT_EQ(ReadFile(uca_), joined);
    integration.Set(ShellHook::ContextMenu, HookState::Off);
    EXPECT_EQ(ReadFile(uca_), QByteArray(bytes).replace("</actions>\n", other + "</actions>\n"));
  }
  // A user without a list of their own keeps the system's entries beside ours.
  QFile::remove(uca_);
  WriteFile(home_ + u"/xdg/Thunar/uca.xml"_s, rows[0].first);
  qputenv("XDG_CONFIG_DIRS", QFile::encodeName(home_ + u"/xdg"_s));
  integration.Set(ShellHook::ContextMenu, HookState::On);
  EXPECT_TRUE(ReadFile(uca_).contains(other) && ReadFile(uca_).contains("/opt/a"));
  integration.Set(ShellHook::ContextMenu, HookState::Off);
  EXPECT_FALSE(QFileInfo::exists(uca_));
}
