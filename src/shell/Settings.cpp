#include "shell/Settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <limits>

#include "system/RegistryAccess.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

void TakeNonEmpty(QString text, QString& setting) {
  if (!text.isEmpty()) setting = std::move(text);
}

}  // namespace

std::optional<double> ParseNumber(const QString& text) {
  bool numeric = false;
  const double number = text.trimmed().toDouble(&numeric);
  if (!numeric || !std::isfinite(number)) return std::nullopt;
  return number;
}

void Settings::ReadFrameGroup(const RegistryAccess& registry) {
  for (const Flag& flag : kFlags)
    this->*flag.field = registry.ReadValue(*flag.key, QString::fromLatin1(flag.value_name)) == u"1";
}

void Settings::SetFlag(bool Settings::*flag, bool on, RegistryAccess& registry) {
  this->*flag = on;
  const auto* const row =
      std::find_if(kFlags.begin(), kFlags.end(), [&](const Flag& each) { return each.field == flag; });
  if (present) registry.WriteValue(*row->key, QString::fromLatin1(row->value_name), on ? u"1"_s : u"0"_s);
}

void Settings::ReadTxtGroup(const RegistryAccess& registry) {
  TakeNonEmpty(registry.ReadValue(kTxtKey, u"Default Font"_s), font_name);
  TakeNonEmpty(registry.ReadValue(kTxtKey, u"File Filter"_s), txt_filter);
  const std::optional<int> size = ParseInt16(registry.ReadValue(kTxtKey, u"Default Size"_s));
  if (size && *size > 0) font_size = *size;
}

void Settings::ReadRtfGroup(const RegistryAccess& registry) {
  TakeNonEmpty(registry.ReadValue(kRtfKey, u"File Filter"_s), rtf_filter);
}

int ParseAutoSavePeriod(const QString& text) {
  const double minutes = ParseNumber(text).value_or(0);
  return static_cast<int>(std::lrint(std::clamp(minutes, 0.0, double{kMaxAutoSavePeriod})));
}

DocumentKind ParseDefaultOpenType(const QString& text) {
  const int type = ParseInt16(text).value_or(0);
  return type >= 0 && type < static_cast<int>(kOpenTypes.size()) ? kOpenTypes[static_cast<std::size_t>(type)]
                                                                 : DocumentKind::Ini;
}

QString DefaultOpenTypeText(DocumentKind kind) {
  return QString::number(std::find(kOpenTypes.begin(), kOpenTypes.end(), kind) - kOpenTypes.begin());
}

std::optional<int> ParseInt16(const QString& text) {
  const std::optional<double> number = ParseNumber(text);
  if (!number) return std::nullopt;
  const double rounded = std::nearbyint(*number);
  if (rounded < std::numeric_limits<qint16>::min() || rounded > std::numeric_limits<qint16>::max()) return std::nullopt;
  return static_cast<int>(rounded);
}

std::optional<int> ParseTwips(const QString& text) {
  constexpr double kMost = 10'000'000;
  const std::optional<double> number = ParseNumber(text);
  if (!number || std::abs(*number) > kMost) return std::nullopt;
  return static_cast<int>(std::lround(*number));
}

QString PersonalFolder(const RegistryAccess& registry) {
  return registry.ReadValue(
      u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"_s, u"Personal"_s);
}

QString SettingsFailureText(const StoreFailure& failure) {
  return QCoreApplication::translate("Settings",
                                     "The settings could not be saved in %1: %2.  What is stored there is unchanged.")
      .arg(failure.place, failure.reason);
}

void RememberLastSaveFolder(RegistryAccess& registry, const QString& folder) {
  if (!folder.isEmpty() && QFileInfo(folder).isDir())
    registry.WriteValue(SettingsRoot, u"Last Save"_s, QDir::toNativeSeparators(folder));
}

QString LastSaveFolder(const RegistryAccess& registry) {
  const QString folder = registry.ReadValue(SettingsRoot, u"Last Save"_s);
  return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : PersonalFolder(registry);
}

}  // namespace tme
