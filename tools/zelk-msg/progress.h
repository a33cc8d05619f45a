/// How far the reading of a large file has come.
#pragma once

#include <cstdint>
#include <string>

namespace ZelkMsg {

/// A bar on standard error while a file of known size is read, when that is a terminal. Appears when nothing
/// has been printed for a while, and is wiped out at the end.
class Progress {
public:
    /// `size` is 0 when it is not known: then nothing is shown.
    Progress(std::string const& name, std::uint64_t size);
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
    unsigned int calls_ = 0;
};

/// Takes the bar off the terminal, so that something can be printed there. It comes back by itself.
void wipeProgress();

} // namespace ZelkMsg
