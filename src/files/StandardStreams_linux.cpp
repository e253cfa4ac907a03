#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <system_error>

#include "files/FileBytes.h"
#include "files/FileSteps.h"
#include "files/StandardStreams.h"
#include "files/SystemFile.h"
#include "files/TemporaryFile.h"

namespace tme {
namespace {

/// By number of the descriptor.
std::array<bool, 3> missing_streams{};

FileFailure MissingStream() { return FailureOf(std::error_code(EBADF, std::generic_category())); }

std::size_t NumberOf(StandardStream stream) { return static_cast<std::size_t>(stream); }

std::optional<FileFailure> ReadToEnd(int descriptor, std::string& bytes) {
  constexpr std::size_t kStep = std::size_t{1} << 16;
  std::error_code error;
  try {
    for (std::size_t used = 0, count = 1; count > 0 && !error; used += count) {
      bytes.resize(used + std::max(kStep, used));
      error = system_file::Read(descriptor, bytes.data() + used, bytes.size() - used, count);
      if (error) count = 0;
      if (count == 0) bytes.resize(used);
      if (used > kMaxFileBytes) error = std::make_error_code(std::errc::file_too_large);
    }
  } catch (const std::exception&) {  // bad_alloc, length_error
    error = std::make_error_code(std::errc::not_enough_memory);
  }
  if (!error) return std::nullopt;
  std::string().swap(bytes);
  return FailureOf(error);
}

}  // namespace

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv + std::min(argc, 1), argv + argc}; }

std::optional<std::filesystem::path> PathOfArgument(const std::string& argument) { return argument; }

void ReserveStandardStreams() {
  for (std::size_t number = 0; number < missing_streams.size(); ++number) {
    const int descriptor = static_cast<int>(number);
    missing_streams[number] = ::fcntl(descriptor, F_GETFD) < 0;
    // The lowest free number is this one.
    if (missing_streams[number] && ::open("/dev/null", O_RDWR) != descriptor) return;
  }
}

bool IsStream(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
         !std::filesystem::is_directory(status);
}

std::optional<FileFailure> ReadStream(const std::filesystem::path& path, std::string& bytes) {
  bytes.clear();
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) return FailureOf(std::error_code(errno, std::generic_category()));
  auto failure = ReadToEnd(descriptor, bytes);
  ::close(descriptor);
  return failure;
}

std::optional<FileFailure> WriteStream(const std::filesystem::path& path, std::string_view bytes) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) return FailureOf(std::error_code(errno, std::generic_category()));
  FileSteps steps;
  const std::error_code error = WriteAll(steps, descriptor, bytes);
  const std::error_code close_error = steps.Close(descriptor);
  if (error || close_error) return FailureOf(error ? error : close_error);
  return std::nullopt;
}

std::optional<FileFailure> ReadStandardInput(std::string& bytes) {
  bytes.clear();
  if (missing_streams[NumberOf(StandardStream::Input)]) return MissingStream();
  return ReadToEnd(STDIN_FILENO, bytes);
}

std::optional<FileFailure> WriteStandard(StandardStream stream, std::string_view text) {
  if (missing_streams[NumberOf(stream)]) return MissingStream();
  FileSteps steps;
  if (const auto error = WriteAll(steps, static_cast<FileHandle>(stream), text)) return FailureOf(error);
  return std::nullopt;
}

bool IsTerminal(StandardStream stream) { return ::isatty(static_cast<int>(stream)) == 1; }

}  // namespace tme
