#include "tools/zelk-msg/graphviz.h"

#include "tools/zelk-msg/memory_limit.h"
#include "tools/zelk-msg/trouble.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace ZelkMsg {

namespace {

std::string reasonOf(int error)
{
    return std::generic_category().message(error);
}

// Files between the two programs let either end early without a broken pipe in the other.
using TemporaryFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

TemporaryFile temporaryFile()
{
    TemporaryFile file(std::tmpfile(), std::fclose);
    if (!file)
        throw Trouble("a temporary file cannot be made: " + reasonOf(errno));
    return file;
}

/// Runs `dot -Tsvg` from one descriptor to the other.
pid_t startDot(int input, int output)
{
    std::string program = "dot";
    std::string format = "-Tsvg";
    std::array<char*, 3> arguments{program.data(), format.data(), nullptr};
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t child = 0;
    int const error = ::posix_spawnp(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error == ENOENT)
        throw Trouble(
            "SVG needs the program dot, which is not installed (Debian has it in the package graphviz); "
            "the other formats do without it");
    if (error != 0)
        throw Trouble("dot cannot be started: " + reasonOf(error));
    return child;
}

} // namespace

std::string svgOf(std::string const& drawing)
{
    TemporaryFile const source = temporaryFile();
    TemporaryFile const target = temporaryFile();
    if (std::fwrite(drawing.data(), 1, drawing.size(), source.get()) != drawing.size() ||
        std::fflush(source.get()) != 0)
        throw Trouble("a temporary file cannot be written: " + reasonOf(errno));
    std::rewind(source.get());

    liftMemoryLimit(); // it was for reading
    pid_t const child = startDot(::fileno(source.get()), ::fileno(target.get()));
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw Trouble("dot failed, nothing was drawn");

    std::rewind(target.get());
    std::string picture;
    std::array<char, 16 * 1024> chunk{};
    while (std::size_t const count = std::fread(chunk.data(), 1, chunk.size(), target.get()))
        picture.append(chunk.data(), count);
    return picture;
}

} // namespace ZelkMsg
