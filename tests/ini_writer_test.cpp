#include <gtest/gtest.h>

#include "IniTreeProbe.h"
#include "ini/IniWriter.h"

using namespace std::string_literals;

namespace tme {
namespace {

struct WriteCase {
  const char* name;
  std::string file;
  std::string written;
};

const std::vector<WriteCase> kWrites = {
    {"nothing", "", ""},
    {"a section without entries", "[a]", "[a]\r\n\r\n"},
    {"sections and entries in order, blank lines gone", "[b]\n\ny\n\nx=\n;c\n[A]\n",
     "[A]\r\n\r\n[b]\r\n;c\r\nx=\r\ny\r\n\r\n"},
    {"comments of the root come first, as they are", ";c\n[!]\n", ";c\r\n[!]\r\n\r\n"},
    {"brackets, NUL and invalid bytes", "[x]]\n\0=\xFF\n"s, "[x]]\r\n\0=\xFF\r\n\r\n"s},
};

TEST(IniWriter, WritesWhatTheTreeShows) {
  for (const WriteCase& test : kWrites) {
    SCOPED_TRACE(test.name);
    IniTree tree;
    ReadFile(tree, test.file);
    const std::string written = WriteIni(tree);
    EXPECT_EQ(written, test.written);

    IniTree again;
    const IniReadResult result = ReadFile(again, written);
    EXPECT_EQ(WriteIni(again), written);
    EXPECT_EQ(result.lines_not_read + result.blank_lines_dropped, 0U);
    EXPECT_FALSE(result.sections_reordered || result.entries_reordered);
  }
}

TEST(IniWriter, ClipboardTexts) {
  IniTree tree;
  ReadFile(tree, ";r\n[b]\nk=1\n;c\n[a]\n");
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"", "[a]\r\n\r\n[b]\r\n;c\r\nk=1\r\n\r\n"},
      {"b", "[b]\r\n;c\r\nk=1\r\n"},
      {"k=1", "k=1"},
      {";c", ""},
      {";r", ""},
  };
  for (const auto& [node, expected] : cases) EXPECT_EQ(ClipboardText(*FindNode(tree, node)), expected) << node;
}

}  // namespace
}  // namespace tme
