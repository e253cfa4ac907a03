#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "console/Streams.h"

namespace tme::console {

/// A value of a JSON text.
struct JsonValue {
  enum class Kind : std::uint8_t { Null, False, True, Number, String, Array, Object };
  Kind kind = Kind::Null;
  std::uint64_t line = 0;  ///< where it begins, from 1
  /// A String, with \udcXX as the byte XX; a Number as it stands.
  std::string text = {};
  std::vector<JsonValue> items = {};
  std::vector<std::pair<std::string, JsonValue>> members = {};

  /// The member of an Object; null when it has none of this name.
  const JsonValue* Find(std::string_view name) const;
};

/// Reads a text strictly as RFC 8259 says, no member twice, at most 64 levels. Throws Trouble as "NAME:LINE: …".
JsonValue ReadJson(const std::string& name, std::string_view text);

}  // namespace tme::console
