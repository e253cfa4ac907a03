#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QTemporaryDir>

#include "shell/History.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;

class HistoryTest : public testing::Test {
 protected:
  int Blobs() const {
    int count = 0;
    for (QDirIterator blobs(folder_.filePath(u"h/blobs"_s), QDir::Files, QDirIterator::Subdirectories); blobs.hasNext();
         blobs.next())
      ++count;
    return count;
  }
  static std::string Contents(const History& history) {
    std::string contents;
    for (const KeptVersion& version : history.Versions())
      contents += history.Content(version.digest).value_or("?") + ' ';
    return contents;
  }

  QTemporaryDir folder_;
  const ContentOrigin file_{DocumentKind::Ini, u"/a/ü&\"1.ini"_s, u"ü&\"1.ini"_s};
  const ContentOrigin new_{DocumentKind::Txt, {}, u"New Text Document"_s};
  const QDateTime now_ = QDateTime::currentDateTimeUtc();
};

TEST_F(HistoryTest, KeepsEachContentOnceAndOnlyForTheUser) {
  History history(folder_.filePath(u"h"_s));
  EXPECT_TRUE(history.Versions().isEmpty());
  EXPECT_FALSE(QFileInfo::exists(history.Folder())) << "nothing to keep, nothing on the disk";
  for (const char* content : {"one", "one", "two", "one"})
    EXPECT_FALSE(history.Keep(file_, KeptReason::BeforeSave, content, now_));
  EXPECT_FALSE(history.Keep(new_, KeptReason::NotSaved, "two", now_));
  EXPECT_EQ(Contents(history), "two one two one ");
  EXPECT_EQ(Blobs(), 2);
  const KeptVersion newest = history.Versions().first(), oldest = history.Versions(file_.path).last();
  EXPECT_EQ(newest.origin.title, new_.title);
  EXPECT_EQ(newest.reason, KeptReason::NotSaved);
  EXPECT_EQ(oldest.origin.path, file_.path);
  EXPECT_EQ(oldest.origin.kind, DocumentKind::Ini);
  EXPECT_EQ(oldest.bytes, 3);

  QFile blob(QDirIterator(folder_.filePath(u"h/blobs"_s), QDir::Files, QDirIterator::Subdirectories).next());
  ASSERT_TRUE(blob.open(QIODevice::WriteOnly));
  blob.write("???");
  blob.close();
  EXPECT_NE(Contents(history).find('?'), std::string::npos) << "damaged content is not given out";
}

TEST_F(HistoryTest, OldestGoFirst) {
  History history(folder_.filePath(u"h"_s), {3, 90, 20});
  history.Keep(file_, KeptReason::BeforeSave, "too old", now_.addDays(-91));
  for (const char* content : {"1", "2", "3", "4"}) history.Keep(file_, KeptReason::BeforeSave, content, now_);
  history.PutAside(u"aside"_s, new_, "0123456789012345678901234567890", now_);
  history.Prune(now_);
  EXPECT_EQ(Contents(history), "4 3 2 ");
  EXPECT_EQ(Blobs(), 4) << "what is put aside stays, and does not count";
  history.Keep(new_, KeptReason::NotSaved, "larger than the store may be", now_);
  history.Prune(now_);
  EXPECT_EQ(Contents(history), "larger than the store may be ");
}

TEST_F(HistoryTest, PutsUnsavedContentAside) {
  History history(folder_.filePath(u"h"_s));
  history.PutAside(u"2"_s, new_, "second", now_);
  history.PutAside(u"1"_s, file_, "first", now_);
  history.PutAside(u"1"_s, file_, "first, changed", now_);
  ASSERT_EQ(history.Aside().size(), 2);
  EXPECT_EQ(history.Content(history.Aside().first().digest), "first, changed");
  EXPECT_EQ(Blobs(), 2) << "a snapshot's predecessor goes";
  // What a crash in the middle of a write leaves must not hide the rest.
  QFile torn(folder_.filePath(u"h/aside/0.json"_s));
  ASSERT_TRUE(torn.open(QIODevice::WriteOnly));
  torn.write("{\"time\": \"20");
  torn.close();
  history.ForgetAside(u"1"_s);
  ASSERT_EQ(history.Aside().size(), 1);
  EXPECT_EQ(history.Aside().first().origin.title, new_.title);
}

}  // namespace
}  // namespace tme
