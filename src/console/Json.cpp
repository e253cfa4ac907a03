#include "console/Json.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "base/Utf8.h"

namespace tme::console {
namespace {

constexpr unsigned kFirstPrintable = 0x20;
constexpr unsigned kByteEscape = 0xDC00;  ///< of byte 0

std::string EscapeOf(unsigned unit) {
  char text[8];
  std::snprintf(text, sizeof text, "\\u%04x", unit);
  return text;
}

std::string EscapedAscii(char c) {
  constexpr std::string_view kControls = "\b\f\n\r\t", kLetters = "bfnrt";
  if (c == '"' || c == '\\') return std::string("\\") + c;
  const std::size_t control = kControls.find(c);
  if (control != std::string_view::npos) return std::string("\\") + kLetters[control];
  const auto unit = static_cast<unsigned char>(c);
  return unit < kFirstPrintable || c == '\x7F' ? EscapeOf(unit) : std::string(1, c);
}

}  // namespace

std::string JsonString(std::string_view text) {
  std::string json = "\"";
  json.reserve(text.size() + 2);
  while (!text.empty()) {
    const auto plain = [](char c) { return c >= ' ' && c < '\x7F' && c != '"' && c != '\\'; };
    const auto end = std::find_if_not(text.begin(), text.end(), plain);
    json.append(text.begin(), end);
    text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    if (text.empty()) break;
    std::string_view rest = text;
    if (!utf8::TakeCharacter(rest)) {
      json += EscapeOf(kByteEscape + static_cast<unsigned char>(text.front()));
      rest.remove_prefix(1);
    } else if (text.size() - rest.size() == 1) {
      json += EscapedAscii(text.front());
    } else {
      json.append(text.substr(0, text.size() - rest.size()));
    }
    text = rest;
  }
  return json += '"';
}

JsonWriter& JsonWriter::Name(std::string_view name) {
  StartItem();
  streams_.Put(JsonString(name));
  streams_.Put(": ");
  is_named_ = true;
  return *this;
}

JsonWriter& JsonWriter::String(std::string_view text) { return Bare(JsonString(text)); }

JsonWriter& JsonWriter::Begin(char bracket, Layout layout) {
  StartItem();
  streams_.Put({&bracket, 1});
  levels_.push_back({layout});
  return *this;
}

JsonWriter& JsonWriter::End(char bracket) {
  const Level level = levels_.back();
  levels_.pop_back();
  if (level.layout == Layout::Lines && !level.is_empty) BreakLine();
  streams_.Put({&bracket, 1});
  return *this;
}

JsonWriter& JsonWriter::Bare(std::string_view text) {
  StartItem();
  streams_.Put(text);
  return *this;
}

void JsonWriter::StartItem() {
  if (std::exchange(is_named_, false) || levels_.empty()) return;
  Level& level = levels_.back();
  const bool is_first = std::exchange(level.is_empty, false);
  const bool in_line = level.layout == Layout::Inline;
  if (!is_first) streams_.Put(in_line ? ", " : ",");
  if (!in_line) BreakLine();
}

void JsonWriter::BreakLine() {
  const auto lines = std::count_if(levels_.begin(), levels_.end(), [](Level l) { return l.layout == Layout::Lines; });
  streams_.Put("\n" + std::string(2 * static_cast<std::size_t>(lines), ' '));
}

}  // namespace tme::console
