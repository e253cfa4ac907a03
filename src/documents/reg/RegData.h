#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tme {

/// What the first line of a registry file says of its lines.
enum class RegVersion : std::uint8_t {
  Regedit,   ///< "REGEDIT": lines like "HKEY_CLASSES_ROOT\.abc = text", default values alone
  Regedit4,  ///< "REGEDIT4": text in hex values is in the 8-bit code page
  Version5,  ///< "Windows Registry Editor Version 5.00": text in hex values is UTF-16 LE
};

/// The numbers of value types, as winnt.h has them. Any other number of 32 bits may stand in a file, too.
namespace reg_type {
inline constexpr std::uint32_t kNone = 0;
inline constexpr std::uint32_t kString = 1;
inline constexpr std::uint32_t kExpandString = 2;
inline constexpr std::uint32_t kBinary = 3;
inline constexpr std::uint32_t kDword = 4;
inline constexpr std::uint32_t kDwordBigEndian = 5;
inline constexpr std::uint32_t kLink = 6;
inline constexpr std::uint32_t kMultiString = 7;
inline constexpr std::uint32_t kResourceList = 8;
inline constexpr std::uint32_t kFullResourceDescriptor = 9;
inline constexpr std::uint32_t kResourceRequirementsList = 10;
inline constexpr std::uint32_t kQword = 11;
}  // namespace reg_type

/// "REG_SZ"; "REG_0xffff0012" for a number without a usual name.
std::string RegTypeName(std::uint32_t type);

/// What the data of a value is, decoded.
enum class RegContent : std::uint8_t { Text, Strings, Number, Bytes };
/// What proper data of a type are.
RegContent ContentOf(std::uint32_t type);

/// A value's type and decoded data.
struct RegData {
  std::uint32_t type = reg_type::kString;
  /// Which of the fields below holds. Bytes where ContentOf(type) says otherwise: they are no proper form of the type,
  /// and are never repaired.
  RegContent content = RegContent::Text;
  /// UTF-8, but for what a quoted string of the file holds otherwise.
  std::string text;
  std::vector<std::string> strings;
  std::uint64_t number = 0;
  std::string bytes;

  bool operator==(const RegData&) const = default;
};

/// What the bytes of a file's text values mean. The functions are those of files/CodePage.h.
struct RegCoding {
  RegVersion version = RegVersion::Version5;
  std::string (*from_code_page)(std::string_view bytes) = nullptr;
  /// Null for a text that has no bytes there.
  std::optional<std::string> (*to_code_page)(std::string_view text) = nullptr;
};

/// Why data cannot be written.
enum class RegFault : std::uint8_t {
  None,
  NotInCodePage,  ///< REGEDIT4 has no bytes for a character
  NotUnicode,     ///< the text is not valid UTF-8
  HoldsNul,       ///< a NUL character within a text
  EmptyString,    ///< an empty one in a list of strings would end it
  OutOfRange,     ///< the number needs more bits than the type has
  OnlyText,       ///< REGEDIT has strings of one line alone
};

/// Checks whether the data can be written in this version.
RegFault FaultOf(const RegData& data, const RegCoding& coding);

/// The data as the registry holds them, a text with its NUL. Null where FaultOf says why.
std::optional<std::string> RegBytes(const RegData& data, const RegCoding& coding);
/// The bytes of a text, proper or not, for the other version: each character in its encoding. Null where it has none,
/// and for bytes that are no characters. type: of text or strings.
std::optional<std::string> RecodedRegText(const std::string& bytes, std::uint32_t type, const RegCoding& from,
                                          const RegCoding& to);
/// Decodes what the registry holds. Bytes that are not exactly what RegBytes gives for a text, a list or a number of
/// this type stay Bytes.
RegData DataOfBytes(std::uint32_t type, std::string bytes, const RegCoding& coding);

/// Decodes what stands behind "=" in a file: "text" in quotes, dword:, hex:, hex(2): and so on, over several lines
/// where it is wrapped; for REGEDIT the text itself. Null for a deletion ("-") and anything that is no value.
std::optional<RegData> DecodeAssignment(std::string_view assignment, const RegCoding& coding);
/// What stands behind "=" for these data, unwrapped. A REG_SZ is a text in quotes where it can be, a proper REG_DWORD
/// is dword:. Null where FaultOf says why.
std::optional<std::string> EncodeAssignment(const RegData& data, const RegCoding& coding);

/// Wraps an unwrapped hex assignment as the system's export does: lines end in "\" at 77 columns, and go on behind two
/// blanks. Others come back as they are. before: of the same line.
std::string WrapAssignment(std::string_view before, std::string_view assignment, std::string_view line_end);

/// One line for people: the text; "0x0000001a (26)"; strings with a blank between them; "01 02 03". At most about so
/// many bytes, "..." at the end when there is more. Line ends and other controls are left as they are.
std::string DisplayOf(const RegData& data, std::size_t max_bytes = 256);

/// A name between quotes, or "@" for the empty name, which is the default value's.
std::string QuotedRegName(std::string_view name);
/// Puts "\" before quotes and backslashes.
std::string EscapedRegText(std::string_view text);
/// Takes it off again. A backslash before anything else stays.
std::string UnescapedRegText(std::string_view text);

}  // namespace tme
