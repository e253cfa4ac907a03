#include <gtest/gtest.h>

#include "RegProbe.h"
#include "documents/reg/RegValueOrder.h"
#include "documents/reg/RegWholeReader.h"

using namespace tme;

namespace {

/// The names of the key's values in their order.
std::string NamesBy(const RegDocument& document, const RegNode* key, RegValueColumn column) {
  RegCoding coding;
  coding.version = RegVersion::Version5;
  const std::vector<std::size_t> records = document.ValuesOfPath(key);
  std::string names;
  for (const std::uint32_t place : OrderOfValues(document, records, column, coding))
    names.append(document.Values()[records[place]].name).append(" ");
  return names;
}

}  // namespace

TEST(RegValueOrder, PutsNumbersBySizeBeforeTextsInAnyCase) {
  RegDocument whole;
  ReadWholeReg(
      whole, Reg("Windows Registry Editor Version 5.00||[$/K]|'ten'=dword:0000000A|'Two'=dword:00000002|'tEN2'='Beta'|"
                 "'\xC3\x89t'='a//b'|'\xC3\xA9s'='ALPHA'|'q'=hex(b):03,00,00,00,00,00,00,00|'b2'=hex:02|'b1'=hex:01,|"
                 "'gone'=-|'x'=hex(2):61,00,6d,00,00,00|"));
  const RegNode* key = whole.Root()->Child(0)->Child(0);
  EXPECT_EQ(NamesBy(whole, key, RegValueColumn::Name), "b1 b2 gone q ten tEN2 Two x \xC3\xA9s \xC3\x89t ");
  EXPECT_EQ(NamesBy(whole, key, RegValueColumn::Type), "gone b2 b1 ten Two x q tEN2 \xC3\x89t \xC3\xA9s ");
  EXPECT_EQ(NamesBy(whole, key, RegValueColumn::Data), "Two q ten \xC3\x89t \xC3\xA9s x tEN2 b1 b2 gone ");

  RegDocument rules;
  RegNode* branch = rules.AddBranch(rules.AddHiveNode("HKEY_USERS"), "K");
  rules.AddValueRecord(branch, RegType::Hex, "h", "01");
  rules.AddValueRecord(branch, RegType::Dword, "odd", "zz");
  rules.AddValueRecord(branch, RegType::Dword, "n", "0000000a");
  rules.AddValueRecord(branch, RegType::String, "s", "0");
  EXPECT_EQ(NamesBy(rules, branch, RegValueColumn::Data), "n s odd h ");
  EXPECT_EQ(NamesBy(rules, branch, RegValueColumn::Type), "odd n h s ");
}

TEST(RegValueOrder, IsThatOfTheFileWhereLinesCameBetween) {
  RegDocument document;
  ReadWholeReg(document, Reg("REGEDIT4||[$/K]|'a'='1'|;c|'b'='2'||[$/L]|'x'='3'||[$/K]|'d'='4'|"));
  const RegNode* key = document.Root()->Child(0)->Child(0);
  const auto names = [&] {
    const std::vector<std::size_t> records = document.ValuesOfPath(key);
    std::string listed;
    for (const std::uint32_t place : OrderInFile(document, records)) listed += document.Values()[records[place]].name;
    return listed;
  };
  EXPECT_EQ(names(), "") << "as they were read";
  const SourceLines::Piece comment = document.Lines().Next(document.Values()[0].piece);
  document.ReplaceLines(comment, comment, ";c\r\n\"n\"=\"5\"\r\n");
  EXPECT_EQ(names(), "anbd");
  document.Undo();
  EXPECT_EQ(names(), "");
  document.Redo();
  EXPECT_EQ(names(), "anbd");
  EXPECT_TRUE(OrderInFile(RegDocument(), {}).empty());
}
