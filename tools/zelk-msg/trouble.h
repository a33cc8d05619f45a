/// What stops a command, and how the program ends.
#pragma once

#include <stdexcept>

namespace ZelkMsg {

/// The exit statuses, the same for every command.
enum ExitStatus : int {
    fine = 0,     ///< nothing to complain about
    findings = 1, ///< messages that were refused, that differ, or a state space with findings
    trouble = 2,  ///< wrong usage, a file that cannot be read or written, no memory
};

/// Something that the command cannot go on with; ends the program with the status `trouble`.
class Trouble : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A file that cannot be opened or read; a command may go on with the next one.
class UnreadableFile : public Trouble {
public:
    using Trouble::Trouble;
};

} // namespace ZelkMsg
