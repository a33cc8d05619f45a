#include "tools/zelk-msg/suggest.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace ZelkMsg {

namespace {

char lower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/// Letters to insert, remove, replace or swap to get from one word to the other; case does not count.
std::size_t distance(std::string const& from, std::string const& to)
{
    std::vector<std::vector<std::size_t>> cost(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            bool const same = lower(from[i - 1]) == lower(to[j - 1]);
            cost[i][j] =
                std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + (same ? 0u : 1u)});
            bool const swapped = i > 1 && j > 1 && lower(from[i - 1]) == lower(to[j - 2]) &&
                                 lower(from[i - 2]) == lower(to[j - 1]);
            if (swapped)
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[from.size()][to.size()];
}

/// The distance, small also when one word is the beginning of the other.
std::size_t strangeness(std::string const& word, std::string const& candidate)
{
    std::size_t const whole = distance(word, candidate);
    if (word.size() >= 3 && word.size() < candidate.size())
        return std::min(whole, distance(word, candidate.substr(0, word.size())) + 1);
    return whole;
}

} // namespace

std::string didYouMean(std::string const& word, std::vector<std::string> const& known)
{
    constexpr std::size_t longest = 64;
    std::string const* best = nullptr;
    if (word.empty() || word.size() > longest)
        return "";
    // A third of the letters may be wrong, or two, but not all.
    std::size_t best_strangeness = std::min(std::max<std::size_t>(2, word.size() / 3), word.size() - 1) + 1;
    for (std::string const& candidate : known) {
        std::size_t const here = strangeness(word, candidate);
        if (here < best_strangeness) {
            best = &candidate;
            best_strangeness = here;
        }
    }
    return best == nullptr ? "" : "; did you mean '" + *best + "'?";
}

} // namespace ZelkMsg
