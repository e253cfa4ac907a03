#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "system/CommandLineTexts_win.h"
#include "system/ShellUtilities.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;

TEST(CommandLine, IsOneTextUnlessItHoldsQuotationMarks) {
  const QString program = u"C:\\Program Files\\TME\\tme.exe"_s;
  const struct {
    const char* line;
    QStringList texts;
  } rows[] = {{"", {}},
              {"tme", {}},
              {"tme.exe  C:\\a b.ini D:\\c.txt ", {u"C:\\a b.ini D:\\c.txt"_s}},
              {"\"C:\\Program Files\\TME\\tme.exe\" C:\\a b.ini", {u"C:\\a b.ini"_s}},
              {"C:\\Program Files\\TME\\TME.EXE C:\\a b.ini", {u"C:\\a b.ini"_s}},
              {"C:\\Program Files\\TME\\TME.EXE", {}},
              {"tme \"C:\\a b.ini\" C:\\c.ini", {u"C:\\a b.ini"_s, u"C:\\c.ini"_s}},
              {"tme C:\\x.ini \"C:\\a\\\\\" \"\" \"half", {u"C:\\x.ini"_s, u"C:\\a\\"_s, u"half"_s}},
              {"tme -- C:\\a b.ini", {u"C:\\a b.ini"_s}},
              {"tme -- \"--help\"", {u"--help"_s}},
              {"tme --", {}},
              {"\"tme", {}}};
  for (const auto& [line, texts] : rows) EXPECT_EQ(CommandLineTexts(QString::fromUtf8(line), program), texts) << line;
}

TEST(CommandLine, NamesExistingFilesWhole) {
  const QTemporaryDir folder;
  const QString before = QDir::currentPath();
  QDir::setCurrent(folder.path());
  QFile file(u"a b.ini"_s);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  QFile other(u"c.ini"_s);
  ASSERT_TRUE(other.open(QIODevice::WriteOnly));
  const QString here = QDir::toNativeSeparators(QDir::currentPath()) + u'\\', whole = here + u"a b.ini"_s;
  for (const QString& line : {u"tme a b.ini"_s, u"tme \"a b.ini\""_s})
    EXPECT_EQ(CommandLineTexts(line, {}), QStringList{whole});
  EXPECT_EQ(CommandLineTexts(u"tme c.ini  c.ini"_s, {}), (QStringList{here + u"c.ini"_s, here + u"c.ini"_s}));
  EXPECT_EQ(CommandLineTexts(u"tme c.ini b.ini"_s, {}), QStringList{u"c.ini b.ini"_s});
  EXPECT_TRUE(ShellUtilities().IsRooted(whole) && !ShellUtilities().IsRooted(u"a b.ini"_s));
  file.close();
  other.close();
  QDir::setCurrent(before);
}

TEST(CommandLine, SystemFoldersAreThere) {
  const ShellUtilities shell;
  for (const QString& folder : {shell.WindowsDirectory(), shell.LastResortFolder(), shell.ProgramFolder()})
    EXPECT_TRUE(QFileInfo(folder).isDir() && shell.IsRooted(folder)) << folder.toStdString();
}

}  // namespace
}  // namespace tme
