#include <gtest/gtest.h>

#include <chrono>

#include "documents/ini/IniReader.h"
#include "documents/reg/RegReader.h"
#include "documents/reg/RegWholeReader.h"
#include "windows/ini/IniSearch.h"
#include "windows/reg/RegSearch.h"
#include "windows/tree/PatternMatcher.h"

using namespace tme;
using namespace Qt::StringLiterals;

namespace {

constexpr SearchFields kAllFields = ~SearchFields{0};

std::string OfHit(const SearchHit& hit, std::string_view node, std::string_view record) {
  static constexpr char kLetters[] = "SKVCNDP";
  std::string text(1, kLetters[static_cast<std::size_t>(hit.field)]);
  text.append(" ").append(node).append(record.empty() ? "" : "/").append(record);
  return text + " " + std::to_string(hit.start) + "+" + std::to_string(hit.size) + "\n";
}

void RunAll(TreeSearch& search, SearchFields fields, std::shared_ptr<const TextMatcher> matcher) {
  search.Start(fields, std::move(matcher));
  while (search.GoOn(std::chrono::steady_clock::time_point::min())) continue;
}

std::string IniHits(const IniTree& tree, std::string_view wanted, SearchFields fields = kAllFields,
                    SearchCase search_case = SearchCase::Ignore, SearchWords words = SearchWords::Any) {
  TreeSearch search(std::make_unique<IniSearchSource>(tree));
  RunAll(search, fields, std::make_shared<PlainMatcher>(wanted, search_case, words));
  std::string hits;
  for (const SearchHit& hit : search.Hits()) hits += OfHit(hit, static_cast<const IniNode*>(hit.node)->Text(), {});
  return hits;
}

std::string RegHits(const RegDocument& document, const std::shared_ptr<const TextMatcher>& matcher,
                    SearchFields fields = kAllFields) {
  TreeSearch search(std::make_unique<RegSearchSource>(document));
  RunAll(search, fields, matcher);
  std::string hits;
  for (const SearchHit& hit : search.Hits())
    hits += OfHit(hit, static_cast<const RegNode*>(hit.node)->Text(),
                  hit.record == SearchPlace::kNoRecord ? "" : document.Values()[hit.record].name);
  return hits;
}

std::string RegHits(const RegDocument& document, std::string_view wanted, SearchFields fields = kAllFields) {
  return RegHits(document, std::make_shared<PlainMatcher>(wanted, SearchCase::Ignore, SearchWords::Any), fields);
}

constexpr const char* kIniText = "; a note\n[Beta]\nNote = \"a note, a NOTE\"\nplain\n[alpha note]\nÄrger=äÄ ß\n";

}  // namespace

TEST(TreeSearch, FindsWhatTheFieldsOfAnIniTreeHoldInTheOrderShown) {
  IniTree tree;
  tree.Reset("note.ini", Holding::Whole);
  ReadWholeIni(tree, kIniText);
  EXPECT_EQ(IniHits(tree, "note"),
            "C ; a note 4+4\nK Note = \"a note, a NOTE\" 0+4\nV Note = \"a note, a NOTE\" 2+4\n"
            "V Note = \"a note, a NOTE\" 10+4\nS alpha note 6+4\n");
  EXPECT_EQ(IniHits(tree, "note", FieldBit(SearchField::Section) | FieldBit(SearchField::Key)),
            "K Note = \"a note, a NOTE\" 0+4\nS alpha note 6+4\n");
  EXPECT_EQ(IniHits(tree, "NOTE", kAllFields, SearchCase::Match), "V Note = \"a note, a NOTE\" 10+4\n");
  EXPECT_EQ(IniHits(tree, "ä"), "K Ärger=äÄ ß 0+2\nV Ärger=äÄ ß 0+2\nV Ärger=äÄ ß 2+2\n");
  EXPECT_EQ(IniHits(tree, "äÄ", kAllFields, SearchCase::Ignore, SearchWords::Whole), "V Ärger=äÄ ß 0+4\n");
  EXPECT_EQ(IniHits(tree, "plai", kAllFields, SearchCase::Ignore, SearchWords::Whole), "");
  EXPECT_EQ(IniHits(tree, "nothing"), "");
  tree.Reset("head.ini", Holding::Whole);
  ReadWholeIni(tree, "[a] ; b\n[c]b\n[d;]\n [e];\n");
  EXPECT_EQ(IniHits(tree, "b"), "C a 2+1\n");
  EXPECT_EQ(IniHits(tree, ";"), "C a 0+1\nS d; 1+1\nC e 0+1\n");
  // A hit never goes on into what stands beside it.
  EXPECT_EQ(IniHits(tree, std::string_view("e\0a", 3)), "");

  IniTree by_rules("f");
  IniNode* section = by_rules.AddSection("B");
  by_rules.AddEntry(section, "b", "b=b");
  by_rules.AddLine(by_rules.AddSection("A"), ";b", IniTag::Comments);
  EXPECT_EQ(IniHits(by_rules, "b"), "C ;b 1+1\nS B 0+1\nK b=b=b 0+1\nV b=b=b 0+1\nV b=b=b 2+1\n");
}

TEST(TreeSearch, FindsDataOfTheRegistryAsTheyAreShown) {
  RegDocument document;
  ReadWholeReg(document,
               "REGEDIT4\n\n[HKEY_USERS\\abc]\n@=\"abc\"\n\"abc\"=\"x\\\\abc\"\n\"n\"=dword:00abc000\n"
               "\"h\"=hex:0a,bc\n\"m\"=hex(7):61,62,63,00,61,62,00,00\n\"gone\"=-\n\n"
               "[HKEY_USERS\\abc\\Abc]\n[-HKEY_USERS\\b\\abc]\n",
               {});
  EXPECT_EQ(RegHits(document, "abc"),
            "K abc 0+3\nD abc 0+3\nN abc/abc 0+3\nD abc/abc 2+3\nD abc/n 4+3\nD abc/m 0+3\nK Abc 0+3\nK abc 0+3\n");
  EXPECT_EQ(RegHits(document, "0a bc", FieldBit(SearchField::Data)), "D abc/h 0+5\n");
  EXPECT_EQ(RegHits(document, "abc ab"), "D abc/m 0+6\n");
  EXPECT_EQ(RegHits(document, "gone"), "N abc/gone 0+4\n");
  // Data that are passed over undecoded are such that hold none: whatever is in others is found.
  RegDocument coded;
  ReadWholeReg(coded,
               "REGEDIT4\n\n[HKEY_USERS]\n\"a\"=hex(2):7A,79,00\n\"b\"=hex(7):7a,\\\n  79,00,00\n\"c\"=hex:7a,79\n"
               "\"e\"=hex(2):5a,59,00\n\"g\"=-\n\"h\"=dword:7a\n\"i\"=\"\\\\zy\"\n",
               {});
  EXPECT_EQ(RegHits(coded, "zy", FieldBit(SearchField::Data)),
            "D HKEY_USERS/a 0+2\nD HKEY_USERS/b 0+2\nD HKEY_USERS/e 0+2\nD HKEY_USERS/i 1+2\n");
  EXPECT_EQ(RegHits(coded, "7a", FieldBit(SearchField::Data)), "D HKEY_USERS/c 0+2\nD HKEY_USERS/h 8+2\n");
  RegDocument by_rules;
  RegNode* key = by_rules.AddBranch(by_rules.AddHiveNode("HKEY_USERS"), "abc");
  by_rules.AddValueRecord(key, RegType::String, "v", "x\\\\abc");
  by_rules.DeleteValue(by_rules.AddValueRecord(key, RegType::String, "abc", "abc"));
  EXPECT_EQ(RegHits(by_rules, "abc"), "K abc 0+3\nD abc/v 3+3\n");
}

TEST(TreeSearch, FindsKeysByTheirPaths) {
  const auto pattern = [](const QString& text) {
    return std::make_shared<PatternMatcher>(text, SearchCase::Ignore, SearchWords::Any);
  };
  RegDocument whole, by_rules;
  ReadWholeReg(whole, "REGEDIT4\n\n[HKEY_USERS\\a\\bc\\bc\\bc]\n@=\"a\\\\bc\"\n[-HKEY_USERS\\x\\a\\bc]\n", {});
  RegNode* key = by_rules.AddBranch(by_rules.AddHiveNode("HKEY_USERS"), "a");
  by_rules.AddValueRecord(by_rules.AddBranch(key, "bc"), RegType::String, "[default]", "");
  EXPECT_EQ(RegHits(by_rules, "users\\A\\b"), "P bc 5+9\n");
  EXPECT_EQ(RegHits(whole, "a\\b"), "P bc 11+3\nD bc 0+3\nP bc 13+3\n");
  EXPECT_EQ(RegHits(whole, "a\\b", FieldBit(SearchField::Name)), "");
  // Those that overlap, too, and with the separator that a copied path may end in.
  EXPECT_EQ(RegHits(whole, "bc\\bc"), "P bc 13+5\nP bc 16+5\n");
  EXPECT_EQ(RegHits(whole, "users\\"), "P HKEY_USERS 5+6\n");
  EXPECT_EQ(RegHits(whole, pattern(u"^hkey_users.+bc\\\\bc$"_s)), "P bc 0+18\nP bc 0+21\n");
  EXPECT_EQ(RegHits(whole, pattern(u"^bc"_s)), "K bc 0+2\nK bc 0+2\nK bc 0+2\nK bc 0+2\n");
  EXPECT_EQ(RegHits(whole, "default"), "N bc 1+7\n");
}

TEST(TreeSearch, GoesOnInSlicesAndKnowsWhereAPlaceIs) {
  constexpr int kEntries = 10'000;
  std::string text = "[s]\n";
  for (int i = 0; i < kEntries; ++i) text += "key" + std::to_string(i) + "=value\n";
  IniTree tree;
  tree.Reset("f", Holding::Whole);
  ReadWholeIni(tree, std::move(text));
  TreeSearch search(std::make_unique<IniSearchSource>(tree));
  search.Start(kAllFields, std::make_shared<PlainMatcher>("VALUE", SearchCase::Ignore, SearchWords::Any));
  EXPECT_TRUE(search.GoOn(std::chrono::steady_clock::time_point::min()));
  EXPECT_GT(search.Hits().size(), 0U);
  EXPECT_LT(search.Hits().size(), static_cast<std::size_t>(kEntries) / 2);
  while (search.GoOn(std::chrono::steady_clock::time_point::min())) continue;
  ASSERT_EQ(search.Hits().size(), static_cast<std::size_t>(kEntries));
  const IniNode* section = tree.Root()->Child(0);
  for (const int row : {0, 1, 5000, kEntries - 1})
    EXPECT_EQ(search.FirstFrom({section->Child(row)}), static_cast<std::size_t>(row));
  EXPECT_EQ(search.FirstFrom({tree.Root()}), 0U);
  EXPECT_EQ(search.FirstFrom({section}), 0U);
  search.Start(kAllFields, nullptr);
  EXPECT_TRUE(search.IsDone() && search.Hits().empty());
}

TEST(TreeSearch, ReplacesMatchesOfAText) {
  const PlainMatcher matcher("aä", SearchCase::Ignore, SearchWords::Any);
  EXPECT_EQ(matcher.Replaced("xAÄyaä", "\\1", std::nullopt), "x\\1y\\1");
  EXPECT_EQ(matcher.Replaced("xAÄyaä", "", std::size_t{5}), "xAÄy");
  EXPECT_EQ(matcher.Replaced("xAÄyaä", "", std::size_t{4}), std::nullopt);
}
