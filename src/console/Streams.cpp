#include "console/Streams.h"

#include <cstdio>
#include <utility>

#include "base/Parts.h"
#include "base/Utf8.h"

namespace tme::console {
namespace {

bool IsControl(char32_t character) {
  constexpr char32_t kRanges[][2] = {{0x00, 0x1F}, {0x7F, 0x9F}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
  for (const auto& [first, last] : kRanges)
    if (character >= first && character <= last) return true;
  return false;
}

std::string Escaped(char32_t character) {
  constexpr char32_t kMaxByte = 0xFF;
  char text[16];
  std::snprintf(text, sizeof text, character <= kMaxByte ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(character));
  return text;
}

}  // namespace

std::string AsUtf8(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    std::string_view rest = text;
    const auto character = utf8::TakeCharacter(rest);
    std::string_view half = text;
    const auto surrogate = character ? std::nullopt : utf8::TakeCharacter(half, utf8::Surrogates::Accept);
    if (character) {
      shown.append(text.substr(0, text.size() - rest.size()));
    } else if (surrogate) {
      shown += Escaped(*surrogate);
      rest = half;
    } else {
      shown += Escaped(static_cast<unsigned char>(text.front()));
      rest = text.substr(1);
    }
    text = rest;
  }
  return shown;
}

std::string WithVisibleControls(std::string_view text) {
  std::string visible;
  while (!text.empty()) {
    std::string_view rest = text;
    if (const auto character = utf8::TakeCharacter(rest)) {
      if (IsControl(*character))
        visible += Escaped(*character);
      else
        visible.append(text.substr(0, text.size() - rest.size()));
    } else {
      visible += Escaped(static_cast<unsigned char>(rest.front()));
      rest.remove_prefix(1);
    }
    text = rest;
  }
  return visible;
}

std::string Streams::Input() {
  std::string bytes;
  if (std::exchange(has_read_, true)) throw Trouble("standard input can be read once, and not for two files");
  if (const auto failure = ReadInput(bytes)) throw Trouble("standard input: " + failure->reason);
  return bytes;
}

void Streams::Put(std::string_view text) {
  output_.append(text);
  if (output_.size() >= PartBuffer::kPartBytes) Flush();
}

void Streams::PutLine(std::string_view line) {
  output_.append(line);
  Put("\n");
}

void Streams::Flush() {
  if (output_.empty()) return;
  const auto failure = WriteOutput(output_);
  output_.clear();
  if (failure) throw Trouble("standard output: " + failure->reason);
}

void Streams::Complain(std::string_view text) {
  WriteError("tmec: " + (ErrorIsTerminal() ? WithVisibleControls(text) : std::string(text)) + "\n");
}

}  // namespace tme::console
