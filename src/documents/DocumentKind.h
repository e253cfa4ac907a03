#pragma once

#include <array>
#include <cstdint>

namespace tme {

/// What a document is; Mdi stands for no document window. Bits, so that a menu item can name the kinds that show it.
enum class DocumentKind : std::uint8_t { Mdi = 1, Ini = 2, Reg = 4, Txt = 8, Rtf = 16 };

/// Numbering of the kinds used by File New and the search for a free slot. Not to be mixed with OpenCode.
enum class SlotCode : std::uint8_t { Ini = 1, Reg = 2, Rtf = 3, Txt = 4 };

/// Numbering of the kinds used by the Open dialog; "Default Open Type" is this less one.
enum class OpenCode : std::uint8_t { Ini = 1, Reg = 2, Txt = 3, Rtf = 4 };

struct KindTraits {
  DocumentKind kind;
  SlotCode slot_code;
  OpenCode open_code;
  const char* name;          ///< "INI"
  const char* message_name;  ///< "INI File", as messages say it
  const char* new_caption;   ///< caption of a document that has no file yet
  const char* new_command;
  const char* open_command;
  const char* filter_name;  ///< entry of the Open dialog's file type list
};

inline constexpr int kSlotsPerKind = 5;

/// The four kinds in the order in which the shell visits them: closing and saving go slot by slot in this order.
inline constexpr std::array<KindTraits, 4> kKinds{{
    {DocumentKind::Ini, SlotCode::Ini, OpenCode::Ini, "INI", "INI File", "New INI File", "NewINI", "OpenINI",
     "INI File"},
    {DocumentKind::Txt, SlotCode::Txt, OpenCode::Txt, "TXT", "TXT File", "New Text Document", "NewTXT", "OpenTXT",
     "Text File"},
    {DocumentKind::Rtf, SlotCode::Rtf, OpenCode::Rtf, "RTF", "RTF File", "New RTF Document", "NewRTF", "OpenRTF",
     "RTF File"},
    {DocumentKind::Reg, SlotCode::Reg, OpenCode::Reg, "REG", "Registry File", "New Registry File", "NewREG", "OpenREG",
     "Registry File"},
}};

constexpr const KindTraits& TraitsOf(DocumentKind kind) {
  for (const KindTraits& traits : kKinds)
    if (traits.kind == kind) return traits;
  return kKinds[0];
}
constexpr const KindTraits& TraitsOf(OpenCode code) {
  for (const KindTraits& traits : kKinds)
    if (traits.open_code == code) return traits;
  return kKinds[0];
}

}  // namespace tme
