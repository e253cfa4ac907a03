#include <gtest/gtest.h>

#include <windows.h>

#include <QStringList>
#include <string_view>

#include "system/RegistryAccess.h"

namespace tme {
namespace {

using namespace Qt::StringLiterals;

const QString kKey = u"HKEY_CURRENT_USER\\SOFTWARE\\Zorvan\\TME"_s;

TEST(Registry, GivesBackExactlyWhatWasWritten) {
  const QStringList texts =
      u"|1| blanks  |C:\\n\\x41\\|a/b|Grüße Жук 😀|line\r\nnext|%PATH%"_s.split(u'|') + QStringList{QString(5000, u'x')};
  RegistryAccess registry;
  EXPECT_EQ(registry.ReadValue(kKey, u"early"_s), QString());
  EXPECT_TRUE(registry.CreateKey(kKey) && registry.CreateKey(kKey));
  for (const QString& text : texts) registry.WriteValue(kKey, text.left(200), text);
  for (const QString& text : texts)
    EXPECT_EQ(RegistryAccess().ReadValue(kKey.toLower() + u"\\"_s, text.left(200)), text) << text.toStdString();
  registry.WriteValue(u"SOFTWARE\\Zorvan"_s, u"x"_s, u"no hive"_s);
  EXPECT_FALSE(registry.CreateKey(u"HKEY_NOWHERE\\x"_s));
}

TEST(Registry, ReadsWhatOthersWrote) {
  RegistryAccess registry;
  ASSERT_TRUE(registry.CreateKey(kKey));
  const auto put = [](const wchar_t* name, DWORD type, std::wstring_view text) {
    ::RegSetKeyValueW(HKEY_CURRENT_USER, L"SOFTWARE\\Zorvan\\TME", name, type, text.data(),
                      static_cast<DWORD>(text.size() * sizeof(wchar_t)));
  };
  ::SetEnvironmentVariableW(L"TME_TEST_PLACE", L"C:\\place");
  put(L"expand", REG_EXPAND_SZ, L"%TME_TEST_PLACE%\\x");
  put(L"unterminated", REG_SZ, L"text");
  put(L"number", REG_DWORD, L"12");
  EXPECT_EQ(registry.ReadValue(kKey, u"expand"_s), u"C:\\place\\x");
  EXPECT_EQ(registry.ReadValue(kKey, u"unterminated"_s), u"text");
  EXPECT_EQ(registry.ReadValue(kKey, u"number"_s), u"");
}

TEST(Registry, DeletesTheKeyWithAllBelowAndNothingElse) {
  RegistryAccess registry;
  const QString menu = kKey + u"\\Menu"_s;
  for (const QString& key : {menu + u"\\Command"_s, menu + u" 2"_s}) {
    ASSERT_TRUE(registry.CreateKey(key));
    registry.WriteValue(key, QString(), u"text"_s);
  }
  registry.DeleteKey(menu);
  registry.DeleteKey(kKey + u"\\missing"_s);
  registry.DeleteKey(u"HKEY_CURRENT_USER"_s);
  EXPECT_EQ(registry.ReadValue(menu + u"\\Command"_s, QString()), u"");
  EXPECT_EQ(registry.ReadValue(menu + u" 2"_s, QString()), u"text");
}

}  // namespace
}  // namespace tme
