#include <gtest/gtest.h>

#include <functional>

#include "RegProbe.h"

using namespace std::string_literals;

namespace tme {
namespace {

struct WriteCase {
  const char* name;
  std::string file;
  std::function<void(RegDocument&)> edit;
  /// Without the header.
  std::string regular;
  std::string expanded;
};

// clang-format off
const std::vector<WriteCase> kWrites = {
    {"nothing", "", nullptr, "", ""},
    {"types, hex lines joined, the default value by its name; bytes as they are",
     "[$/a/b]|@='x//'|'d'=dword:00000001|'h'=hex:1,/|  2|'\0'='\xFF'|"s, nullptr,
     "[$/a/b]|'[default]'='x//'|'d'=dword:00000001|'h'=hex:1,2|'\0'='\xFF'||"s,
     "[$/a]||[$/a/b]|'[default]'='x//'|'d'=dword:00000001|'h'=hex:1,2|'\0'='\xFF'||"s},
    {"in the order of the tree", "[$/a/b]|@=|[%/c]|@=|[$/d]|[$/a]|@=|", nullptr,
     "[$/a]|'[default]'=''||[$/a/b]|'[default]'=''||[%/c]|'[default]'=''||",
     "[$/a]|'[default]'=''||[$/a/b]|'[default]'=''||[$/d]||[%/c]|'[default]'=''||"},
    {"values of hives, of the root and of a key with its name are not written; keys below that are",
     "[$/]|'h'=''|[$]|'r'=''|[$/T/a]|'1'=''|[$/T]|'t'=''|", nullptr,
     "[$/T/a]|'1'=''||", "[$/T/a]|'1'=''||"},
    {"values of all keys of one name under each, in the order of the table; a hive's too",
     "[$/a/s]|'1'=''|[%/s]|'2'=''|[$/a/s]|'3'=''|[%/]|'4'=''|[$/s/%]|", nullptr,
     "[$/a/s]|'1'=''|'2'=''|'3'=''||[$/s]|'1'=''|'2'=''|'3'=''||[$/s/%]|'4'=''||[%/s]|'1'=''|'2'=''|'3'=''||",
     "[$/a]||[$/a/s]|'1'=''|'2'=''|'3'=''||[$/s]|'1'=''|'2'=''|'3'=''||[$/s/%]|'4'=''||[%/s]|'1'=''|'2'=''|'3'=''||"},
    {"deleted records are lines, removed keys' records count, a renamed hive begins its keys",
     "[$/a/s]|'1'=''|'2'=''|[$/b/s]|'3'=dword:1|[$/c/s]|",
     [](RegDocument& d) {
       for (const char* key : {"$/a", "$/b"}) d.RemoveKey(NodeAt(d, key));
       d.DeleteValue(0), d.SetText(NodeAt(d, "$"), "H\\1");
     },
     "[H/1/c/s]|''=|'2'=''|'3'=dword:1||", "[H/1/c]||[H/1/c/s]|''=|'2'=''|'3'=dword:1||"},
};
// clang-format on

std::string File(const std::string& text) {
  std::string out;
  for (const char c : Reg("REGEDIT4||" + text)) out += c == '\n' ? "\r\n" : std::string(1, c);
  return out;
}

TEST(RegWriter, WritesBothLayouts) {
  for (const WriteCase& test : kWrites) {
    SCOPED_TRACE(test.name);
    RegDocument document("T");
    ReadReg(document, "REGEDIT4|" + test.file + "|");
    if (test.edit) test.edit(document);
    EXPECT_EQ(Written(document, RegLayout::Regular), File(test.regular));
    const std::string expanded = Written(document, RegLayout::Expanded);
    EXPECT_EQ(expanded, File(test.expanded));
    if (document.KeysSharingAName() + document.UnsavedValues() > 0 || test.edit) continue;
    RegDocument again("T");
    EXPECT_EQ(ReadReg(again, expanded).error_log, "");
    EXPECT_EQ(Dump(again), Dump(document));
    EXPECT_EQ(Written(again, RegLayout::Expanded), expanded);
  }
}

TEST(RegWriter, GivesPartsAndStopsWithTheSink) {
  RegDocument document;
  RegNode* hive = document.AddHiveNode("H");
  for (int i = 0; i < 1000; ++i) {
    RegNode* parent = document.AddBranch(hive, std::to_string(i));
    document.AddValueRecord(document.AddBranch(parent, "same"), RegType::Hex, "n", "00");
  }
  // Each of the 1000 keys gets the values of all.
  const std::uint64_t bytes = RegOutputBytes(document, RegLayout::Regular);
  EXPECT_GT(bytes, 12'000'000U);
  EXPECT_GT(bytes, kMaxRegGrowth * document.ContentBytes());
  std::size_t parts = 0;
  std::size_t largest = 0;
  EXPECT_FALSE(WriteReg(document, RegLayout::Regular, [&](std::string_view part) {
    largest = std::max(largest, part.size());
    return ++parts < 20;
  }));
  EXPECT_EQ(parts, 20U);
  EXPECT_LT(largest, 70'000U);
}

}  // namespace
}  // namespace tme
