#include <windows.h>

#include <QStringList>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "files/SystemMessage_win.h"
#include "system/RegistryAccess.h"

namespace tme {
namespace {

/// Where the system keeps a key of ours.
struct Place {
  HKEY hive;
  std::wstring path;  ///< below the hive; empty for the hive itself
};

/// Null for a path that begins with no hive's name. A separator at the end or a doubled one adds no level.
std::optional<Place> PlaceOf(const QString& key) {
  const std::array<std::pair<QStringView, HKEY>, 5> hives{{{u"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                                                           {u"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                                                           {u"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                                                           {u"HKEY_USERS", HKEY_USERS},
                                                           {u"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG}}};
  QStringList parts = key.split(u'\\', Qt::SkipEmptyParts);
  if (parts.isEmpty()) return std::nullopt;
  const QString name = parts.takeFirst();
  for (const auto& [hive_name, hive] : hives)
    if (name.compare(hive_name, Qt::CaseInsensitive) == 0) return Place{hive, parts.join(u'\\').toStdWString()};
  return std::nullopt;
}

}  // namespace

/// No value is kept between calls, so that each sees what others have written.
class RegistryAccess::Store {
 public:
  /// True when all is well. What the shell integration writes elsewhere is told of by itself.
  bool Note(const QString& key, LSTATUS status) {
    if (status == ERROR_SUCCESS) return true;
    if (!key.startsWith(SettingsRoot, Qt::CaseInsensitive)) return false;
    failure = {key, QString::fromStdString(SystemMessage(static_cast<unsigned long>(status)))};
    if (tell) std::exchange(tell, {})();
    return false;
  }

  std::optional<StoreFailure> failure;
  std::function<void()> tell;
};

RegistryAccess::RegistryAccess() : store_(std::make_unique<Store>()) {}

RegistryAccess::~RegistryAccess() = default;

std::optional<StoreFailure> RegistryAccess::Flush() { return store_->failure; }

void RegistryAccess::OnFailure(std::function<void()> tell) {
  store_->tell = std::move(tell);
  if (store_->tell && store_->failure) std::exchange(store_->tell, {})();
}

bool RegistryAccess::CreateKey(const QString& key) {
  const std::optional<Place> place = PlaceOf(key);
  if (!place) return false;
  HKEY opened = nullptr;
  // The right to read is enough, which an existing key that is not ours to write gives, too.
  const LSTATUS status = ::RegCreateKeyExW(place->hive, place->path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                           KEY_QUERY_VALUE, nullptr, &opened, nullptr);
  if (!store_->Note(key, status)) return false;
  ::RegCloseKey(opened);
  return true;
}

void RegistryAccess::WriteValue(const QString& key, const QString& name, const QString& data) {
  const std::optional<Place> place = PlaceOf(key);
  if (!place) return;
  const std::wstring text = data.toStdWString();
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  store_->Note(key, ::RegSetKeyValueW(place->hive, place->path.c_str(), name.toStdWString().c_str(), REG_SZ,
                                      text.c_str(), bytes));
}

QString RegistryAccess::ReadValue(const QString& key, const QString& name) const {
  const std::optional<Place> place = PlaceOf(key);
  if (!place) return {};
  const std::wstring value = name.toStdWString();
  std::wstring text(256, L'\0');
  while (true) {
    auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    // A text with the names of environment variables is one of this kind too, with these filled in.
    const LSTATUS status =
        ::RegGetValueW(place->hive, place->path.c_str(), value.c_str(), RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
    if (status == ERROR_MORE_DATA) {
      text.resize(2 * text.size() + bytes / sizeof(wchar_t));
      continue;
    }
    if (status != ERROR_SUCCESS || bytes < sizeof(wchar_t)) return {};
    return QString::fromWCharArray(text.data(), static_cast<qsizetype>(bytes / sizeof(wchar_t)) - 1);
  }
}

void RegistryAccess::DeleteKey(const QString& key) {
  const std::optional<Place> place = PlaceOf(key);
  if (!place || place->path.empty()) return;  // would be the whole hive
  ::RegDeleteTreeW(place->hive, place->path.c_str());
}

QString RegistryAccess::Location() const { return SettingsRoot; }

}  // namespace tme
