#pragma once

#include <array>
#include <functional>

#include "documents/DocumentKind.h"

namespace tme {

class DocumentWindow;

inline constexpr int kSlotsPerKind = 5;

/// Five document windows of each of the four kinds.
class DocumentTable {
 public:
  /// The window at a slot, 0 to 4; owned by the frame. Null for a kind that has no editor, and once released at exit.
  DocumentWindow* At(DocumentKind kind, int slot) const { return SlotsOf(kind).at(static_cast<std::size_t>(slot)); }
  void Put(DocumentKind kind, int slot, DocumentWindow* window);
  /// The table forgets the window.
  void Release(const DocumentWindow& window);
  /// The first slot without a document, 0 to 4; -1 when all are taken or the kind has no editor.
  int FindFreeSlot(DocumentKind kind) const;
  /// Whether windows of the kind exist.
  bool Offers(DocumentKind kind) const { return SlotsOf(kind)[0] != nullptr; }
  /// Every window, slot by slot, within a slot in the order INI, TXT, RTF, REG; and those alone that hold a document.
  void ForEach(const std::function<void(DocumentWindow&)>& visit) const;
  void ForEachOpen(const std::function<void(DocumentWindow&)>& visit) const;

 private:
  using Slots = std::array<DocumentWindow*, kSlotsPerKind>;
  const Slots& SlotsOf(DocumentKind kind) const;
  std::array<Slots, kKinds.size()> slots_{};
};

}  // namespace tme
