#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "files/FileSteps.h"
#include "files/ReadToEnd.h"
#include "files/StandardStreams.h"
#include "files/SystemFile.h"
#include "files/TemporaryFile.h"

namespace tme {
namespace {

/// By number of the descriptor.
std::array<bool, 3> missing_streams{};

FileFailure MissingStream() { return FailureOf(std::error_code(EBADF, std::generic_category())); }

std::size_t NumberOf(StandardStream stream) { return static_cast<std::size_t>(stream); }

std::optional<FileFailure> ReadAllOf(int descriptor, std::string& bytes) {
  return ReadToEnd([descriptor](char* place, std::size_t size,
                                std::size_t& count) { return system_file::Read(descriptor, place, size, count); },
                   0, bytes);
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
  auto failure = ReadAllOf(descriptor, bytes);
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
  return ReadAllOf(STDIN_FILENO, bytes);
}

std::optional<FileFailure> WriteStandard(StandardStream stream, std::string_view text) {
  if (missing_streams[NumberOf(stream)]) return MissingStream();
  FileSteps steps;
  if (const auto error = WriteAll(steps, static_cast<FileHandle>(stream), text)) return FailureOf(error);
  return std::nullopt;
}

bool IsTerminal(StandardStream stream) { return ::isatty(static_cast<int>(stream)) == 1; }

}  // namespace tme
