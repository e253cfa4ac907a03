#pragma once

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/CaseFold.h"
#include "base/Utf8.h"
#include "documents/reg/RegData.h"

namespace tme::fuzz {

inline std::string Folded(std::string_view text) {
  std::string folded;
  std::array<char, utf8::kMaxCharacterBytes> bytes;
  while (!text.empty()) {
    if (const auto character = utf8::TakeCharacter(text, utf8::Surrogates::Accept)) {
      folded.append(bytes.data(), utf8::PutCharacter(FoldCase(*character), bytes.data()));
    } else {
      folded.push_back(text.front());
      text.remove_prefix(1);
    }
  }
  return folded;
}

/// The first line of an assignment, and how many follow.
inline std::string Shape(std::string_view line, std::size_t more) {
  return std::string(line) + '\n' + std::to_string(more);
}
inline std::string ShapeOf(std::string_view data) {
  std::size_t more = 0;
  for (std::size_t at = 0; at < data.size(); ++at)
    more += data[at] == '\n' || (data[at] == '\r' && !data.substr(at + 1).starts_with('\n'));
  return Shape(more == 0 ? data : data.substr(0, data.find('\\') + 1), more);
}

/// A line of what a file holds: "K path", "D path", "V path" with name and assignment, "C path" with a comment in
/// sight.
using Content = std::vector<std::string>;

/// The second parser: line by line and character by character, for files that begin with a known first line.
class SimpleParser {
 public:
  explicit SimpleParser(std::string_view text) {
    while (!text.empty()) {
      const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
      lines_.emplace_back(text.substr(0, end));
      const std::size_t behind = end + (text.substr(end).starts_with("\r\n") ? 2 : end < text.size() ? 1 : 0);
      text.remove_prefix(behind);
    }
  }

  Content Run() {
    for (at_ = 1; at_ < lines_.size(); ++at_) {
      const std::string line = Cut(lines_[at_]);
      if (line.starts_with('[')) TakeKey(line);
      if (line.starts_with('"') || line.starts_with('@')) TakeValue(line);
    }
    std::ranges::sort(content_);
    content_.erase(std::unique(content_.begin(), content_.end(),
                               [](const std::string& a, const std::string& b) { return a == b && a[0] == 'K'; }),
                   content_.end());
    return content_;
  }

 private:
  static std::string Cut(std::string line) {
    return line.erase(0, std::min(line.find_first_not_of(" \t"), line.size()));
  }
  static bool IsRest(std::string_view rest) {
    const std::string cut = Cut(std::string(rest));
    return cut.empty() || cut[0] == ';';
  }

  void TakeKey(const std::string& line) {
    const std::size_t end = line.rfind(']');
    if (end == std::string::npos) return;
    const bool deletes = line[1] == '-';
    std::string path;
    for (const char c : line.substr(1 + deletes, end - 1 - deletes))
      if (c != '\\' || (!path.empty() && path.back() != '\\')) path.push_back(c);
    if (path.ends_with('\\')) path.pop_back();
    if (path.empty()) return;
    path_ = Folded(path);
    has_path_ = true;
    content_.push_back((deletes ? "D " : "K ") + path_);
  }

  /// Takes a quoted text off the line. Null without a closing quote.
  static std::optional<std::string> TakeQuoted(std::string& line) {
    for (std::size_t at = 1; at < line.size(); ++at) {
      if (line[at] == '\\') {
        ++at;
      } else if (line[at] == '"') {
        const std::string text = line.substr(0, at + 1);
        line.erase(0, at + 1);
        return text;
      }
    }
    return std::nullopt;
  }

  void TakeValue(std::string line) {
    std::string name;
    if (line[0] == '"') {
      const std::optional<std::string> quoted = TakeQuoted(line);
      if (!quoted) return;
      name = UnescapedRegText(quoted->substr(1, quoted->size() - 2));
    } else {
      line.erase(0, 1);
    }
    line = Cut(line);
    if (!line.starts_with('=') || !has_path_) return;
    line = Cut(line.substr(1));
    const std::optional<std::string> data = DataOf(line);
    if (data) content_.push_back("V " + path_ + '\n' + name + '\n' + *data);
  }

  std::optional<std::string> DataOf(std::string line) {
    if (line.starts_with('"')) {
      const std::optional<std::string> quoted = TakeQuoted(line);
      return quoted && IsRest(line) ? std::optional(Shape(*quoted, 0)) : std::nullopt;
    }
    if (line.starts_with('-')) return IsRest(line.substr(1)) ? std::optional(Shape("-", 0)) : std::nullopt;
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) return std::nullopt;
    const std::string mark = Folded(line.substr(0, colon));
    if (mark == "dword") {
      std::size_t end = colon + 1;
      while (end < line.size() && std::isxdigit(static_cast<unsigned char>(line[end])) != 0) ++end;
      const bool fits = end > colon + 1 && end <= colon + 9 && IsRest(line.substr(end));
      return fits ? std::optional(Shape(line.substr(0, end), 0)) : std::nullopt;
    }
    const bool is_typed = mark.size() > 5 && mark.size() <= 13 && mark.starts_with("hex(") && mark.ends_with(')') &&
                          mark.find_first_not_of("0123456789abcdef", 4) == mark.size() - 1;
    if (mark != "hex" && !is_typed) return std::nullopt;
    return HexOf(line, colon + 1);
  }

  /// Where a line's hex ends, "\\" included. Null when something stands behind it.
  static std::optional<std::size_t> EndOfDigits(const std::string& line, std::size_t digits) {
    std::size_t end = std::min(line.find_first_not_of("0123456789abcdefABCDEF, \t", digits), line.size());
    if (!AreBytes(line.substr(digits, end - digits))) return std::nullopt;
    if (line.substr(end).starts_with('\\'))
      ++end;
    else
      end = std::max(digits, line.substr(0, end).find_last_not_of(" \t") + 1);
    return IsRest(line.substr(end)) ? std::optional(end) : std::nullopt;
  }

  /// Whether digits come in ones and twos, with a comma behind each but the last.
  static bool AreBytes(std::string text) {
    for (text = Cut(text); !text.empty(); text = Cut(text)) {
      const std::size_t digits = std::min(text.find_first_of(", \t"), text.size());
      text = Cut(text.erase(0, digits));
      if (digits < 1 || digits > 2 || (!text.empty() && text[0] != ',')) return false;
      text.erase(0, 1);
    }
    return true;
  }

  /// Goes to the last line of the value.
  std::optional<std::string> HexOf(const std::string& line, std::size_t digits) {
    std::optional<std::size_t> end = EndOfDigits(line, digits);
    if (!end) return std::nullopt;
    const std::size_t first = at_;
    for (std::string part = line; part[*end - 1] == '\\';) {
      std::size_t next = at_ + 1;
      while (next < lines_.size() && IsRest(lines_[next])) ++next;
      if (next == lines_.size()) break;
      part = Cut(lines_[next]);
      end = EndOfDigits(part, 0);
      if (!end || std::isxdigit(static_cast<unsigned char>(part[0])) == 0) break;
      at_ = next;
    }
    return Shape(line.substr(0, *EndOfDigits(line, digits)), at_ - first);
  }

  std::vector<std::string> lines_;
  std::size_t at_ = 0;
  std::string path_;
  bool has_path_ = false;
  Content content_;
};

}  // namespace tme::fuzz
