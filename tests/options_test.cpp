#include <gtest/gtest.h>

#include "windows/options/FilterList.h"
#include "windows/options/HelpTexts.h"

using namespace tme;
using namespace Qt::StringLiterals;

TEST(FilterList, KeepsEachExtensionOnce) {
  const std::tuple<const char*, const char*, qsizetype, const char*> rows[] = {
      {"*.TXT;*.INF", "HTM", 2, "*.TXT;*.INF;*.HTM"},
      {"*.TXT;*.htm", "HTM", 1, "*.TXT;*.htm"},
      {"*.TXT;;LOG;*.TXT;", "", -1, "*.TXT;*.LOG"},
      {"", "RTF", 0, "*.RTF"},
      {"*.tar.*", "A", 1, "*.tar.*;*.A"},
      {"", "", -1, ""}};
  for (const auto& [loaded, added, place, saved] : rows) {
    FilterList list;
    list.Load(u"*.OLD"_s);
    list.Load(QString::fromLatin1(loaded));
    EXPECT_EQ(list.Add(QString::fromLatin1(added)), place) << loaded;
    list.Remove(-1);
    list.Remove(list.Extensions().size());
    EXPECT_EQ(list.Save().toStdString(), saved) << loaded;
  }
}

TEST(FilterList, SaysWhyAnExtensionIsRefused) {
  const QString kIllegal =
      u"You have entered illegal characters for your desired extention. \n\nWindows does not recogzine the symbols: /\\:*?<>|\"\r\rPlease Try Again."_s;
  const std::pair<QString, QString> rows[] = {
      {u"htm"_s, {}},       {u"HTML"_s, {}},     {{}, u"You can not associate a zero length extension."_s},
      {u"t*t"_s, kIllegal}, {u"\""_s, kIllegal}, {u"a/"_s, kIllegal}};
  for (const auto& [extension, text] : rows)
    EXPECT_EQ(ExtensionFaultText(CheckExtension(extension), extension), text) << extension.toStdString();
  const QString refused = ExtensionFaultText(CheckExtension(u"C#*ML"_s), u"C#*ML"_s);
  EXPECT_TRUE(refused.contains(u"lengths.\n\nThe extention C#*ML is not acceptable."_s)) << "typed text stays as it is";
  EXPECT_TRUE(refused.contains(u"want to use\n2) Right-Click"_s));
}
