#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <system_error>

#include "files/FileBytes.h"
#include "files/FileSteps.h"
#include "files/ReadToEnd.h"
#include "files/StandardStreams.h"
#include "files/TemporaryFile.h"

namespace tme {
namespace {

HANDLE HandleOf(StandardStream stream) {
  constexpr DWORD kNumbers[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
  return ::GetStdHandle(kNumbers[static_cast<std::size_t>(stream)]);
}

bool IsOpen(HANDLE handle) { return handle != nullptr && handle != INVALID_HANDLE_VALUE; }

FileFailure MissingStream() { return FailureOf(std::error_code(ERROR_INVALID_HANDLE, std::system_category())); }

std::error_code LastSystemError() { return {static_cast<int>(::GetLastError()), std::system_category()}; }

std::string Utf8Of(std::wstring_view text) {
  const int units = static_cast<int>(text.size());
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), units, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

std::wstring WideOf(std::string_view text) {
  const int bytes = static_cast<int>(text.size());
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), size);
  return wide;
}

std::error_code WriteToConsole(HANDLE console, std::wstring_view text) {
  constexpr std::size_t kMaxUnits = 8000;  // a console takes 64 KB at once
  while (!text.empty()) {
    DWORD written = 0;
    const auto units = static_cast<DWORD>(std::min(text.size(), kMaxUnits));
    if (::WriteConsoleW(console, text.data(), units, &written, nullptr) == 0) return LastSystemError();
    text.remove_prefix(written);
  }
  return {};
}

}  // namespace

std::vector<std::string> ProgramArguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  wchar_t** const parts = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int index = 1; parts != nullptr && index < count; ++index) arguments.push_back(Utf8Of(parts[index]));
  ::LocalFree(parts);
  return arguments;
}

std::optional<std::filesystem::path> PathOfArgument(const std::string& argument) {
  // What replaces files takes no others.
  std::error_code error;
  std::filesystem::path path = std::filesystem::absolute(WideOf(argument), error);
  if (error) return std::nullopt;
  return path.make_preferred();
}

void ReserveStandardStreams() {}

std::optional<FileFailure> ReadStandardInput(std::string& bytes) {
  bytes.clear();
  const HANDLE handle = HandleOf(StandardStream::Input);
  if (!IsOpen(handle)) return MissingStream();
  return ReadToEnd(
      [handle](char* place, std::size_t size, std::size_t& count) -> std::error_code {
        constexpr std::size_t kMostBytes = std::size_t{1} << 30;  // a DWORD holds them
        DWORD read = 0;
        const bool is_read =
            ::ReadFile(handle, place, static_cast<DWORD>(std::min(size, kMostBytes)), &read, nullptr) != 0;
        count = is_read ? read : 0;
        if (is_read || ::GetLastError() == ERROR_BROKEN_PIPE) return {};  // which is the end of a pipe
        return LastSystemError();
      },
      0, bytes);
}

std::optional<FileFailure> WriteStandard(StandardStream stream, std::string_view text) {
  const HANDLE handle = HandleOf(stream);
  if (!IsOpen(handle)) return MissingStream();
  std::error_code error;
  FileSteps steps;
  if (IsTerminal(stream))
    error = WriteToConsole(handle, WideOf(text));
  else
    error = WriteAll(steps, reinterpret_cast<FileHandle>(handle), text);
  return error ? std::optional(FailureOf(error)) : std::nullopt;
}

DeferredInterrupts::DeferredInterrupts() = default;
DeferredInterrupts::~DeferredInterrupts() = default;

bool IsStream(const std::filesystem::path& /*path*/) { return false; }
std::optional<FileFailure> ReadStream(const std::filesystem::path& path, std::string& bytes) {
  return ReadFileBytes(path, bytes);
}
std::optional<FileFailure> WriteStream(const std::filesystem::path& path, std::string_view bytes) {
  return WriteFileBytes(path, bytes);
}

bool IsTerminal(StandardStream stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(HandleOf(stream), &mode) != 0;
}

}  // namespace tme
