#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "console/Json.h"
#include "documents/reg/RegData.h"
#include "documents/reg/RegDocument.h"

namespace tme::console {

/// Decodes a record's data. Bytes of REG_NONE for what is no value.
RegData DataOf(const RegValueRecord& record, const RegCoding& coding);
/// What get writes and set takes: a text as it is, strings with a line end between them, a number in decimal, bytes as
/// "01 02 0a".
std::string TextOf(const RegData& data);
/// One line of it, for columns: controls are visible, strings have "\0" between them.
std::string ColumnOf(const RegData& data);
std::string ColumnOf(std::string_view text);
/// "01 02 0a".
std::string HexText(std::string_view bytes);
/// The name of a value as a line has it: in quotes, or "@".
std::string NameOfQuoted(std::string_view quoted);
/// The number of "26" or "0x1a", and the bytes of "01 02 0a" or "01020a". Throw Trouble for any other text.
std::uint64_t NumberOf(std::string_view text);
std::string BytesOfPairs(std::string_view text);
/// For people.
std::string_view WhyNot(RegFault fault);
/// The members "type", and "value" (a string, an array of strings, a number) or "bytes" (as HexText). A number over
/// 2^53, which readers round, is a string "0x…".
void PutData(JsonWriter& json, const RegData& data);

}  // namespace tme::console
