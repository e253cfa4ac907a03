#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfDocument.h"
#include "documents/rtf/RtfReader.h"

namespace tme::rtf {

/// One of a document's style sheet, list tables and table of authors.
struct HeaderEntry {
  HeaderTable table = HeaderTable::Styles;
  std::int32_t number = 0;   ///< as JoinedEntry::number
  std::int32_t list_id = 0;  ///< of Overrides
  char kind = 0;             ///< of Styles: 's' of paragraphs, 'c' of characters, 'd' of sections, 't' of tables
  int unicode_skip = 1;      ///< how many bytes stand behind its \u
  std::string name{};        ///< of Styles and Authors, in UTF-8
  std::string rtf{};
  bool has_joined = false;
  std::string origin{};  ///< of one that joined
};

/// Those of a document, the joined ones behind its own.
std::vector<HeaderEntry> HeaderEntriesOf(const RtfDocument& document, const DecodeCodePage& decode);

/// A kept header with entries added to its tables. at: where in it a table is made that it has not.
std::string HeaderWith(const std::string& kept_header, std::size_t at, std::span<const JoinedEntry* const> entries);

/// A header without what its tables say of the bytes behind \u where they begin: the reader adds that where an entry
/// has such characters, and joined entries say it themselves.
std::string WithoutTableSkips(std::string header);

/// The entries of one table, as they are added: to the table, or (whole) as a table of their own.
enum class TableText : std::uint8_t { Entries, Whole };
std::string TextOfTable(HeaderTable table, std::span<const JoinedEntry* const> entries, TableText which);

}  // namespace tme::rtf
