#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "console/Streams.h"

namespace tme::console {

/// One option of a command: "--json", "-o OUT", "--output=OUT".
struct Option {
  std::string_view name;
  char letter;             ///< NUL for none
  std::string_view value;  ///< what it takes, for people ("OUT"); empty for none
  std::string_view help;
};

inline constexpr Option kKindOption{"kind", '\0', "ini|reg|rtf|txt", "what FILE is, whatever its name"};
inline constexpr Option kJsonOption{"json", '\0', "", "write JSON"};
inline constexpr Option kOutputOption{"output", 'o', "OUT", "write to OUT (- is standard output), leave FILE alone"};

class Arguments;

struct Command {
  std::string_view name;
  std::string_view operands;  ///< for people: "FILE SECTION [KEY]"
  std::size_t min_operands;
  std::size_t max_operands;
  std::span<const Option> options;
  std::string_view summary;  ///< one line
  std::string_view details;  ///< lines for --help, each with its end; may be empty
  Result (*run)(const Arguments& arguments, Streams& streams);
};

/// The arguments of a command, checked against its options.
class Arguments {
 public:
  /// texts: what follows the command's name; not copied. "--" ends the options, "-" and what begins with "-" and a
  /// digit is none. Throws Trouble where they do not fit the command.
  Arguments(const Command& command, std::span<const std::string_view> texts);

  const Command& Of() const { return command_; }
  /// --help was given; nothing else is checked then.
  bool WantsHelp() const { return wants_help_; }
  std::size_t OperandCount() const { return operands_.size(); }
  std::string_view Operand(std::size_t index) const { return operands_[index]; }
  std::span<const std::string_view> Operands() const { return operands_; }
  /// option: one of the command's.
  bool Has(const Option& option) const { return ValueOf(option).has_value(); }
  /// Of an option that was given several times the last one; empty for one that takes none. Null when it was not given.
  std::optional<std::string_view> ValueOf(const Option& option) const;
  std::size_t TimesOf(const Option& option) const;

 private:
  using Texts = std::span<const std::string_view>;
  std::size_t TakeLong(std::string_view text, Texts rest);
  std::size_t TakeLetters(std::string_view letters, Texts rest);
  const Option& Find(const std::function<bool(const Option&)>& is_it, std::string_view shown) const;
  [[noreturn]] void Refuse(const std::string& why) const;

  const Command& command_;
  std::vector<std::string_view> operands_;
  std::vector<std::pair<const Option*, std::string_view>> given_;
  bool wants_help_ = false;
};

/// What --help of a command writes.
std::string HelpOf(const Command& command);

}  // namespace tme::console
