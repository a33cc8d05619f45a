#include "tools/zelk-msg/graphviz.h"

#include "tools/zelk-msg/memory_limit.h"
#include "tools/zelk-msg/trouble.h"

#include <array>
#include <cerrno>
#include <csignal>
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

/// Runs `dot -Tsvg -o file` with its standard input on that descriptor.
pid_t startDot(int input, std::string const& file)
{
    std::string program = "dot";
    std::string format = "-Tsvg";
    std::string target = "-o" + file;
    std::array<char*, 4> arguments{program.data(), format.data(), target.data(), nullptr};
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    pid_t child = 0;
    int const error = ::posix_spawnp(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error == ENOENT)
        throw Trouble(
            "--svg needs the program dot, which is not installed (Debian has it in the package graphviz); "
            "without --svg the drawing is printed in its language");
    if (error != 0)
        throw Trouble("dot cannot be started: " + reasonOf(error));
    return child;
}

} // namespace

void drawSvg(std::string const& drawing, std::string const& file)
{
    // A file between the two lets dot end early without a broken pipe here.
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const between(std::tmpfile(), std::fclose);
    if (!between || std::fwrite(drawing.data(), 1, drawing.size(), between.get()) != drawing.size() ||
        std::fflush(between.get()) != 0)
        throw Trouble("a temporary file cannot be written: " + reasonOf(errno));
    std::rewind(between.get());

    liftMemoryLimit(); // it was for reading
    pid_t const child = startDot(::fileno(between.get()), file);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw Trouble("dot failed, " + file + " was not drawn");
}

} // namespace ZelkMsg
