#include <gtest/gtest.h>

#include "documents/reg/RegData.h"
#include "files/CodePage.h"

namespace tme {
namespace {

using namespace std::string_view_literals;

constexpr RegCoding kPage{RegVersion::Regedit4, CodePageToUtf8, Utf8ToCodePage};
constexpr RegCoding kWide{RegVersion::Version5, CodePageToUtf8, Utf8ToCodePage};

struct DataCase {
  std::string_view assignment;
  /// The type's number and what a list shows; "-" for no value.
  const char* shown;
  /// Encoded again; empty for the same.
  const char* encoded = "";
  const RegCoding& coding = kWide;
};

// clang-format off
const DataCase kData[] = {
    {R"("C:\\a \"b\"")", R"(REG_SZ Text C:\a "b")"},
    {R"("C:\a")", R"(REG_SZ Text C:\a)", R"("C:\\a")"},
    {R"("é")", "REG_SZ Text é", "", kPage},
    {"dword:1F", "REG_DWORD Number 0x0000001f (31)", "dword:0000001f"},
    {"hex(4):01,00,00,80", "REG_DWORD Number 0x80000001 (2147483649)", "dword:80000001"},
    {"hex(4):01,00,00", "REG_DWORD Bytes 01 00 00"},
    {"hex(5):00,00,00,1a", "REG_DWORD_BIG_ENDIAN Number 0x0000001a (26)"},
    {"hex(b):ff,00,00,00,00,00,00,80", "REG_QWORD Number 0x80000000000000ff (9223372036854776063)"},
    {"hex(B):1", "REG_QWORD Bytes 01", "hex(b):01"},
    {"HEX:0,Ff,\\\n ; c\r\n\t 7,", "REG_BINARY Bytes 00 ff 07", "hex:00,ff,07"},
    {"hex:", "REG_BINARY Bytes "},
    {"hex(0):01", "REG_NONE Bytes 01"},
    {"hex(1):0d,00,0a,00,00,00", "REG_SZ Text \r\n"},
    {"hex(1):41,00,00,00", "REG_SZ Text A", R"("A")"},
    {"hex(2):41,00,3d,d8,00,de,00,00", "REG_EXPAND_SZ Text A😀"},
    {"hex(2):e9,00", "REG_EXPAND_SZ Text é", "", kPage},
    // No NUL at the end, one within, half a unit, half a pair, nothing at all.
    {"hex(2):41,00", "REG_EXPAND_SZ Bytes 41 00"},
    {"hex(2):41,00,00,00,42,00,00,00", "REG_EXPAND_SZ Bytes 41 00 00 00 42 00 00 00"},
    {"hex(6):41,00,00", "REG_LINK Bytes 41 00 00"},
    {"hex(6):41,00,00,00", "REG_LINK Text A", "", kPage},
    {"hex(2):3d,d8,00,00", "REG_EXPAND_SZ Bytes 3d d8 00 00"},
    {"hex(2):00,de,3d,d8,00,00", "REG_EXPAND_SZ Bytes 00 de 3d d8 00 00"},
    {"hex(2):", "REG_EXPAND_SZ Bytes "},
    {"hex(7):41,00,00,00,42,00,43,00,00,00,00,00", "REG_MULTI_SZ Strings A BC"},
    {"hex(7):41,00,42,00,00", "REG_MULTI_SZ Strings A B", "", kPage},
    {"hex(7):00,00", "REG_MULTI_SZ Strings "},
    {"hex(7):00,00,00,00", "REG_MULTI_SZ Bytes 00 00 00 00"},
    {"hex(7):41,00,00,00", "REG_MULTI_SZ Bytes 41 00 00 00"},
    {"hex(ffff0012):01", "REG_0xffff0012 Bytes 01"},
    {"hex(12):", "REG_0x12 Bytes "},
    {"-", "-"}, {"dword:", "-"}, {"dword:123456789", "-"}, {"hex:1 2", "-"}, {"hex:,1", "-"}, {"hex:123", "-"},
    {"hex(123456789):", "-"}, {"hex()", "-"}, {"\"", "-"}, {"", "-"},
};
// clang-format on

TEST(RegData, DecodesAndEncodes) {
  constexpr const char* kContents[] = {" Text ", " Strings ", " Number ", " Bytes "};
  for (const DataCase& test : kData) {
    SCOPED_TRACE(test.assignment);
    const std::optional<RegData> data = DecodeAssignment(test.assignment, test.coding);
    if (test.shown == "-"sv) {
      EXPECT_FALSE(data.has_value());
      continue;
    }
    ASSERT_TRUE(data.has_value());
    EXPECT_EQ(RegTypeName(data->type) + kContents[static_cast<int>(data->content)] + DisplayOf(*data), test.shown);
    const std::string_view encoded = test.encoded == ""sv ? test.assignment : test.encoded;
    EXPECT_EQ(EncodeAssignment(*data, test.coding), encoded);
    EXPECT_EQ(DataOfBytes(data->type, *RegBytes(*data, test.coding), test.coding), *data);
  }
}

TEST(RegData, RefusesWhatCannotBeWritten) {
  const auto fault_of = [](std::uint32_t type, std::string_view text, const RegCoding& coding) {
    RegData data;
    data.type = type;
    data.content = ContentOf(type);
    data.text = text;
    data.strings = {"a", std::string(text)};
    data.number = std::uint64_t{1} << 32;
    const RegFault fault = FaultOf(data, coding);
    EXPECT_EQ(EncodeAssignment(data, coding).has_value(), fault == RegFault::None);
    return fault;
  };
  RegCoding pairs = kPage;
  pairs.version = RegVersion::Regedit;
  EXPECT_EQ(fault_of(reg_type::kExpandString, "Я", kPage), RegFault::NotInCodePage);
  EXPECT_EQ(fault_of(reg_type::kExpandString, "Я", kWide), RegFault::None);
  EXPECT_EQ(fault_of(reg_type::kString, "Я", kPage), RegFault::None);
  EXPECT_EQ(fault_of(reg_type::kString, "Я\n", kPage), RegFault::NotInCodePage);
  EXPECT_EQ(fault_of(reg_type::kString, "\0"sv, kWide), RegFault::HoldsNul);
  EXPECT_EQ(fault_of(reg_type::kMultiString, "", kWide), RegFault::EmptyString);
  EXPECT_EQ(fault_of(reg_type::kMultiString, "\xFF", kWide), RegFault::NotUnicode);
  EXPECT_EQ(fault_of(reg_type::kDword, "", kWide), RegFault::OutOfRange);
  EXPECT_EQ(fault_of(reg_type::kQword, "", kWide), RegFault::None);
  EXPECT_EQ(fault_of(reg_type::kString, "a", pairs), RegFault::None);
  EXPECT_EQ(fault_of(reg_type::kQword, "", pairs), RegFault::OnlyText);
}

TEST(RegData, WrapsAsTheSystemDoes) {
  const auto hex = [](std::size_t bytes) {
    RegData data;
    data.type = reg_type::kBinary;
    data.content = RegContent::Bytes;
    data.bytes.assign(bytes, '\x01');
    return *EncodeAssignment(data, kWide);
  };
  const std::string before = "\"é\"=";
  EXPECT_EQ(WrapAssignment(before, hex(23), "\n"), hex(23)) << "nothing goes on behind the last byte";
  const std::string wrapped = before + WrapAssignment(before, hex(60), "\n");
  EXPECT_EQ(wrapped.find('\n'), 79U) << "78 columns, one letter of two bytes";
  EXPECT_EQ(wrapped.find("\\\n  01,", 80), 157U);
  EXPECT_EQ(DecodeAssignment(wrapped.substr(before.size()), kWide)->bytes.size(), 60U);
}

}  // namespace
}  // namespace tme
