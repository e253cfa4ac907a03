#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tme {

/// What a document is; Mdi stands for no document. Bits, so that a menu item can name the kinds that show it.
enum class DocumentKind : std::uint8_t { Mdi = 1, Ini = 2, Reg = 4, Txt = 8, Rtf = 16 };

/// The four kinds in the order in which the shell visits them: closing and saving go slot by slot in this order.
inline constexpr std::array kKinds{DocumentKind::Ini, DocumentKind::Txt, DocumentKind::Rtf, DocumentKind::Reg};

/// Its place in kKinds; 0 for Mdi.
constexpr std::size_t IndexOf(DocumentKind kind) {
  for (std::size_t index = 0; index < kKinds.size(); ++index)
    if (kKinds[index] == kind) return index;
  return 0;
}

/// The kind in three letters, as file endings, commands and stored records have it; Mdi has none of its own.
constexpr const char* NameOf(DocumentKind kind) {
  constexpr std::array kNames{"INI", "TXT", "RTF", "REG"};
  return kNames[IndexOf(kind)];
}

}  // namespace tme
