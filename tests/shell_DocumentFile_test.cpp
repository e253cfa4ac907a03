#include "FailingSteps.h"
#include "WriteFile.h"
#include "shell/DocumentFile.h"

using namespace tme;
using namespace Qt::StringLiterals;
using namespace std::string_literals;

namespace {

class DocumentFileTest : public WriteFile {
 protected:
  QString Path(const std::string& name) const { return QString::fromStdString(In(name).string()); }
  /// The reason of a failure.
  std::string Save(const QString& path, const std::string& bytes, int failing_step = 0) {
    FailingSteps steps(failing_step);
    const PartProducer produce = [&bytes](const PartSink& put) { return put(bytes); };
    return Reason(file_.Write(file_.KeepReplaced(path), nullptr, produce, steps).failure);
  }

  History history_{Path("history")};
  DocumentFile file_{DocumentKind::Txt, history_};
  const QString path_ = Path("a.txt");
  std::string bytes_;
};

}  // namespace

TEST_F(DocumentFileTest, AFileThatIsReadOrWrittenIsKnown) {
  Put(In("a.txt"), "one");
  file_.BecomeFileAt(path_);
  EXPECT_FALSE(file_.Read(bytes_));
  EXPECT_FALSE(file_.IsModified(7)) << "not wholly read yet";
  file_.MarkUnmodified(7);
  EXPECT_TRUE(!file_.IsModified(7) && file_.IsModified(8) && !file_.IsChanged());
  EXPECT_FALSE(file_.HoldsWholeFile()) << "no reader said so";
  file_.SetLeftOut(u"1 comment"_s);
  EXPECT_FALSE(file_.HoldsWholeFile());
  EXPECT_TRUE(file_.IsAsRead(path_) && !file_.IsAsRead(Path("b.txt")));

  EXPECT_NE(Save(path_, "two", 1), "none");
  EXPECT_FALSE(file_.HoldsWholeFile()) << "nothing was written";
  EXPECT_EQ(Save(path_, "two"), "none");
  EXPECT_TRUE(file_.HoldsWholeFile() && !file_.IsAsRead(path_));
  EXPECT_EQ(file_.CheckDisk(), DocumentFile::DiskChange::None);
  EXPECT_EQ(history_.versions.List(path_).size(), 1) << "kept once, over a save that failed";
}

TEST_F(DocumentFileTest, EqualBytesOnTheDiskAreSeen) {
  Put(In("a.txt"),
      "\xFF\xFE"
      "o\0n\0x"s);
  file_.BecomeFileAt(path_);
  ASSERT_FALSE(file_.Read(bytes_));
  const DecodedText decoded = DecodeText(bytes_);
  const auto parts = [](const std::string& text) {
    return [text](const PartSink& put) { return put(text.substr(0, 1)) && put(text.substr(1)); };
  };
  EXPECT_TRUE(file_.IsOnDisk(decoded.format, parts(decoded.text)));
  EXPECT_FALSE(file_.IsOnDisk(decoded.format, parts("o")) || file_.IsOnDisk(decoded.format, parts("one")));
  EXPECT_FALSE(file_.IsOnDisk({}, parts(decoded.text)));
  Put(In("a.txt"), bytes_);
  EXPECT_TRUE(file_.IsOnDisk(decoded.format, parts(decoded.text)));
  EXPECT_EQ(file_.CheckDisk(), DocumentFile::DiskChange::None) << "the same again is no change";
}

TEST_F(DocumentFileTest, WhatAnotherWroteIsToldOnceAndKept) {
  file_.BecomeNew(u"New"_s);
  ASSERT_EQ(Save(path_, "mine"), "none");
  file_.MoveTo(path_);
  EXPECT_FALSE(file_.KeepReplaced(path_).is_foreign);
  EXPECT_TRUE(history_.versions.List().isEmpty()) << "its own bytes need not be kept";

  Put(In("a.txt"), "another's");
  EXPECT_EQ(file_.CheckDisk(), DocumentFile::DiskChange::Changed);
  EXPECT_EQ(file_.CheckDisk(), DocumentFile::DiskChange::None);
  EXPECT_TRUE(file_.KeepReplaced(path_).is_foreign);
  EXPECT_EQ(history_.versions.List(path_).size(), 1);
  fs::remove(In("a.txt"));
  EXPECT_EQ(file_.CheckDisk(), DocumentFile::DiskChange::Gone);

  // A document of the same bytes from elsewhere holds nothing of the file.
  file_.BecomeKept({DocumentKind::Txt, path_, u"a.txt"_s});
  EXPECT_FALSE(file_.HoldsWholeFile());
  file_.ForgetPath();
  EXPECT_EQ(file_.CheckDisk(), DocumentFile::DiskChange::None);
  EXPECT_EQ(file_.Title(), u"a.txt");
}
