/// Numbers that look random and are the same in every run and on every machine; the distributions of the
/// standard library differ from one implementation to the next.
#pragma once

#include <cstddef>
#include <cstdint>

namespace bench {

class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    /// All 64 bits (splitmix64).
    std::uint64_t next()
    {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }

    /// 0 to limit - 1.
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }

    /// 0 up to, but not including, 1, with 53 random bits.
    double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }

    /// One of the items of a list.
    template <typename List>
    auto const& pick(List const& list)
    {
        return list[below(std::size(list))];
    }

private:
    std::uint64_t state_;
};

} // namespace bench
