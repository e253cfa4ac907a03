#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace tme {

class RegDocument;

/// Regular writes the keys with values, expanded every branch.
enum class RegLayout : std::uint8_t { Regular, Expanded };

/// What the text of a registry document begins with, and how its lines end.
inline constexpr std::string_view kRegHeader = "REGEDIT4\r\n\r\n";
inline constexpr std::string_view kRegLineEnd = "\r\n";
/// Bytes that a part of the output has, or a little more.
inline constexpr std::size_t kRegPartBytes = std::size_t{1} << 16;

/// Takes a part of the output (whole lines); false stops the writer.
using RegSink = std::function<bool(std::string_view)>;

/// The document as REGEDIT4 text in UTF-8, CR LF, in parts of about 64 KB. Values go under every key of their owner's
/// last component; intended. False when the sink stopped it. No recursion; memory for an index of the values only.
bool WriteReg(const RegDocument& document, RegLayout layout, const RegSink& sink);

/// Bytes that WriteReg would give, without writing them.
std::uint64_t RegOutputBytes(const RegDocument& document, RegLayout layout);

}  // namespace tme
