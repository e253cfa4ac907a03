#pragma once

#include <QCoreApplication>
#include <array>

#include "documents/DocumentKind.h"

namespace tme {

/// What the windows of a kind are called and answer to. Texts are untranslated: see KindText.
struct KindTraits {
  const char* message_name;  ///< "INI File", as messages say it
  const char* new_caption;   ///< caption of a document that has no file yet
  const char* new_command;
  const char* open_command;
  const char* filter_name;  ///< entry of the Open dialog's file type list
};

/// In the order of kKinds.
inline constexpr std::array<KindTraits, kKinds.size()> kKindTraits{{
    {QT_TRANSLATE_NOOP("KindTraits", "INI File"), QT_TRANSLATE_NOOP("KindTraits", "New INI File"), "NewINI", "OpenINI",
     QT_TRANSLATE_NOOP("KindTraits", "INI File")},
    {QT_TRANSLATE_NOOP("KindTraits", "TXT File"), QT_TRANSLATE_NOOP("KindTraits", "New Text Document"), "NewTXT",
     "OpenTXT", QT_TRANSLATE_NOOP("KindTraits", "Text File")},
    {QT_TRANSLATE_NOOP("KindTraits", "RTF File"), QT_TRANSLATE_NOOP("KindTraits", "New RTF Document"), "NewRTF",
     "OpenRTF", QT_TRANSLATE_NOOP("KindTraits", "RTF File")},
    {QT_TRANSLATE_NOOP("KindTraits", "Registry File"), QT_TRANSLATE_NOOP("KindTraits", "New Registry File"), "NewREG",
     "OpenREG", QT_TRANSLATE_NOOP("KindTraits", "Registry File")},
}};

constexpr const KindTraits& TraitsOf(DocumentKind kind) { return kKindTraits[IndexOf(kind)]; }

/// A text of the traits as the user reads it.
inline QString KindText(const char* text) { return QCoreApplication::translate("KindTraits", text); }

}  // namespace tme
