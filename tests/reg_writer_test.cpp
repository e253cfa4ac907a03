#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "RegProbe.h"
#include "documents/reg/RegAsShown.h"
#include "documents/reg/RegLosses.h"

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
    if (document.KeysSharingAName() > 0 || LossesOf(document, RegLayout::Expanded).fingerprint != 0 || test.edit)
      continue;
    RegDocument again("T");
    EXPECT_EQ(ReadReg(again, expanded).error_log, "");
    EXPECT_EQ(Dump(again), Dump(document));
    EXPECT_EQ(Written(again, RegLayout::Expanded), expanded);
  }
}

struct LossCase {
  const char* name;
  std::string file;
  std::function<void(RegDocument&)> edit;
  RegLosses regular;
  RegLosses expanded;
};

// clang-format off
const std::vector<LossCase> kLosses = {
    {"none", "[$/a]|@=|[$/b/c]|@=|", nullptr, {}, {}},
    {"keys without values that no written one is below", "[$/a/b]|[$/a/c]|@=|[$/d/e]|[%/f]|", nullptr, {.empty_keys = 4}, {}},
    {"hives", "[$]|[$/a]|@=|", [](RegDocument& d) { d.AddHiveNode("HKEY_DYN_DATA"); }, {.empty_hives = 1}, {.empty_hives = 1}},
    {"values of the root, of hives and of keys with the root's text; deleted ones are no loss",
     "[$]|'r'=''|[$/T]|'1'=''|'2'=''|[$/]|'h'=''|", [](RegDocument& d) { d.DeleteValue(1); },
     {.keys_of_title = 1, .values = 3, .values_of_title = 1}, {.keys_of_title = 1, .values = 3, .values_of_title = 1}},
    {"a key with the root's text comes back with what is written below it", "[$/T/a]|'1'=''|[%/T/b]|@=|[%/T]|'2'=''|",
     nullptr, {.values = 1, .values_of_title = 1}, {.values = 1, .values_of_title = 1}},
    {"deleted values where their key is written", "[$/a]|'1'=''|'2'=''|[$/b/c]|'3'=''|",
     [](RegDocument& d) { d.DeleteValue(0), d.DeleteValue(2), d.RemoveKey(NodeAt(d, "$/b")); },
     {.deleted_values = 1}, {.deleted_values = 1}},
    {"a renamed hive", "[$/a]|@=|[%/b]|@=|", [](RegDocument& d) { d.SetText(NodeAt(d, "$"), "H"), d.SetText(NodeAt(d, "%"), Reg("$/x")); },
     {.unknown_hives = 1}, {.unknown_hives = 1}},
    {"a shared name", "[$/a/s]|@=|[$/b/s]|@=|", nullptr, {.shared_keys = 2}, {.shared_keys = 2}},
};
// clang-format on

TEST(RegWriter, CountsWhatASaveLeavesOut) {
  for (const LossCase& test : kLosses) {
    SCOPED_TRACE(test.name);
    RegDocument document("T");
    ReadReg(document, "REGEDIT4|" + test.file + "|");
    if (test.edit) test.edit(document);
    for (const RegLayout layout : {RegLayout::Regular, RegLayout::Expanded}) {
      const RegLosses losses = LossesOf(document, layout);
      const RegLosses& expected = layout == RegLayout::Regular ? test.regular : test.expanded;
      const auto counts = [](const RegLosses& l) {
        return std::array{l.empty_keys,      l.empty_hives,    l.keys_of_title, l.values,
                          l.values_of_title, l.deleted_values, l.shared_keys,   l.unknown_hives};
      };
      EXPECT_EQ(counts(losses), counts(expected));
      EXPECT_EQ(losses.fingerprint != 0,
                losses.empty_keys + losses.empty_hives + losses.keys_of_title + losses.values > 0);
    }
  }
}

TEST(RegAsShown, BringsBackWhatARegistryFileCannotHold) {
  RegDocument document("T");
  RegNode* hive = document.AddHiveNode("Own");
  RegNode* key = document.AddBranch(document.AddBranch(hive, ""), "x]=\"");
  for (const char* text : {"T", "x]=\""}) document.AddBranch(document.AddBranch(hive, "b"), text);
  for (RegNode* owner : {document.Root(), hive, key}) {
    document.AddValueRecord(owner, RegType::String, "a", "\"quoted\"=");
    document.AddValueRecord(owner, RegType::Dword, "[b]", "zz");
    document.AddValueRecord(owner, RegType::Hex, "", "1,2");
  }
  std::string text;
  EXPECT_TRUE(WriteRegAsShown(document, [&text](std::string_view part) {
    text += part;
    return true;
  }));
  RegDocument read("T");
  const RegMirror mirror(read);
  ASSERT_TRUE(ReadRegAsShown(read, text));
  // Keys of one path have become one.
  document.RemoveKey(hive->Child(2));
  document.AddBranch(hive->Child(1), "x]=\"");
  EXPECT_EQ(Dump(read), Dump(document));
  EXPECT_EQ(mirror.resets, 1);
  mirror.Check();

  std::string other = "REGEDIT4\r\n\r\n[HKEY_USERS\\a]\r\n";
  EXPECT_FALSE(ReadRegAsShown(read, other));
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
