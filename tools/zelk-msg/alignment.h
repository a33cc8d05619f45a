/// Which items of two sequences belong together.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace ZelkMsg {

/// An item of the left sequence and the item of the right one that it corresponds to; one of them may be
/// missing.
struct Alignment {
    std::optional<std::size_t> left;
    std::optional<std::size_t> right;
    bool equal = false;
};

/// Matches equal items so that as many as possible match (up to a limit of differences, beyond which they are
/// taken one by one), and between two matches pairs the items that `related` calls alike.
std::vector<Alignment> align(std::size_t leftSize, std::size_t rightSize,
                             std::function<bool(std::size_t left, std::size_t right)> const& equal,
                             std::function<bool(std::size_t left, std::size_t right)> const& related);

} // namespace ZelkMsg
