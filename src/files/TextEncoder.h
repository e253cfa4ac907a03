#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Parts.h"
#include "files/EncodingEvidence.h"
#include "files/TextEncoding.h"

namespace tme {

/// Encodes a text part by part, and knows in the end whether the bytes will be read as that text again.
class TextEncoder {
 public:
  explicit TextEncoder(const TextFormat& format) : format_(format), traits_(TraitsOf(format.encoding)) {}

  /// Returns null when the encoding has no place for a character.
  std::optional<std::string> Encode(std::string_view part);
  /// Returns what follows the last part.
  std::string Rest() const { return format_.stray_byte ? std::string(1, *format_.stray_byte) : std::string(); }
  /// all_bytes: hands over what Encode gave, once more. It runs only where the text has NULs.
  bool ReadsBack(const PartProducer& all_bytes) const;

 private:
  std::optional<std::string> ToCodePage(std::string_view part, bool is_first);

  const TextFormat format_;
  const EncodingTraits& traits_;
  bool at_start_ = true;
  bool has_nul_ = false;
  /// Of bytes of the code page.
  Utf8Evidence evidence_;
};

/// Returns what comes next when the format's encoding does not fit.
TextFormat NextFormat(const TextFormat& format);

}  // namespace tme
