#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>
#include <thread>

#include "history/History.h"

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
    for (const KeptVersion& version : history.versions.List())
      contents += history.contents.Read(version.digest).value_or("?") + ' ';
    return contents;
  }

  QTemporaryDir folder_;
  const ContentOrigin file_{DocumentKind::Ini, u"/a/ü&\"1.ini"_s, u"ü&\"1.ini"_s};
  const ContentOrigin new_{DocumentKind::Txt, {}, u"New Text Document"_s};
  const QDateTime now_ = QDateTime::currentDateTimeUtc();
  /// When what is kept now may go.
  const QDateTime later_ = now_.addSecs(2 * 3600);
};

TEST_F(HistoryTest, KeepsEachContentOnceAndOnlyForTheUser) {
  History history(folder_.filePath(u"h"_s));
  EXPECT_TRUE(history.versions.List().isEmpty());
  EXPECT_FALSE(QFileInfo::exists(history.folder.Path())) << "nothing to keep, nothing on the disk";
  for (const char* content : {"one", "one", "two", "one"})
    EXPECT_FALSE(history.versions.Keep(file_, KeptReason::BeforeSave, content, now_));
  EXPECT_FALSE(history.versions.Keep(new_, KeptReason::NotSaved, "two", now_));
  EXPECT_EQ(Contents(history), "two one two one ");
  EXPECT_EQ(Blobs(), 2);
  const KeptVersion newest = history.versions.List().first(), oldest = history.versions.List(file_.path).last();
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
  history.versions.Keep(file_, KeptReason::BeforeSave, "too old", now_.addDays(-91));
  for (const char* content : {"1", "2", "3", "4"}) history.versions.Keep(file_, KeptReason::BeforeSave, content, now_);
  history.snapshots.Put(u"snapshot"_s, new_, "0123456789012345678901234567890", now_);
  history.pruner.Prune(now_);
  EXPECT_EQ(Contents(history), "4 3 2 ");
  EXPECT_EQ(Blobs(), 6) << "what nobody names may be on its way";
  history.pruner.Prune(later_);
  EXPECT_EQ(Blobs(), 4) << "snapshots stay, and does not count";
  for (const char* content : {"more than three", "5", "6"})
    history.versions.Keep(new_, KeptReason::NotSaved, content, now_);
  history.versions.Keep(new_, KeptReason::NotSaved, "7", now_);
  history.pruner.Prune(later_);
  EXPECT_EQ(Contents(history), "7 6 5 4 3 2 ") << "what goes takes no room from what is older";
  history.versions.Keep(new_, KeptReason::NotSaved, "larger than the store may be", now_);
  history.pruner.Prune(later_);
  EXPECT_EQ(Contents(history), "larger than the store may be 7 6 4 3 2 ");
}

TEST_F(HistoryTest, AgeIsThatBesideTheNewestOfAFile) {
  History history(folder_.filePath(u"h"_s));
  history.versions.Keep(new_, KeptReason::NotSaved, "alone", now_);
  for (int number = 1; number <= 7; ++number)
    history.versions.Keep(file_, KeptReason::BeforeSave, std::to_string(number),
                          now_.addDays(number == 7 ? 0 : -100 - number));
  history.pruner.Prune(now_.addDays(120));
  EXPECT_EQ(Contents(history), "7 6 5 4 3 alone ") << "a clock that is ahead takes nothing, and age spares five";
}

TEST_F(HistoryTest, PruningStopsAtOnceAndTakesNothingThatIsNamed) {
  for (int stop_at = 1; stop_at <= 6; ++stop_at) {
    SCOPED_TRACE(stop_at);
    const QTemporaryDir folder;
    History history(folder.filePath(u"h"_s), {1, 90, 100});
    for (const char* content : {"1", "2", "3"}) history.versions.Keep(file_, KeptReason::BeforeSave, content, now_);
    for (const QString& id : {u"1"_s, u"2"_s}) history.snapshots.Put(id, new_, id.toStdString() + "s", now_);
    std::stop_source source;
    int accesses = 0;
    history.folder.before_access = [&](const QString&) {
      EXPECT_FALSE(source.stop_requested());
      if (++accesses == stop_at) source.request_stop();
    };
    history.pruner.Prune(later_, source.get_token());
    EXPECT_EQ(accesses, std::min(stop_at, 5)) << "a file for each record";
    history.folder.before_access = {};
    EXPECT_EQ(Contents(history), stop_at <= 5 ? "3 2 1 " : "3 ");
    for (const KeptVersion& snapshot : history.snapshots.List())
      EXPECT_EQ(history.contents.Read(snapshot.digest), snapshot.id.toStdString() + "s");
  }
}

TEST_F(HistoryTest, SnapshotsReplaceEachOtherAndGo) {
  History history(folder_.filePath(u"h"_s));
  history.snapshots.Put(u"2"_s, new_, "second", now_);
  history.snapshots.Put(u"1"_s, file_, "first", now_);
  history.snapshots.Put(u"1"_s, file_, "first, changed", now_);
  ASSERT_EQ(history.snapshots.List().size(), 2);
  EXPECT_EQ(history.contents.Read(history.snapshots.List().first().digest), "first, changed");
  EXPECT_EQ(Blobs(), 2) << "a snapshot's predecessor goes";
  history.snapshots.Put(u"3"_s, new_, "second", now_);
  history.snapshots.Forget(u"3"_s);
  history.snapshots.Put(u"4"_s, new_, "kept", now_);
  history.versions.Keep(file_, KeptReason::NotSaved, "kept", now_);
  history.snapshots.Put(u"4"_s, new_, "fourth", now_);
  history.snapshots.Forget(u"4"_s);
  EXPECT_EQ(Contents(history), "kept ");
  EXPECT_EQ(history.contents.Read(history.snapshots.List().last().digest), "second") << "what another one has stays";
  EXPECT_EQ(Blobs(), 3);
  // What a crash in the middle of a write leaves must not hide the rest.
  QFile torn(folder_.filePath(u"h/aside/0.json"_s));
  ASSERT_TRUE(torn.open(QIODevice::WriteOnly));
  torn.write("{\"time\": \"20");
  torn.close();
  history.snapshots.Forget(u"1"_s);
  ASSERT_EQ(history.snapshots.List().size(), 1);
  EXPECT_EQ(history.snapshots.List().first().origin.title, new_.title);
  history.snapshots.Forget(u"5"_s);
  history.snapshots.Put(u"5"_s, new_, "saved before the snapshot's thread began", now_);
  EXPECT_EQ(history.snapshots.List().size(), 1);
  EXPECT_EQ(Blobs(), 2);
}

TEST_F(HistoryTest, OneOwnsTheStoreAndOthersOnlyAdd) {
  auto owner = std::make_unique<History>(folder_.filePath(u"h"_s), HistoryLimits{1, 90, 100});
  History other(folder_.filePath(u"h"_s), {1, 90, 100});
  EXPECT_TRUE(other.folder.Claim()) << "there is no store yet";
  for (const char* content : {"1", "2"})
    EXPECT_FALSE(owner->versions.Keep(file_, KeptReason::BeforeSave, content, now_));
  EXPECT_FALSE(other.folder.Claim());
  EXPECT_FALSE(other.versions.Keep(file_, KeptReason::BeforeSave, "3", now_));
  other.pruner.Prune(later_);
  EXPECT_EQ(Contents(*owner), "3 2 1 ");
  owner.reset();
  other.pruner.Prune(later_);
  EXPECT_EQ(Contents(other), "3 ");
  EXPECT_EQ(Blobs(), 1);

  QFile claim(folder_.filePath(u"k/in-use"_s));
  ASSERT_TRUE(QDir(folder_.path()).mkdir(u"k"_s) && claim.open(QIODevice::WriteOnly));
  claim.close();
  EXPECT_TRUE(History(folder_.filePath(u"k"_s)).folder.Claim()) << "left empty by a machine that stopped";
}

TEST_F(HistoryTest, OrderOutlivesAClockThatGoesBack) {
  const QString folder = folder_.filePath(u"h"_s);
  History(folder).versions.Keep(file_, KeptReason::BeforeSave, "1", now_);
  const QString id = History(folder).versions.List().first().id, ahead = u"2999"_s + id.mid(4);
  ASSERT_TRUE(QFile::rename(folder + u"/versions/"_s + id + u".json"_s, folder + u"/versions/"_s + ahead + u".json"_s));
  History history(folder);
  for (const char* content : {"2", "3"}) history.versions.Keep(new_, KeptReason::NotSaved, content, now_);
  history.versions.Keep(file_, KeptReason::BeforeSave, "4", now_.addYears(-1));
  EXPECT_EQ(Contents(history), "4 3 2 1 ");
  // What was kept long ago counts as kept now, or its age would take it.
  history.versions.Keep(file_, KeptReason::BeforeSave, "4", now_);
  EXPECT_EQ(Contents(history), "4 3 2 1 ");
  EXPECT_EQ(history.versions.List().first().time, now_);
}

TEST_F(HistoryTest, WhatIsNamedStaysWhileOthersWork) {
  History history(folder_.filePath(u"h"_s));
  constexpr int kRounds = 20;
  const auto content = [](int round) { return std::to_string(round % 4); };
  std::thread snapshots([&] {
    for (int round = 0; round < kRounds; ++round) history.snapshots.Put(u"1"_s, new_, content(round), now_);
  });
  std::thread cleaning([&] {
    for (int round = 0; round < kRounds; ++round) history.pruner.Prune(now_);
  });
  for (int round = 0; round < kRounds; ++round) {
    const auto failure = history.versions.Keep(file_, KeptReason::BeforeSave, content(round), now_);
    EXPECT_FALSE(failure) << failure->reason;
  }
  history.snapshots.Put(u"2"_s, new_, "2", now_);
  history.snapshots.Forget(u"2"_s);
  snapshots.join();
  cleaning.join();
  EXPECT_EQ(history.versions.List().size(), kRounds);
  EXPECT_EQ(Contents(history).find('?'), std::string::npos);
  ASSERT_EQ(history.snapshots.List().size(), 1);
  EXPECT_EQ(history.contents.Read(history.snapshots.List().first().digest), content(kRounds - 1));
}

}  // namespace
}  // namespace tme
