/// Which items of two sequences belong together.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ZelkMsg {

/// An item of a sequence, as far as its place in the other one is concerned.
struct Item {
    std::size_t identity; ///< the same for equal items, see Identities
    std::size_t group;    ///< only items of one group can have become each other
};

/// An item of the left sequence and the item of the right one that it corresponds to; one of them may be
/// missing.
struct Alignment {
    std::optional<std::size_t> left;
    std::optional<std::size_t> right;
    bool equal = false;
};

/// Matches equal items in order, and pairs what is left between two matches by group. As many items match as
/// possible where the sequences have much in common; where they have not, those do that each has only once.
/// Takes nearly linear time.
std::vector<Alignment> align(std::vector<Item> const& left, std::vector<Item> const& right);

/// Numbers for texts, the same for equal ones.
class Identities {
public:
    /// The text must outlive this object.
    std::size_t of(std::string_view text) { return numbers_.emplace(text, numbers_.size()).first->second; }

private:
    std::unordered_map<std::string_view, std::size_t> numbers_;
};

} // namespace ZelkMsg
