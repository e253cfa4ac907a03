#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/FileFailure.h"

/// What the system gives a program for the console.
namespace tme {

enum class StandardStream : std::uint8_t { Input, Output, Error };

/// The arguments behind the program's name, on Windows as UTF-8. argc, argv: those of main.
std::vector<std::string> ProgramArguments(int argc, char** argv);
/// A path as an argument gives it, on Windows an absolute one. Null where the system can have no such path.
std::optional<std::filesystem::path> PathOfArgument(const std::string& argument);

/// Takes the places of the streams that the program was started without, so that no file which it opens becomes one of
/// them. Must come first; once.
void ReserveStandardStreams();
/// Reads to the end, at most kMaxFileBytes. `bytes` is empty after a failure.
std::optional<FileFailure> ReadStandardInput(std::string& bytes);
/// Writes all, on a Windows console as characters (the text is UTF-8, and whole), else byte by byte.
std::optional<FileFailure> WriteStandard(StandardStream stream, std::string_view text);
/// Whether the path leads to a pipe or a device, or names a stream that is open here, such as /dev/stdout, whatever is
/// behind it: nothing to be replaced, or asked for its size. Never on Windows.
bool IsStream(const std::filesystem::path& path);
/// As ReadStandardInput; may wait for the other end of a pipe.
std::optional<FileFailure> ReadStream(const std::filesystem::path& path, std::string& bytes);
std::optional<FileFailure> WriteStream(const std::filesystem::path& path, std::string_view bytes);
bool IsTerminal(StandardStream stream);

/// While it lives, what ends the program from the keyboard or by request waits, so that a write leaves nothing behind.
/// What waited before waits on afterwards. It does nothing on Windows.
class DeferredInterrupts {
 public:
  DeferredInterrupts();
  DeferredInterrupts(const DeferredInterrupts&) = delete;
  DeferredInterrupts& operator=(const DeferredInterrupts&) = delete;
  ~DeferredInterrupts();

 private:
  std::vector<int> deferred_;  ///< numbers of signals
};

}  // namespace tme
