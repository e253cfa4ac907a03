#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "FailingSteps.h"
#include "WriteFile.h"
#include "files/FileBytes.h"

namespace tme {
namespace {

TEST_F(WriteFile, KeepsModeAndLinks) {
  Put(In("file"), "old");
  ::chmod(In("file").c_str(), 0754);
  fs::create_directory(In("sub"));
  fs::create_symlink("../file", In("sub/link"));
  fs::create_symlink("sub/link", In("link"));
  EXPECT_EQ(Reason(WriteFileBytes(In("link"), "new")), "none");
  EXPECT_TRUE(fs::is_symlink(In("link")) && fs::is_symlink(In("sub/link")));
  EXPECT_EQ(Get(In("file")), "new");
  EXPECT_EQ(fs::status(In("file")).permissions(), fs::perms{0754});

  fs::create_symlink("sub/missing", In("dangling"));
  const mode_t old_mask = ::umask(027);
  EXPECT_EQ(Reason(WriteFileBytes(In("dangling"), "made")), "none");
  ::umask(old_mask);
  EXPECT_EQ(Get(In("sub/missing")), "made");
  EXPECT_EQ(fs::status(In("sub/missing")).permissions(), fs::perms{0640});
}

/// An access list as the system keeps it (linux/posix_acl_xattr.h): who has what, and one more user with `rights`.
std::string AccessList(char rights) {
  std::string list("\2\0\0\0", 4);
  const auto add = [&list](char tag, char perm, std::uint32_t user) {
    list.append({tag, '\0', perm, '\0'}).append(reinterpret_cast<const char*>(&user), sizeof user);
  };
  constexpr std::uint32_t kNobody = 0xFFFFFFFF, kOther = 65534;
  add(0x01, 6, kNobody);
  add(0x02, rights, kOther);
  add(0x04, 4, kNobody);
  add(0x10, 6, kNobody);
  add(0x20, 0, kNobody);
  return list;
}
constexpr const char* kAccess = "system.posix_acl_access";

bool SetList(const fs::path& path, const char* name, char rights) {
  const std::string list = AccessList(rights);
  return ::setxattr(path.c_str(), name, list.data(), list.size(), 0) == 0;
}

TEST_F(WriteFile, TakesOverTheAccessListAndNothingFromTheFolder) {
  Put(In("listed"), "old");
  Put(In("plain"), "old");
  ::chmod(In("plain").c_str(), 0640);
  if (!SetList(In("listed"), kAccess, 6) || !SetList(In(""), "system.posix_acl_default", 6))
    GTEST_SKIP() << "no access lists here";
  for (const char* name : {"listed", "plain"}) EXPECT_EQ(Reason(WriteFileBytes(In(name), "new")), "none");
  std::string list(256, '\0');
  list.resize(static_cast<std::size_t>(::getxattr(In("listed").c_str(), kAccess, list.data(), list.size())));
  EXPECT_EQ(list, AccessList(6));
  EXPECT_LT(::getxattr(In("plain").c_str(), kAccess, nullptr, 0), 0) << "the folder's is for new files";
  EXPECT_EQ(fs::status(In("plain")).permissions(), fs::perms{0640});
}

TEST_F(WriteFile, WhatANewFileCouldNotHaveIsLeftToAWriteInPlace) {
  Put(In("a"), "old");
  fs::create_hard_link(In("a"), In("b"));
  const auto failure = WriteFileBytes(In("a"), "new");
  EXPECT_TRUE(failure && failure->folder_refused);
  EXPECT_EQ(Get(In("b")), "old");
  EXPECT_EQ(FilesInFolder(), 2);

  Put(In("theirs"), "old");
  ::chmod(In("theirs").c_str(), 0600);
  if (::geteuid() != 0 || !SetList(In("theirs"), kAccess, 6)) return;
  ::chmod(In("").c_str(), 0777);
  fs::current_path(In(""));  // the way there is the tests' own
  ASSERT_EQ(::seteuid(65534), 0);
  const auto refused = WriteFileBytes("theirs", "new");
  ASSERT_EQ(::seteuid(0), 0);
  fs::current_path("/");
  EXPECT_TRUE(refused && refused->folder_refused) << Reason(refused);
  EXPECT_EQ(FilesInFolder(), 3);
}

TEST_F(WriteFile, OwnFilesAreTheUsersAlone) {
  const mode_t old_mask = ::umask(0);
  Put(In("wide"), "old");
  for (const char* name : {"wide", "new"}) {
    EXPECT_EQ(Reason(WritePrivateFile(In(name), "bytes")), "none");
    EXPECT_EQ(fs::status(In(name)).permissions(), fs::perms{0600}) << name;
  }
  ::umask(old_mask);
}

TEST(FilePath, TakesEveryText) {
  const std::pair<std::u16string, std::string> rows[] = {{u"/a\u00E9\U0001F600 ", "/a\xC3\xA9\xF0\x9F\x98\x80 "},
                                                         {{u'a', 0xDCE9, u'b'},
                                                          "a\xE9"
                                                          "b"},
                                                         {{0xD800}, "\xED\xA0\x80"},
                                                         {{0xDC00, 0xD83D}, "\xED\xB0\x80\xED\xA0\xBD"}};
  for (const auto& [text, name] : rows) EXPECT_EQ(FilePath(QString::fromStdU16String(text)).native(), name);
}

TEST_F(WriteFile, SaysWhyNot) {
  Put(In("read-only"), "old");
  ::chmod(In("read-only").c_str(), 0444);
  EXPECT_EQ(Reason(WriteFileBytes(In("read-only"), "new")), "The file is read-only");
  EXPECT_EQ(Get(In("read-only")), "old");

  fs::create_symlink("loop", In("loop"));
  ASSERT_EQ(::mkfifo(In("pipe").c_str(), 0600), 0);  // nobody writes: opening it must not wait
  const std::pair<const char*, std::string> cases[] = {{"", "Is a directory"},
                                                       {"missing/file", "No such file or directory"},
                                                       {"loop", "Too many levels of symbolic links"},
                                                       {"pipe", "Not a regular file"}};
  for (const auto& [name, reason] : cases) {
    EXPECT_EQ(Reason(WriteFileBytes(In(name), "new")), reason) << name;
    EXPECT_EQ(Get(In(name)), "failed: " + reason) << name;
  }
  FailingSteps steps(0, {"folder without temporary files", {}, {}, Fault::Folder::Refuses});
  const auto put_new = [](const PartSink& put) { return put("new"); };
  EXPECT_EQ(Reason(WriteFileParts(In("new"), put_new, steps)), "The folder cannot be written: Permission denied");

  EXPECT_NE(Get("/proc/self/cmdline"), "") << "larger than its size says";
  Put(In("huge"), "");
  fs::resize_file(In("huge"), kMaxFileBytes + 1);
  EXPECT_EQ(Get(In("huge")), "failed: File too large");
}

}  // namespace
}  // namespace tme
