#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "console/Streams.h"

namespace tme::console {

/// Writes JSON (RFC 8259) in ASCII and UTF-8. A byte of a text that is no UTF-8 becomes the escape \udcXX, a lone
/// surrogate that no text has otherwise.
class JsonWriter {
 public:
  /// How the members of an object or array stand: each in a line, or all in one.
  enum class Layout : std::uint8_t { Lines, Inline };

  explicit JsonWriter(Streams& streams) : streams_(streams) {}

  JsonWriter& BeginObject(Layout layout = Layout::Inline) { return Begin('{', layout); }
  JsonWriter& EndObject() { return End('}'); }
  JsonWriter& BeginArray(Layout layout = Layout::Inline) { return Begin('[', layout); }
  JsonWriter& EndArray() { return End(']'); }
  /// Of the next member of an object.
  JsonWriter& Name(std::string_view name);
  JsonWriter& String(std::string_view text);
  JsonWriter& Number(std::uint64_t number) { return Bare(std::to_string(number)); }
  JsonWriter& True() { return Bare("true"); }
  JsonWriter& Null() { return Bare("null"); }
  /// A name and a text.
  JsonWriter& Member(std::string_view name, std::string_view text) { return Name(name).String(text); }
  /// Ends the last line.
  void EndText() { streams_.Put("\n"); }

 private:
  struct Level {
    Layout layout;
    bool is_empty = true;
  };

  JsonWriter& Begin(char bracket, Layout layout);
  JsonWriter& End(char bracket);
  JsonWriter& Bare(std::string_view text);
  void StartItem();
  void BreakLine();

  Streams& streams_;
  std::vector<Level> levels_;
  bool is_named_ = false;
};

/// The text as a JSON string, with its quotes.
std::string JsonString(std::string_view text);

}  // namespace tme::console
