#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <functional>

#include "system/RegistryAccess.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;

class Registry : public testing::Test {
 protected:
  Registry() { qputenv("XDG_CONFIG_HOME", QFile::encodeName(Root())); }
  QString Root() const { return home_.path() + "/config"_L1; }

  const QString key_ = u"HKEY_CURRENT_USER\\SOFTWARE\\Zorvan\\TME"_s;

 private:
  QTemporaryDir home_;
};

TEST_F(Registry, GivesBackExactlyWhatWasWritten) {
  QStringList texts =
      uR"(|1|a,b, c|"quoted";x|%1 %20 100%|%2F|@Invalid()|@@x|C:\n\x41\| blanks  |*.TXT;*.INF|Grüße Жук 😀)"
      u"|line\r\nnext\tend |MDI Top|a/b|a.b|.key|=[x]|General"_s.split(u'|');
  texts += u"a\0b"_s;
  {
    RegistryAccess registry;
    EXPECT_TRUE(registry.CreateKey(key_));
    for (const QString& name : texts) {
      for (const QString& data : texts) registry.WriteValue(key_, name + data, data + name);
    }
  }
  EXPECT_EQ(QFile::permissions(Root() + "/TamarindEditor/registry.ini"_L1) & (QFile::ReadGroup | QFile::ReadOther),
            QFile::Permissions());
  const RegistryAccess registry;
  for (const QString& name : texts) {
    for (const QString& data : texts) {
      ASSERT_EQ(registry.ReadValue(key_, name + data), data + name) << (name + data).toStdString();
    }
  }
  EXPECT_EQ(registry.ReadValue(key_ + u'\\', u"MDI Top"_s), u"MDI Top"_s);
  EXPECT_EQ(registry.ReadValue(key_, u"missing"_s), QString());
  EXPECT_EQ(
      registry.ReadValue(u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"_s,
                         u"Personal"_s),
      QDir::homePath() + "/Documents"_L1);
}

TEST_F(Registry, DeletesTheKeyWithAllBelowAndNothingElse) {
  const QString shell = u"HKEY_CLASSES_ROOT\\*\\Shell"_s;
  const QString menu = shell + "\\Tamarind Editor"_L1;
  {
    RegistryAccess registry;
    EXPECT_TRUE(registry.CreateKey(menu + "\\Command"_L1));
    registry.WriteValue(menu, u""_s, u"menu"_s);
    registry.WriteValue(menu + "\\Command\\"_L1, u""_s, u"command"_s);
    registry.WriteValue(menu + " 2"_L1, u"x"_s, u"neighbour"_s);
    registry.WriteValue(shell, u"Tamarind Editor"_s, u"value of that name"_s);
    registry.DeleteKey(menu);
    registry.DeleteKey(u"HKEY_CLASSES_ROOT\\missing"_s);
    registry.DeleteKey(u""_s);
  }
  const RegistryAccess registry;
  EXPECT_EQ(registry.ReadValue(menu, u""_s), QString());
  EXPECT_EQ(registry.ReadValue(menu + "\\Command"_L1, u""_s), QString());
  EXPECT_EQ(registry.ReadValue(menu + " 2"_L1, u"x"_s), u"neighbour"_s);
  EXPECT_EQ(registry.ReadValue(shell, u"Tamarind Editor"_s), u"value of that name"_s);
}

TEST_F(Registry, LivesWithAStoreThatCannotBeWritten) {
  QFile in_the_way(Root());
  ASSERT_TRUE(in_the_way.open(QIODevice::WriteOnly));
  RegistryAccess registry;
  int told = 0;
  registry.OnFailure([&told] { ++told; });
  for (int attempt = 0; attempt < 2; ++attempt) EXPECT_FALSE(registry.CreateKey(key_));
  registry.WriteValue(key_, u"x"_s, u"1"_s);
  registry.DeleteKey(key_);
  EXPECT_EQ(registry.ReadValue(key_, u"y"_s), QString());
  EXPECT_EQ(told, 1);
  registry.WriteValue(key_, u"x"_s, u"2"_s);
  const std::optional<StoreFailure> failure = registry.Flush();
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->place, Root() + "/TamarindEditor/registry.ini"_L1);
  EXPECT_EQ(failure->reason, u"Not a directory");
  ASSERT_TRUE(in_the_way.remove());
  EXPECT_FALSE(registry.Flush()) << "what waited has got there";
  EXPECT_TRUE(QFile(failure->place).size() > 0);
}

TEST_F(Registry, NothingInItsWayMakesItWait) {
  const QString folder = Root() + "/TamarindEditor"_L1, path = folder + "/registry.ini"_L1;
  const QByteArray name = QFile::encodeName(path);
  const auto put = [](const QString& file, const QByteArray& bytes) {
    QFile out(file);
    EXPECT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size());
  };
  const struct {
    std::function<void()> lay;
    QString reason;
  } rows[] = {{[&] { ::mkfifo(name.constData(), 0600); },
               u"It is a pipe or a device and no file, so that nothing was read from it either"_s},
              {[&] { QDir().mkpath(path); }, u"It is a folder, so that nothing was read from it either"_s},
              {[&] { EXPECT_TRUE(QFile(path).open(QIODevice::WriteOnly) && QFile(path).resize(200'000'000)); },
               u"It is larger than 4 MB, so that nothing was read from it either"_s},
              {[&] { put(path + ".lock"_L1, "4711\ntme\nelsewhere\n\n\n"); },
               u"Process 4711 of elsewhere has locked it (registry.ini.lock)"_s},
              {[&] { ::mkfifo((name + ".lock").constData(), 0600); },
               u"registry.ini.lock is in the way, which is no lock of the editor's"_s}};
  for (const auto& [lay, reason] : rows) {
    QDir(folder).removeRecursively();
    ASSERT_TRUE(QDir().mkpath(folder));
    lay();
    const QDeadlineTimer end(3000);
    RegistryAccess registry;
    for (const char* key : {"A", "B", "C"}) EXPECT_FALSE(registry.CreateKey(key_ + QLatin1StringView(key)));
    registry.WriteValue(key_, u"x"_s, u"1"_s);
    EXPECT_EQ(registry.ReadValue(key_, u"x"_s), u"1");
    EXPECT_EQ(registry.ReadValue(key_, u"y"_s), u"");
    const std::optional<StoreFailure> failure = registry.Flush();
    ASSERT_TRUE(failure) << reason.toStdString();
    EXPECT_EQ(failure->reason, reason);
    EXPECT_FALSE(end.hasExpired()) << reason.toStdString();
  }
}

}  // namespace
}  // namespace tme
