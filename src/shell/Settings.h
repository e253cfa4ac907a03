#pragma once

#include <QString>
#include <array>
#include <optional>

#include "documents/DocumentKind.h"
#include "system/RegistryAccess.h"

namespace tme {

/// Keys and value names of the settings store. Values are texts; a flag is true exactly when its text is "1".
inline const QString kMruKey = SettingsRoot + QStringLiteral("\\MRU");
inline const QString kIniKey = SettingsRoot + QStringLiteral("\\INI Editor");
inline const QString kTxtKey = SettingsRoot + QStringLiteral("\\TXT Editor");
inline const QString kRtfKey = SettingsRoot + QStringLiteral("\\RTF Editor");
inline const QString kRegKey = SettingsRoot + QStringLiteral("\\REG Editor");

/// The parsed settings, held in memory for the whole run and shared by all windows.
struct Settings {
  /// Whether the root key could be opened at start; without it neither placement nor flags are read or written.
  bool present = false;
  /// The same for the keys of the text and the rich-text editor.
  bool txt_present = false;
  bool rtf_present = false;
  bool supress_results = false;
  bool contain_srd = false;
  bool start_editors_max = false;
  bool multi_select = false;
  /// Whether documents are held whole from the start.
  bool ini_whole = false;
  bool reg_whole = false;
  /// Of all text and rich-text windows.
  bool word_wrap = false;
  /// Of all text windows.
  bool line_numbers = false;
  /// Of all windows that show a tree: its source, and that beside the tree in place of below it.
  bool show_source = false;
  bool source_beside = false;
  /// Minutes, 0 to 99; 0 is off.
  int auto_save_period = 0;
  QString font_name = QStringLiteral("Courier");
  /// Points.
  int font_size = 10;
  /// Wildcards of the files that count as plain text and as rich text, ";" between them.
  QString txt_filter = QStringLiteral("*.TXT;*.INF;*.BAT;*.KIX;*.REXX;*.HTM;*.HTML");
  QString rtf_filter = QStringLiteral("*.RTF;*.WRI");

  /// Sets one of kFlags, and writes it when the root key is present.
  void SetFlag(bool Settings::*flag, bool on, RegistryAccess& registry);

  /// The flags, when the root key is present.
  void ReadFrameGroup(const RegistryAccess& registry);
  void ReadTxtGroup(const RegistryAccess& registry);
  void ReadRtfGroup(const RegistryAccess& registry);
};

/// A setting that is on or off, and the name of its value.
struct Flag {
  bool Settings::*field;
  const char* value_name;
  const QString* key = &SettingsRoot;
};
/// In the order in which the options are written.
inline constexpr std::array kFlags{
    Flag{&Settings::supress_results, "Supress Results"},
    Flag{&Settings::contain_srd, "Contain SRD"},
    Flag{&Settings::start_editors_max, "Start Editors Max"},
    Flag{&Settings::multi_select, "MultiSelect"},
    Flag{&Settings::word_wrap, "Word Wrap"},
    Flag{&Settings::line_numbers, "Line Numbers", &kTxtKey},
    Flag{&Settings::show_source, "Show Source"},
    Flag{&Settings::source_beside, "Source Beside"},
    Flag{&Settings::ini_whole, "Whole File", &kIniKey},
    Flag{&Settings::reg_whole, "Whole File", &kRegKey},
};

/// A finite number, blanks around it allowed; nothing for anything else.
std::optional<double> ParseNumber(const QString& text);

inline constexpr int kMaxAutoSavePeriod = 99;

/// "AutoSave" as minutes: what is empty, not a number or below 0 is 0, above 99 is 99.
int ParseAutoSavePeriod(const QString& text);

/// The four kinds in the order of the Open dialog's types, which "Default Open Type" counts from 0.
inline constexpr std::array kOpenTypes{DocumentKind::Ini, DocumentKind::Reg, DocumentKind::Txt, DocumentKind::Rtf};

/// The kind that the Open dialog lists first; INI for what is no number from 0 to 3.
DocumentKind ParseDefaultOpenType(const QString& text);
QString DefaultOpenTypeText(DocumentKind kind);

/// A number that fits 16 bits, rounded; nothing for anything else.
std::optional<int> ParseInt16(const QString& text);

/// A length or place on the screens, rounded: not bound to 16 bits, in which 2184 pixels fit; nothing for what is no
/// number or beyond any screen.
std::optional<int> ParseTwips(const QString& text);

/// What the user is told when settings do not reach the store.
QString SettingsFailureText(const StoreFailure& failure);

/// Remembered folder of the last save. With an existing folder: remembers it.
void RememberLastSaveFolder(RegistryAccess& registry, const QString& folder);
/// The remembered folder if it exists, else the user's documents folder.
QString LastSaveFolder(const RegistryAccess& registry);

/// The user's documents folder.
QString PersonalFolder(const RegistryAccess& registry);

}  // namespace tme
