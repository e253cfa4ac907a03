#include "shell/DocumentTable.h"

#include <algorithm>

#include "shell/DocumentWindow.h"

namespace tme {

const DocumentTable::Slots& DocumentTable::SlotsOf(DocumentKind kind) const { return slots_[IndexOf(kind)]; }

void DocumentTable::Put(DocumentKind kind, int slot, DocumentWindow* window) {
  slots_[IndexOf(kind)].at(static_cast<std::size_t>(slot)) = window;
}

void DocumentTable::Release(const DocumentWindow& window) {
  for (Slots& windows : slots_) std::replace(windows.begin(), windows.end(), const_cast<DocumentWindow*>(&window), {});
}

int DocumentTable::FindFreeSlot(DocumentKind kind) const {
  const Slots& windows = SlotsOf(kind);
  const auto is_free = [](const DocumentWindow* window) { return window && !window->IsOpen(); };
  const auto found = std::find_if(windows.begin(), windows.end(), is_free);
  return found == windows.end() ? -1 : static_cast<int>(found - windows.begin());
}

void DocumentTable::ForEach(const std::function<void(DocumentWindow&)>& visit) const {
  for (int slot = 0; slot < kSlotsPerKind; ++slot)
    for (const DocumentKind kind : kKinds)
      if (DocumentWindow* window = At(kind, slot)) visit(*window);
}

void DocumentTable::ForEachOpen(const std::function<void(DocumentWindow&)>& visit) const {
  ForEach([&visit](DocumentWindow& window) {
    if (window.IsOpen()) visit(window);
  });
}

}  // namespace tme
