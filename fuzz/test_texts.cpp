#include "fuzz/harness.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace Zelk::Fuzzing {

std::vector<std::string> testTexts()
{
    std::vector<std::filesystem::path> paths;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(ZELK_TESTS_DIR)) {
        if (entry.path().extension() == ".json")
            paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());

    std::vector<std::string> texts;
    for (auto const& path : paths) {
        std::ifstream file(path, std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    require(!texts.empty(), "there are texts among the tests");
    return texts;
}

} // namespace Zelk::Fuzzing
