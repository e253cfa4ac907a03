#include "shell/DocumentTable.h"

#include "shell/DocumentWindow.h"

namespace tme {

const DocumentTable::Slots& DocumentTable::SlotsOf(DocumentKind kind) const { return slots_[IndexOf(kind)]; }

DocumentSlot& DocumentTable::At(DocumentKind kind, int slot) {
  return const_cast<DocumentSlot&>(SlotsOf(kind).at(static_cast<std::size_t>(slot)));
}

int DocumentTable::FindFreeSlot(DocumentKind kind) const {
  const Slots& kind_slots = SlotsOf(kind);
  for (int slot = 0; slot < kSlotsPerKind; ++slot) {
    const DocumentWindow* window = kind_slots[static_cast<std::size_t>(slot)].window;
    if (window && window->Tag().isEmpty()) return slot;
  }
  return -1;
}

bool DocumentTable::Offers(DocumentKind kind) const { return SlotsOf(kind)[0].window != nullptr; }

void DocumentTable::ForEach(const std::function<void(DocumentSlot&)>& visit) {
  for (std::size_t slot = 0; slot < kSlotsPerKind; ++slot)
    for (Slots& kind_slots : slots_)
      if (kind_slots[slot].window) visit(kind_slots[slot]);
}

}  // namespace tme
