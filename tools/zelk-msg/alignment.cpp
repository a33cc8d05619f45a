#include "tools/zelk-msg/alignment.h"

#include <algorithm>
#include <utility>

namespace ZelkMsg {

namespace {

using Relation = std::function<bool(std::size_t, std::size_t)>;
using Matches = std::vector<std::pair<std::size_t, std::size_t>>;

// The memory for the search grows with the square of this.
constexpr std::ptrdiff_t mostDifferences = 1500;

/// The matches of a shortest edit script: for each number of edits, how far each diagonal of the edit graph
/// gets. Empty when too many edits are needed.
Matches shortestEdit(std::size_t leftSize, std::size_t rightSize, Relation const& equal)
{
    auto const n = static_cast<std::ptrdiff_t>(leftSize);
    auto const m = static_cast<std::ptrdiff_t>(rightSize);
    std::ptrdiff_t const most = std::min(n + m, mostDifferences);
    auto const slot = [most](std::ptrdiff_t diagonal) {
        return static_cast<std::size_t>(diagonal + most + 1);
    };
    std::vector<std::ptrdiff_t> furthest(static_cast<std::size_t>(2 * most + 3), 0);
    std::vector<std::vector<std::ptrdiff_t>> history;
    auto const goesDown = [&](std::vector<std::ptrdiff_t> const& reach, std::ptrdiff_t k,
                              std::ptrdiff_t edits) {
        return k == -edits || (k != edits && reach[slot(k - 1)] < reach[slot(k + 1)]);
    };
    for (std::ptrdiff_t edits = 0; edits <= most; ++edits) {
        history.emplace_back(furthest.begin() + (most + 1 - edits - 1),
                             furthest.begin() + (most + 1 + edits + 2));
        for (std::ptrdiff_t k = -edits; k <= edits; k += 2) {
            std::ptrdiff_t x =
                goesDown(furthest, k, edits) ? furthest[slot(k + 1)] : furthest[slot(k - 1)] + 1;
            while (x < n && x - k < m && x - k >= 0 &&
                   equal(static_cast<std::size_t>(x), static_cast<std::size_t>(x - k)))
                ++x;
            furthest[slot(k)] = x;
            if (x < n || x - k < m)
                continue;
            // Back from the end, edit by edit; history[d] holds the diagonals -d-1 to d+1 before d edits.
            Matches matches;
            std::ptrdiff_t y = x - k;
            for (std::ptrdiff_t d = edits; d >= 0; --d) {
                auto const& before = history[static_cast<std::size_t>(d)];
                auto const reach = [&](std::ptrdiff_t diagonal) {
                    return before[static_cast<std::size_t>(diagonal + d + 1)];
                };
                std::ptrdiff_t const diagonal = x - y;
                bool const down =
                    diagonal == -d || (diagonal != d && reach(diagonal - 1) < reach(diagonal + 1));
                std::ptrdiff_t const from = d == 0 ? 0 : reach(down ? diagonal + 1 : diagonal - 1);
                std::ptrdiff_t const begin = d == 0 ? 0 : down ? from : from + 1;
                while (x > begin) {
                    --x;
                    --y;
                    matches.emplace_back(static_cast<std::size_t>(x), static_cast<std::size_t>(y));
                }
                if (d > 0) {
                    x = from;
                    y = from - (down ? diagonal + 1 : diagonal - 1);
                }
            }
            std::reverse(matches.begin(), matches.end());
            return matches;
        }
    }
    return {};
}

/// The items before the next match: pairs of related ones in order, the others alone.
void addGap(std::vector<Alignment>& result, std::size_t left, std::size_t leftEnd, std::size_t right,
            std::size_t rightEnd, Relation const& related)
{
    while (left < leftEnd && right < rightEnd) {
        std::size_t partner = right;
        while (partner < rightEnd && !related(left, partner))
            ++partner;
        if (partner == rightEnd) {
            result.push_back({left++, std::nullopt, false});
            continue;
        }
        while (right < partner)
            result.push_back({std::nullopt, right++, false});
        result.push_back({left++, right++, false});
    }
    while (left < leftEnd)
        result.push_back({left++, std::nullopt, false});
    while (right < rightEnd)
        result.push_back({std::nullopt, right++, false});
}

} // namespace

std::vector<Alignment> align(std::size_t leftSize, std::size_t rightSize, Relation const& equal,
                             Relation const& related)
{
    std::size_t begin = 0;
    while (begin < leftSize && begin < rightSize && equal(begin, begin))
        ++begin;
    std::size_t end = 0;
    while (end < leftSize - begin && end < rightSize - begin &&
           equal(leftSize - 1 - end, rightSize - 1 - end))
        ++end;

    Matches matches;
    for (std::size_t i = 0; i < begin; ++i)
        matches.emplace_back(i, i);
    for (auto const& [left, right] : shortestEdit(
             leftSize - begin - end, rightSize - begin - end,
             [&](std::size_t left, std::size_t right) { return equal(begin + left, begin + right); }))
        matches.emplace_back(begin + left, begin + right);
    for (std::size_t i = end; i > 0; --i)
        matches.emplace_back(leftSize - i, rightSize - i);

    std::vector<Alignment> result;
    std::size_t left = 0;
    std::size_t right = 0;
    for (auto const& [match_left, match_right] : matches) {
        addGap(result, left, match_left, right, match_right, related);
        result.push_back({match_left, match_right, true});
        left = match_left + 1;
        right = match_right + 1;
    }
    addGap(result, left, leftSize, right, rightSize, related);
    return result;
}

} // namespace ZelkMsg
