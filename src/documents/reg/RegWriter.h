#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "base/Parts.h"

namespace tme {

class RegDocument;
struct RegValueRecord;

/// Regular writes the keys with values, expanded every branch.
enum class RegLayout : std::uint8_t { Regular, Expanded };

/// What the text of a registry document begins with, and how its lines end.
inline constexpr std::string_view kRegHeader = "REGEDIT4\r\n\r\n";
inline constexpr std::string_view kRegLineEnd = "\r\n";

/// The pieces of one line.
using RegLine = std::array<std::string_view, 6>;
/// Returns name and data as they are held, nothing escaped. A deleted record is still a line, of an empty name;
/// intended.
RegLine LineOf(const RegValueRecord& record);
/// Returns false when the sink stopped.
inline bool PutLine(PartBuffer& out, const RegLine& line) {
  for (const std::string_view piece : line) out.Append(piece);
  return out.EndPiece();
}

/// Writes the document as REGEDIT4 text in UTF-8, CR LF, in parts of whole lines (PartBuffer). Values go under every
/// key of their owner's last component; intended. Returns false when the sink stopped it.
bool WriteReg(const RegDocument& document, RegLayout layout, const PartSink& sink);

/// Counts the bytes that WriteReg would give, without writing them.
std::uint64_t RegOutputBytes(const RegDocument& document, RegLayout layout);

}  // namespace tme
