#pragma once

#include <cstring>
#include <deque>
#include <memory_resource>
#include <string>
#include <string_view>
#include <utility>

namespace tme {

/// Memory for the texts of a document: whole texts that were read, and those of single edits. Views of them hold until
/// Clear, which alone gives memory up.
class TextStore {
 public:
  /// The string stays at one address.
  std::string& Keep(std::string text) { return kept_.emplace_back(std::move(text)); }

  std::string_view Copy(std::string_view text) {
    if (text.empty()) return "";
    char* copy = static_cast<char*>(copies_.allocate(text.size(), 1));
    std::memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
  }

  /// Gives up the text that was kept last. Nothing may point into it.
  void GiveBackLast() { kept_.pop_back(); }

  void Clear() {
    kept_.clear();
    copies_.release();
  }

 private:
  std::deque<std::string> kept_;
  std::pmr::monotonic_buffer_resource copies_;
};

}  // namespace tme
