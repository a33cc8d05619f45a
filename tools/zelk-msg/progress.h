/// How far the reading of a large file has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace ZelkMsg {

/// A bar on standard error while a file of known size is read, when that is a terminal (and standard output
/// is not, where it would be in the way). Appears after a while and is wiped out at the end.
class Progress {
public:
    /// `size` is 0 when it is not known: then nothing is shown.
    Progress(std::string name, std::uint64_t size);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress();

    /// To be called often.
    void show(std::uint64_t position)
    {
        if (active_ && ++calls_ % 256 == 0)
            draw(position);
    }

private:
    void draw(std::uint64_t position);

    std::string name_;
    std::uint64_t size_;
    bool active_;
    bool drawn_ = false;
    unsigned int calls_ = 0;
    std::chrono::steady_clock::time_point next_;
};

} // namespace ZelkMsg
