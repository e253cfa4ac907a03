#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "documents/reg/RegDocument.h"
#include "documents/reg/RegWholeReader.h"
#include "files/CodePage.h"
#include "files/TextEncoding.h"

namespace tme {
namespace {

namespace fs = std::filesystem;

constexpr RegCoding kInRegistry{RegVersion::Version5, CodePageToUtf8, Utf8ToCodePage};
constexpr std::string_view kHive = "HKEY_CURRENT_USER";

struct Value {
  std::string name;
  RegData data;
};

Value Make(std::string name, std::uint32_t type, RegContent content) {
  Value value{.name = std::move(name), .data = {}};
  value.data.type = type;
  value.data.content = content;
  return value;
}

/// All types, decoded. accented: what a code page has of it.
std::vector<Value> AllValues(const std::string& accented) {
  std::vector<Value> values;
  const std::string names[] = {"", "quote \" and \\", "=[" + accented + "];"};
  for (const std::string& name : names) {
    values.push_back(Make(name, reg_type::kString, RegContent::Text));
    values.back().data.text = "C:\\a \"" + accented + "\" ; %x%";
  }
  values.push_back(Make("two lines", reg_type::kString, RegContent::Text));
  values.back().data.text = "one\r\ntwo " + accented;
  values.push_back(Make("expand", reg_type::kExpandString, RegContent::Text));
  values.back().data.text = "%windir%\\" + std::string(100, 'x') + accented;
  values.push_back(Make("multi", reg_type::kMultiString, RegContent::Strings));
  values.back().data.strings = {"one", accented, " "};
  values.push_back(Make("no strings", reg_type::kMultiString, RegContent::Strings));
  for (const std::uint32_t type : {reg_type::kDword, reg_type::kDwordBigEndian, reg_type::kQword}) {
    values.push_back(Make("number " + std::to_string(type), type, RegContent::Number));
    values.back().data.number = type == reg_type::kQword ? 0x8000000000000001U : 0x80000001U;
  }
  for (const std::uint32_t type : {0U, 3U, 8U, 9U, 10U, 0x12U, 0xFFFF0012U}) {
    values.push_back(Make("bytes " + std::to_string(type), type, RegContent::Bytes));
    values.back().data.bytes = std::string(40, '\xFF') + std::string("\0\1", 2);
  }
  values.push_back(Make("no dword", reg_type::kDword, RegContent::Bytes));
  values.back().data.bytes = "\1\2";
  return values;
}

std::wstring Wide(std::string_view text) {
  std::wstring wide(text.size() + 1, L'\0');
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                         static_cast<int>(wide.size()));
  wide.resize(static_cast<std::size_t>(size));
  return wide;
}

void RunRegedit(const std::wstring& arguments) {
  std::wstring line = L"regedit.exe " + arguments;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  ASSERT_TRUE(::CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
  EXPECT_EQ(::WaitForSingleObject(process.hProcess, 60'000), WAIT_OBJECT_0);
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
}

/// What the registry holds; null for no such value.
std::optional<RegData> InRegistry(std::string_view key, std::string_view name) {
  HKEY handle = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, Wide(key).c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return std::nullopt;
  DWORD type = 0;
  std::string bytes(4096, '\0');
  auto size = static_cast<DWORD>(bytes.size());
  const LSTATUS status =
      ::RegQueryValueExW(handle, Wide(name).c_str(), nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()), &size);
  ::RegCloseKey(handle);
  if (status != ERROR_SUCCESS) return std::nullopt;
  bytes.resize(size);
  return DataOfBytes(type, std::move(bytes), kInRegistry);
}

class RegImport : public testing::TestWithParam<RegVersion> {
 protected:
  ~RegImport() override {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, Wide(top_).c_str());
    std::error_code ignored;
    fs::remove(file_, ignored);
  }

  /// Writes the document as a file and has the system import it.
  void Import(const RegDocument& document) {
    std::string text;
    document.Lines().Write([&text](std::string_view part) {
      text += part;
      return true;
    });
    TextFormat format;
    format.encoding = GetParam() == RegVersion::Version5 ? TextEncoding::Utf16Le : TextEncoding::CodePage;
    std::ofstream(file_, std::ios::binary) << EncodeText(text, format);
    RunRegedit(L"/S \"" + file_.wstring() + L"\"");
  }

  void ReadExport(RegDocument& document) {
    fs::remove(file_);
    std::string path;
    for (const std::string& name : path_) path += (path.empty() ? "" : "\\") + name;
    RunRegedit(L"/E \"" + file_.wstring() + L"\" \"" + Wide(path) + L"\"");
    std::ifstream in(file_, std::ios::binary);
    const RegWholeResult result =
        ReadWholeReg(document, DecodeText(std::string(std::istreambuf_iterator<char>(in), {})).text);
    EXPECT_TRUE(result.has_header);
    EXPECT_EQ(result.not_understood, 0U);
    EXPECT_EQ(document.Version(), RegVersion::Version5);
  }

  RegCoding Coding() const { return {GetParam(), CodePageToUtf8, Utf8ToCodePage}; }

  // Two of these run at once, and HKEY_CURRENT_USER is another key for this process than for regedit.
  const std::string version_ = std::to_string(static_cast<int>(GetParam()));
  const std::string top_ = "Tame [Import " + version_ + "]";
  const std::vector<std::string> path_ = {std::string(kHive), "Software", "Tamarind Editor Tests",
                                          std::to_string(::GetCurrentProcessId()), top_};
  const fs::path file_ = fs::temp_directory_path() / ("tme_import" + version_ + ".reg");
};

INSTANTIATE_TEST_SUITE_P(Versions, RegImport, testing::Values(RegVersion::Regedit4, RegVersion::Version5));

TEST_P(RegImport, TheSystemHoldsWhatTheDocumentShows) {
  const std::vector<Value> values = AllValues(GetParam() == RegVersion::Version5 ? "é Жук 😀" : "é");
  RegDocument document;
  ReadWholeReg(document, std::string(HeaderOf(GetParam())) + "\r\n\r\n");
  RegNode* key = document.Root();
  for (const std::string& name : path_) key = document.AddKey(key, name);
  RegNode* below = document.AddKey(key, "below");
  document.AddValue(below, "v", "\"1\"");
  for (const Value& value : values)
    document.AddValue(key, value.name, EncodeAssignment(value.data, Coding()).value_or("none"));
  Import(document);
  for (const Value& value : values) {
    SCOPED_TRACE(value.name);
    EXPECT_TRUE(InRegistry(top_, value.name) == value.data);
  }
  EXPECT_TRUE(InRegistry(top_ + "\\below", "v").has_value());

  RegDocument exported;
  ReadExport(exported);
  // Wine's export has other forms of its own for these two.
  const auto is_odd = [](const Value& value) { return value.name == "two lines" || value.name == "no dword"; };
  std::size_t found = 0;
  for (const RegValueRecord& record : exported.Values()) {
    for (const Value& value : values) {
      if (record.name != value.name || record.owner->Text() == "below") continue;
      ++found;
      EXPECT_TRUE(is_odd(value) || DecodeAssignment(record.data, kInRegistry) == value.data) << value.name;
    }
  }
  EXPECT_EQ(found, values.size());

  // Deletions are carried out, and what is imported again is the same.
  document.WriteDeletion(below);
  document.WriteDeletion(1);
  Import(document);
  EXPECT_FALSE(InRegistry(top_ + "\\below", "v").has_value());
  EXPECT_FALSE(InRegistry(top_, values[0].name).has_value());
  EXPECT_TRUE(InRegistry(top_, values[1].name) == values[1].data);
}

}  // namespace
}  // namespace tme
