#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "files/FileFailure.h"

namespace tme::console {

/// How the program ends; the numbers are its exit status.
enum class Result : int {
  Done = 0,     ///< also: the same
  Other = 1,    ///< absent, different, found, in conflict
  Trouble = 2,  ///< wrong use, or a file that cannot be read or written
};

/// Ends a command: what() says why, for people, in one line.
class Trouble : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The standard input, output and error of a command. Output is gathered.
class Streams {
 public:
  Streams() = default;
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  virtual ~Streams() = default;

  /// Reads standard input to its end; once. Throws Trouble.
  std::string Input();
  /// Writes whole texts, sooner or later. Throws Trouble.
  void Put(std::string_view text);
  void PutLine(std::string_view line);
  /// Writes what was gathered. Throws Trouble.
  void Flush();
  /// Gives up what was gathered.
  void Discard() { output_.clear(); }
  /// Writes "tmec: text" and a line end to standard error, controls visible if that is a terminal.
  void Complain(std::string_view text);

 protected:
  virtual std::optional<FileFailure> ReadInput(std::string& bytes) = 0;
  virtual std::optional<FileFailure> WriteOutput(std::string_view text) = 0;
  virtual void WriteError(std::string_view text) = 0;
  virtual bool ErrorIsTerminal() const = 0;

 private:
  std::string output_;
  bool has_read_ = false;
};

/// A text in which what is no UTF-8 is shown as "\xe9", half a UTF-16 character as "\ud800".
std::string AsUtf8(std::string_view text);

/// A text with its controls (C0, C1, and what turns the direction of text) as "\x1b" or "\u202e".
std::string WithVisibleControls(std::string_view text);

}  // namespace tme::console
