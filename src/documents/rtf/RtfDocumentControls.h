#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfControls.h"

namespace tme::rtf {

/// Keeps control words of the whole document and its first section as they stand in the file, in the order in which
/// they first came. Internal to the reader.
class DocumentControls {
 public:
  /// A word of ControlClass::File, `raw` in the file's bytes, which outlive this. The last one of its name counts.
  void Keep(const ControlWord& word, std::string_view raw);
  /// A word that is in no table; the same again is kept once, and those over a limit are dropped.
  void KeepUnknown(std::string_view raw);

  std::string Joined() const;

 private:
  std::vector<std::string_view> words_;
  std::vector<std::uint32_t> places_ = std::vector<std::uint32_t>(kDocumentWordCount);  ///< index plus 1, by value
};

}  // namespace tme::rtf
