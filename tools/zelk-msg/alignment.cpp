#include "tools/zelk-msg/alignment.h"

#include <algorithm>
#include <utility>

namespace ZelkMsg {

namespace {

using Sequence = std::vector<Item>;
using Matches = std::vector<std::pair<std::size_t, std::size_t>>;

// Of a shortest edit script; time and memory of the search grow with the square of this.
constexpr std::ptrdiff_t mostEdits = 500;
// How far an item may have moved to be taken for what another one became.
constexpr std::size_t mostSkipped = 32;
// Of parts within parts, each between items that occur once; beyond that hardly any are found.
constexpr int deepest = 24;

/// A part of both sequences.
struct Part {
    std::size_t left;
    std::size_t leftEnd;
    std::size_t right;
    std::size_t rightEnd;
};

class Matcher {
public:
    Matcher(Sequence const& left, Sequence const& right) : left_(left), right_(right) {}

    /// The matches in the part, in order.
    Matches matches(Part const& part)
    {
        match(part, 0);
        return std::move(found_);
    }

private:
    bool equal(std::size_t left, std::size_t right) const
    {
        return left_[left].identity == right_[right].identity;
    }

    void match(Part part, int depth)
    {
        while (part.left < part.leftEnd && part.right < part.rightEnd && equal(part.left, part.right))
            found_.emplace_back(part.left++, part.right++);
        std::size_t common_end = 0;
        while (part.left < part.leftEnd && part.right < part.rightEnd &&
               equal(part.leftEnd - 1, part.rightEnd - 1)) {
            --part.leftEnd;
            --part.rightEnd;
            ++common_end;
        }
        if (part.left < part.leftEnd && part.right < part.rightEnd && !shortestEdit(part) && depth < deepest)
            matchBetweenAnchors(part, depth);
        for (std::size_t i = 0; i < common_end; ++i)
            found_.emplace_back(part.leftEnd + i, part.rightEnd + i);
    }

    /// The matches of a shortest edit script: for each number of edits, how far each diagonal of the edit
    /// graph gets. False when too many edits are needed.
    bool shortestEdit(Part const& part)
    {
        auto const n = static_cast<std::ptrdiff_t>(part.leftEnd - part.left);
        auto const m = static_cast<std::ptrdiff_t>(part.rightEnd - part.right);
        std::ptrdiff_t const most = std::min(n + m, mostEdits);
        if (std::abs(n - m) > most)
            return false;
        auto const slot = [most](std::ptrdiff_t diagonal) {
            return static_cast<std::size_t>(diagonal + most + 1);
        };
        std::vector<std::ptrdiff_t> furthest(static_cast<std::size_t>(2 * most + 3), 0);
        std::vector<std::vector<std::ptrdiff_t>> history;
        for (std::ptrdiff_t edits = 0; edits <= most; ++edits) {
            history.emplace_back(furthest.begin() + (most - edits), furthest.begin() + (most + edits + 3));
            for (std::ptrdiff_t k = -edits; k <= edits; k += 2) {
                bool const down =
                    k == -edits || (k != edits && furthest[slot(k - 1)] < furthest[slot(k + 1)]);
                std::ptrdiff_t x = down ? furthest[slot(k + 1)] : furthest[slot(k - 1)] + 1;
                while (x < n && x - k < m && x - k >= 0 &&
                       equal(part.left + static_cast<std::size_t>(x),
                             part.right + static_cast<std::size_t>(x - k)))
                    ++x;
                furthest[slot(k)] = x;
                if (x >= n && x - k >= m) {
                    addPath(part, history, x, x - k);
                    return true;
                }
            }
        }
        return false;
    }

    /// Back from the end of the edit graph, edit by edit; history[d] holds the diagonals -d-1 to d+1 before d
    /// edits.
    void addPath(Part const& part, std::vector<std::vector<std::ptrdiff_t>> const& history, std::ptrdiff_t x,
                 std::ptrdiff_t y)
    {
        auto const first = static_cast<std::ptrdiff_t>(found_.size());
        for (auto d = static_cast<std::ptrdiff_t>(history.size()) - 1; d >= 0; --d) {
            auto const reach = [&](std::ptrdiff_t diagonal) {
                return history[static_cast<std::size_t>(d)][static_cast<std::size_t>(diagonal + d + 1)];
            };
            std::ptrdiff_t const diagonal = x - y;
            bool const down = diagonal == -d || (diagonal != d && reach(diagonal - 1) < reach(diagonal + 1));
            std::ptrdiff_t const from = d == 0 ? 0 : reach(down ? diagonal + 1 : diagonal - 1);
            std::ptrdiff_t const begin = d == 0 || down ? from : from + 1;
            while (x > begin) {
                --x;
                --y;
                found_.emplace_back(part.left + static_cast<std::size_t>(x),
                                    part.right + static_cast<std::size_t>(y));
            }
            if (d > 0) {
                x = from;
                y = from - (down ? diagonal + 1 : diagonal - 1);
            }
        }
        std::reverse(found_.begin() + first, found_.end());
    }

    /// Matches items that occur once on each side of the part, and then what lies between them.
    void matchBetweenAnchors(Part const& part, int depth)
    {
        Matches const anchors = longestRise(uniqueItems(part));
        if (anchors.empty())
            return;
        Part between = part;
        for (auto const& [left, right] : anchors) {
            between.leftEnd = left;
            between.rightEnd = right;
            match(between, depth + 1);
            found_.emplace_back(left, right);
            between.left = left + 1;
            between.right = right + 1;
        }
        between.leftEnd = part.leftEnd;
        between.rightEnd = part.rightEnd;
        match(between, depth + 1);
    }

    /// Items that occur once on each side, in the order of the left one.
    Matches uniqueItems(Part const& part) const
    {
        struct Count {
            std::size_t left = 0;
            std::size_t right = 0;
            std::size_t place = 0; // on the right
        };
        std::unordered_map<std::size_t, Count> counts;
        for (std::size_t i = part.left; i < part.leftEnd; ++i)
            ++counts[left_[i].identity].left;
        for (std::size_t i = part.right; i < part.rightEnd; ++i) {
            Count& count = counts[right_[i].identity];
            ++count.right;
            count.place = i;
        }
        Matches result;
        for (std::size_t i = part.left; i < part.leftEnd; ++i) {
            Count const& count = counts[left_[i].identity];
            if (count.left == 1 && count.right == 1)
                result.emplace_back(i, count.place);
        }
        return result;
    }

    /// The longest selection whose right places rise, too.
    static Matches longestRise(Matches const& all)
    {
        std::vector<std::size_t> ends; // ends[n] ends the lowest selection of n + 1
        std::vector<std::size_t> previous(all.size());
        for (std::size_t i = 0; i < all.size(); ++i) {
            auto const place =
                std::lower_bound(ends.begin(), ends.end(), all[i].second,
                                 [&](std::size_t end, std::size_t right) { return all[end].second < right; });
            previous[i] = place == ends.begin() ? i : *(place - 1);
            if (place == ends.end())
                ends.push_back(i);
            else
                *place = i;
        }
        Matches result(ends.size());
        std::size_t at = ends.empty() ? 0 : ends.back();
        for (std::size_t n = ends.size(); n > 0; --n) {
            result[n - 1] = all[at];
            at = previous[at];
        }
        return result;
    }

    Sequence const& left_;
    Sequence const& right_;
    Matches found_;
};

/// The items before the next match: pairs of one group in order, the others alone.
void addGap(std::vector<Alignment>& result, Sequence const& leftItems, Sequence const& rightItems, Part gap)
{
    while (gap.left < gap.leftEnd) {
        std::size_t const limit = std::min(gap.rightEnd, gap.right + mostSkipped);
        std::size_t partner = gap.right;
        while (partner < limit && leftItems[gap.left].group != rightItems[partner].group)
            ++partner;
        if (partner == limit) {
            result.push_back({gap.left++, std::nullopt, false});
            continue;
        }
        while (gap.right < partner)
            result.push_back({std::nullopt, gap.right++, false});
        bool const equal = leftItems[gap.left].identity == rightItems[gap.right].identity;
        result.push_back({gap.left++, gap.right++, equal});
    }
    while (gap.right < gap.rightEnd)
        result.push_back({std::nullopt, gap.right++, false});
}

} // namespace

std::vector<Alignment> align(std::vector<Item> const& left, std::vector<Item> const& right)
{
    std::vector<Alignment> result;
    Part gap{0, 0, 0, 0};
    for (auto const& [match_left, match_right] :
         Matcher(left, right).matches({0, left.size(), 0, right.size()})) {
        gap.leftEnd = match_left;
        gap.rightEnd = match_right;
        addGap(result, left, right, gap);
        result.push_back({match_left, match_right, true});
        gap.left = match_left + 1;
        gap.right = match_right + 1;
    }
    gap.leftEnd = left.size();
    gap.rightEnd = right.size();
    addGap(result, left, right, gap);
    return result;
}

} // namespace ZelkMsg
