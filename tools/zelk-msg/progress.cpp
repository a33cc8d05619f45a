#include "tools/zelk-msg/progress.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace ZelkMsg {

namespace {

constexpr auto firstAppearance = std::chrono::milliseconds(700);
constexpr auto interval = std::chrono::milliseconds(100);
constexpr std::uint64_t cells = 30;

void write(std::string const& text)
{
    [[maybe_unused]] ssize_t const written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace

Progress::Progress(std::string name, std::uint64_t size)
    : name_(std::move(name)), size_(size),
      active_(size > 0 && ::isatty(STDERR_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 0),
      next_(std::chrono::steady_clock::now() + firstAppearance)
{}

Progress::~Progress()
{
    if (drawn_)
        write("\r\033[K");
}

void Progress::draw(std::uint64_t position)
{
    auto const now = std::chrono::steady_clock::now();
    if (now < next_)
        return;
    next_ = now + interval;
    drawn_ = true;
    std::uint64_t const done = std::min(position, size_);
    std::uint64_t const filled = done * cells / size_;
    std::string line = "\r\033[K[" + std::string(filled, '#') + std::string(cells - filled, ' ') + "] ";
    line += std::to_string(done * 100 / size_) + "% of " + name_;
    write(line);
}

} // namespace ZelkMsg
