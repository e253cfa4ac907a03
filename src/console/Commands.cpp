#include "console/Commands.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <string>

namespace tme::console {
namespace {

constexpr std::array kCommands{&kGetCommand,     &kSetCommand,  &kDeleteCommand, &kListCommand, &kCheckCommand,
                               &kConvertCommand, &kTextCommand, &kDiffCommand,   &kMergeCommand};

std::string Help() {
  constexpr std::size_t kColumn = 12;
  std::string help =
      "Usage: tmec COMMAND [OPTION…] FILE…\n\n"
      "Reads, edits, compares and merges INI files and registry exports (.reg), one value at a time, and leaves every\n"
      "other byte alone.\n\n";
  for (const Command* command : kCommands) {
    std::string left = "  " + std::string(command->name);
    left.resize(std::max(left.size() + 1, kColumn), ' ');
    help.append(left).append(command->summary).append("\n");
  }
  return help +
         "\n\"-\" is standard input. \"tmec COMMAND --help\" says more about each, and \"tmec --version\" which\n"
         "this is.\n"
         "Exit status: 0 done or the same, 1 absent, different or found, 2 trouble.\n";
}

Result Run(std::span<const std::string_view> arguments, Streams& streams) {
  if (arguments.empty()) throw Trouble("no command (see tmec --help)");
  const std::string_view name = arguments.front();
  if (name == "--help" || name == "-h" || name == "help") {
    streams.Put(Help());
    return Result::Done;
  }
  if (name == "--version") {
    streams.PutLine("tmec " TME_VERSION " (Tamarind Editor)");
    return Result::Done;
  }
  const auto found =
      std::find_if(kCommands.begin(), kCommands.end(), [name](const auto* c) { return c->name == name; });
  if (found == kCommands.end()) throw Trouble("no command \"" + std::string(name) + "\" (see tmec --help)");
  const Command& command = **found;
  const Arguments parsed(command, arguments.subspan(1));
  if (!parsed.WantsHelp()) return command.run(parsed, streams);
  streams.Put(HelpOf(command));
  return Result::Done;
}

}  // namespace

std::span<const Command* const> Commands() { return kCommands; }

Result RunConsole(std::span<const std::string_view> arguments, Streams& streams) {
  std::string trouble;
  try {
    const Result result = Run(arguments, streams);
    streams.Flush();
    return result;
  } catch (const std::bad_alloc&) {
    trouble = "not enough memory";
  } catch (const std::exception& exception) {
    trouble = exception.what();
  }
  streams.Discard();
  streams.Complain(trouble);
  return Result::Trouble;
}

}  // namespace tme::console
