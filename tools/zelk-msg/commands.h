/// The commands of the program. Each has a source of its own and knows no other.
#pragma once

#include "tools/zelk-msg/output.h"

#include <CLI/CLI.hpp>

#include <functional>

namespace ZelkMsg {

/// What a command does once the command line is read: prints to the output, returns an ExitStatus.
using Run = std::function<int(Output&)>;

/// Each adds its command to the program; when the user calls it, `run` is set.
void addCheck(CLI::App& program, Run& run);
void addDiff(CLI::App& program, Run& run);
void addGraph(CLI::App& program, Run& run);
void addKinds(CLI::App& program, Run& run);
void addMake(CLI::App& program, Run& run);
void addSequence(CLI::App& program, Run& run);
void addShow(CLI::App& program, Run& run);

} // namespace ZelkMsg
