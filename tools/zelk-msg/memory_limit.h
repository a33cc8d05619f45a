/// Keeps the program from taking the memory of the machine, whatever it is given to read.
#pragma once

#include <cstdint>
#include <string>

namespace ZelkMsg {

/// What the program may take when nobody says otherwise, in bytes.
constexpr std::uint64_t defaultMemoryLimit = std::uint64_t{1} << 30;

/// Limits the address space of the program to that many bytes. A message that needs more fails with
/// std::bad_alloc and is reported as refused. Throws Trouble when the limit cannot be set.
void limitMemory(std::uint64_t bytes);

/// Takes the limit back, for a program that is started from this one.
void liftMemoryLimit();

/// The limit in words: "1 GiB".
std::string memoryLimitText();

/// The longest text that is worth reading under the limit, in bytes: its tree takes several times as much.
std::size_t longestText();

/// Adds the stacks of so many threads to the limit, which is for messages. Returns how many there is room
/// for, at least 1.
unsigned int makeRoomForThreads(unsigned int wanted);

} // namespace ZelkMsg
