#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tme::rtf {

/// Rich-text bytes with replacements that do not overlap. A blank comes between a control word and what would run into
/// it.
class Patch {
 public:
  explicit Patch(std::string_view bytes) : bytes_(bytes) {}

  /// What comes to one place stands in the order in which it came, and before what is replaced from there on.
  void Replace(std::uint32_t begin, std::uint32_t end, std::string_view text);

  /// Drops what came behind a number of replacements.
  std::size_t Count() const { return replacements_.size(); }
  void TakeBack(std::size_t count);

  std::string Result();

 private:
  struct Replacement {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::size_t text_end = 0;  ///< in texts_; it begins where that of the one before ends
  };

  std::string_view bytes_;
  std::vector<Replacement> replacements_;
  std::string texts_;
};

}  // namespace tme::rtf
