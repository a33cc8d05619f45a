// Puts the seeds of a harness, and the inputs kept in the given files and folders, through it:
//
//   replay_HARNESS [PATH...]
//   replay_HARNESS --write-seeds FOLDER    writes the seeds into files, for the fuzzer to begin with
#include "fuzz/harness.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using Zelk::Fuzzing::seeds;

std::size_t replayed = 0;

void replay(std::string const& input)
{
    // A block of its own, exactly as long as the input, so that a sanitizer sees a step beyond it.
    std::vector<std::uint8_t> const bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    ++replayed;
}

void replayFile(std::filesystem::path const& path)
{
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    std::ifstream file(path, std::ios::binary);
    replay({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
}

void writeSeeds(std::filesystem::path const& folder)
{
    std::filesystem::create_directories(folder);
    std::size_t number = 0;
    for (std::string const& seed : seeds()) {
        std::ofstream file(folder / ("seed-" + std::to_string(number++)), std::ios::binary);
        file << seed;
        Zelk::Fuzzing::require(file.good(), "seeds can be written");
    }
}

} // namespace

int main(int count, char** arguments)
{
    std::vector<std::string> const paths(arguments + 1, arguments + count);
    if (paths.size() == 2 && paths[0] == "--write-seeds") {
        writeSeeds(paths[1]);
        return 0;
    }
    for (std::string const& seed : seeds())
        replay(seed);
    for (std::filesystem::path const path : paths) {
        if (std::filesystem::is_directory(path)) {
            for (auto const& entry : std::filesystem::directory_iterator(path))
                replayFile(entry.path());
        } else {
            replayFile(path);
        }
    }
    std::printf("%zu inputs\n", replayed);
    return replayed == 0 ? 1 : 0;
}
