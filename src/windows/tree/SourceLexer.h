#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tme {

/// What a byte of source is; the numbers are those of the view's styles.
enum class SourceStyle : std::uint8_t { Plain, Comment, Section, Deletion, Name, Mark };
inline constexpr std::size_t kSourceStyles = 6;

/// Whole lines that follow one another.
struct SourcePart {
  std::string_view text;
  /// The document's first line is among them.
  bool is_first = false;
  /// What the first line belongs to began too far above to be among them; the last one goes on too far below.
  bool starts_within = false;
  bool ends_within = false;
};

/// A part of a text that the document's reader does not understand, and why, for people.
struct SourceFault {
  std::size_t at = 0;
  std::size_t size = 0;
  QString reason;
};

/// How the source of a kind of document is read for display, a few lines at a time.
class SourceLexer {
 public:
  virtual ~SourceLexer() = default;
  /// Whether the line behind this one may be a part of the same thing.
  virtual bool GoesOn(std::string_view /*line*/) const { return false; }
  /// styles: a SourceStyle for each byte, Plain before. Returns the faults in their order.
  virtual std::vector<SourceFault> Read(const SourcePart& part, std::span<char> styles) const = 0;

 protected:
  static void SetStyle(std::span<char> styles, std::size_t at, std::size_t size, SourceStyle style) {
    for (char& byte : styles.subspan(at, size)) byte = static_cast<char>(style);
  }
};

}  // namespace tme
