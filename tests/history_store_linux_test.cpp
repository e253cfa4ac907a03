#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include "history/History.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;

TEST(HistoryFiles, AreTheUsersAloneAlsoWhenTheyWereNot) {
  const QTemporaryDir parent;
  const QString folder = parent.filePath(u"h"_s);
  const ContentOrigin origin{DocumentKind::Txt, u"/a.txt"_s, u"a.txt"_s};
  const auto others = QFile::Permissions(0x0077), all = QFile::Permissions(0x7777);
  const auto each_path = [&folder](const auto& use) {
    use(folder);
    for (QDirIterator entry(folder, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
         entry.hasNext();)
      use(entry.next());
  };
  History history(folder);
  EXPECT_FALSE(history.versions.Keep(origin, KeptReason::BeforeSave, "1"));
  EXPECT_FALSE(history.snapshots.Put(u"1"_s, origin, "2"));
  history.snapshots.BeginReopening(u"1"_s);
  const auto expect_private = [&] {
    each_path([&](const QString& path) { EXPECT_FALSE(QFile::permissions(path) & others) << path.toStdString(); });
  };
  expect_private();
  each_path([&](const QString& path) { QFile::setPermissions(path, all); });
  history.pruner.Prune();
  expect_private();
}

}  // namespace
}  // namespace tme
