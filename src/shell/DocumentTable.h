#pragma once

#include <QString>
#include <array>
#include <functional>

#include "documents/DocumentKind.h"

namespace tme {

class DocumentWindow;

inline constexpr int kSlotsPerKind = 5;

/// One place of the table. A slot is free when its window's tag is empty.
struct DocumentSlot {
  /// Null for a kind that has no editor, and once released at exit. Owned by the frame.
  DocumentWindow* window = nullptr;
  /// Full path; empty for a document without a file.
  QString path{};
  /// File name without its folder; empty for a document without a file.
  QString title{};
  bool changed = false;
};

/// Five document windows of each of the four kinds.
class DocumentTable {
 public:
  DocumentSlot& At(DocumentKind kind, int slot);
  /// 0 to 4, the first whose tag is empty; -1 when all are taken or the kind has no editor.
  int FindFreeSlot(DocumentKind kind) const;
  /// Whether windows of the kind exist.
  bool Offers(DocumentKind kind) const;
  /// Every slot that has a window, slot by slot, within a slot in the order INI, TXT, RTF, REG.
  void ForEach(const std::function<void(DocumentSlot&)>& visit);

 private:
  using Slots = std::array<DocumentSlot, kSlotsPerKind>;
  const Slots& SlotsOf(DocumentKind kind) const;
  std::array<Slots, kKinds.size()> slots_{};
};

}  // namespace tme
