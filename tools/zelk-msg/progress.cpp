#include "tools/zelk-msg/progress.h"

#include "tools/zelk-msg/output.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace ZelkMsg {

namespace {

constexpr auto firstAppearance = std::chrono::milliseconds(700);
constexpr auto interval = std::chrono::milliseconds(100);
constexpr std::uint64_t cells = 30;

// There is one terminal, and so at most one bar.
bool drawn = false;
std::chrono::steady_clock::time_point nextTime;

void write(std::string const& text)
{
    [[maybe_unused]] ssize_t const written = ::write(STDERR_FILENO, text.data(), text.size());
}

bool isTerminal()
{
    char const* const term = std::getenv("TERM");
    bool const dumb = term != nullptr && std::string_view(term) == "dumb";
    return !dumb && ::isatty(STDERR_FILENO) == 1;
}

/// The end of a name, so that the bar fits into a line.
std::string shortened(std::string const& name)
{
    constexpr std::size_t most = 30;
    std::string const shown = harmless(name.substr(name.rfind('/') + 1));
    return width(shown) <= most ? shown : "the file";
}

} // namespace

Progress::Progress(std::string const& name, std::uint64_t size)
    : name_(shortened(name)), size_(size), active_(size > 0 && isTerminal())
{
    nextTime = std::chrono::steady_clock::now() + firstAppearance;
}

Progress::~Progress()
{
    wipeProgress();
}

void Progress::draw(std::uint64_t position)
{
    auto const now = std::chrono::steady_clock::now();
    if (now < nextTime)
        return;
    nextTime = now + interval;
    drawn = true;
    std::uint64_t const done = std::min(position, size_);
    std::uint64_t const filled = done * cells / size_;
    std::string line = "\r\033[K[" + std::string(filled, '#') + std::string(cells - filled, ' ') + "] ";
    line += std::to_string(done * 100 / size_) + "% of " + name_;
    write(line);
}

void wipeProgress()
{
    if (!drawn)
        return;
    write("\r\033[K");
    drawn = false;
    nextTime = std::chrono::steady_clock::now() + firstAppearance;
}

} // namespace ZelkMsg
