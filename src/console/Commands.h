#pragma once

#include <span>
#include <string_view>

#include "console/Arguments.h"
#include "console/Streams.h"

namespace tme::console {

// One function a command, each in a file of its own with the row that describes it.

extern const Command kGetCommand;
extern const Command kSetCommand;
extern const Command kDeleteCommand;
extern const Command kListCommand;
extern const Command kCheckCommand;
extern const Command kConvertCommand;
extern const Command kTextCommand;
extern const Command kDiffCommand;
extern const Command kMergeCommand;

/// All of them, in the order in which help names them.
std::span<const Command* const> Commands();

/// Runs the program: arguments are those behind its name. Nothing is thrown.
Result RunConsole(std::span<const std::string_view> arguments, Streams& streams);

}  // namespace tme::console
