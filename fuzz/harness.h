/// What every harness offers, and what it is made with. Of each harness two programs are made: the fuzzer,
/// whose main function is libFuzzer's, and the replay (replay.cpp), which any compiler builds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/// Puts one input through the surface that the harness is about. A broken rule ends the program.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace Zelk::Fuzzing {

/// Inputs of the harness that lead deep into the code at once.
std::vector<std::string> seeds();

/// The JSON texts among the tests, good and bad.
std::vector<std::string> testTexts();

/// Ends the program, naming the rule, when it does not hold.
inline void require(bool holds, char const* rule)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken rule: %s\n", rule);
    std::abort();
}

} // namespace Zelk::Fuzzing
