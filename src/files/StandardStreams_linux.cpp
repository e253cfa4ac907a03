#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <string_view>
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

constexpr std::array kInterrupts{SIGINT, SIGTERM, SIGHUP};

std::size_t NumberOf(StandardStream stream) { return static_cast<std::size_t>(stream); }

/// The descriptor that a path names. What is behind it goes on where it stands; the path opened anew would begin at the
/// start of a file.
std::optional<int> NamedDescriptor(const std::filesystem::path& path) {
  constexpr std::array<std::string_view, 3> kStandard{"/dev/stdin", "/dev/stdout", "/dev/stderr"};
  const std::string_view name = path.native();
  for (std::size_t number = 0; number < kStandard.size(); ++number)
    if (name == kStandard[number]) return static_cast<int>(number);
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!name.starts_with(folder)) continue;
    const char* const end = name.data() + name.size();
    int number = 0;
    const auto parsed = std::from_chars(name.data() + folder.size(), end, number);
    if (parsed.ec == std::errc() && parsed.ptr == end && number >= 0) return number;
  }
  return std::nullopt;
}

bool IsMissing(int descriptor) {
  const auto number = static_cast<std::size_t>(descriptor);
  return number < missing_streams.size() && missing_streams[number];
}

/// Of a path as ReadStream and WriteStream take it, to be closed if it is no named one; -1 with a failure.
int OpenStream(const std::filesystem::path& path, int flags, std::optional<FileFailure>& failure) {
  const auto named = NamedDescriptor(path);
  if (named && IsMissing(*named)) {
    failure = MissingStream();
    return -1;
  }
  const int descriptor =
      named ? ::fcntl(*named, F_DUPFD_CLOEXEC, 0) : ::open(path.c_str(), flags | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) failure = FailureOf(std::error_code(errno, std::generic_category()));
  return descriptor;
}

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
  if (const auto named = NamedDescriptor(path)) return ::fcntl(*named, F_GETFD) >= 0;
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
         !std::filesystem::is_directory(status);
}

std::optional<FileFailure> ReadStream(const std::filesystem::path& path, std::string& bytes) {
  bytes.clear();
  std::optional<FileFailure> failure;
  const int descriptor = OpenStream(path, O_RDONLY, failure);
  if (failure) return failure;
  failure = ReadAllOf(descriptor, bytes);
  ::close(descriptor);
  return failure;
}

std::optional<FileFailure> WriteStream(const std::filesystem::path& path, std::string_view bytes) {
  std::optional<FileFailure> failure;
  const int descriptor = OpenStream(path, O_WRONLY, failure);
  if (failure) return failure;
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

DeferredInterrupts::DeferredInterrupts() {
  sigset_t interrupts, before;
  ::sigemptyset(&interrupts);
  for (const int number : kInterrupts) ::sigaddset(&interrupts, number);
  ::sigprocmask(SIG_BLOCK, &interrupts, &before);
  for (const int number : kInterrupts)
    if (::sigismember(&before, number) == 0) deferred_.push_back(number);
}

DeferredInterrupts::~DeferredInterrupts() {
  sigset_t interrupts;
  ::sigemptyset(&interrupts);
  for (const int number : deferred_) ::sigaddset(&interrupts, number);
  ::sigprocmask(SIG_UNBLOCK, &interrupts, nullptr);
}

bool IsTerminal(StandardStream stream) { return ::isatty(static_cast<int>(stream)) == 1; }

}  // namespace tme
