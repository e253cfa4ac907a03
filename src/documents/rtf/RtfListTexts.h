#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {

/// The lists of paragraphs of which only the number or bullet before them (\pntext, \listtext) is known. Internal to
/// the reader.
class ListTexts {
 public:
  /// Makes a paragraph's format that of the list with this text before it, which goes on with the one before where the
  /// number does.
  void Join(std::string_view text, ParagraphFormat& format);
  /// A paragraph came that is in none of them.
  void End() {
    // With each paragraph outside of lists.
    if (std::exchange(has_begun_, false)) levels_ = {};
  }

 private:
  static constexpr std::size_t kLevels = 9;
  struct Item {
    ListKind kind = ListKind::None;
    std::int32_t number = 0;
    std::int32_t start = 1;
    std::string before{};
    std::string after{};
  };
  static Item Read(std::string_view text, const Item& last);

  std::array<Item, kLevels> levels_;
  bool has_begun_ = false;  ///< levels_ has any
};

}  // namespace tme::rtf
