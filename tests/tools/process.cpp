#include "tests/tools/process.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace ZelkTest {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File temporary()
{
    File file(std::tmpfile(), std::fclose);
    if (!file)
        throw std::runtime_error("no temporary file");
    return file;
}

std::string contentOf(std::FILE* file)
{
    std::rewind(file);
    std::string content;
    char chunk[65536];
    while (std::size_t const count = std::fread(chunk, 1, sizeof chunk, file))
        content.append(chunk, count);
    return content;
}

} // namespace

Result run(std::vector<std::string> const& command, Setting const& setting)
{
    // Files instead of pipes: nobody has to read while the program writes.
    File const input = temporary();
    File const out = temporary();
    File const err = temporary();
    std::fwrite(setting.input.data(), 1, setting.input.size(), input.get());
    std::fflush(input.get());
    std::rewind(input.get());

    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    pid_t const child = ::fork();
    if (child < 0)
        throw std::runtime_error("no process");
    if (child == 0) {
        ::dup2(::fileno(input.get()), STDIN_FILENO);
        ::dup2(::fileno(out.get()), STDOUT_FILENO);
        ::dup2(::fileno(err.get()), STDERR_FILENO);
        for (auto const& [name, value] : setting.environment)
            ::setenv(name.c_str(), value.c_str(), 1);
        if (!setting.folder.empty() && ::chdir(setting.folder.c_str()) != 0)
            ::_exit(126);
        ::execvp(arguments.front(), arguments.data());
        ::_exit(127);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    Result result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = contentOf(out.get());
    result.err = contentOf(err.get());
    return result;
}

Result zelkMsg(std::vector<std::string> const& arguments, Setting setting)
{
    std::vector<std::string> command{ZELK_MSG_PATH};
    command.insert(command.end(), arguments.begin(), arguments.end());
    if (setting.folder.empty())
        setting.folder = ZELK_TEST_DIR "/tools/data";
    return run(command, setting);
}

std::string contentOf(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

std::string expected(std::string const& name)
{
    return contentOf(std::string(ZELK_TEST_DIR "/tools/expected/") + name);
}

TemporaryFile::TemporaryFile(std::string const& content)
{
    char const* const folder = std::getenv("TMPDIR");
    path_ = std::string(folder == nullptr ? "/tmp" : folder) + "/zelk-msg-test-XXXXXX";
    int const descriptor = ::mkstemp(path_.data());
    if (descriptor < 0)
        throw std::runtime_error("no temporary file");
    ::close(descriptor);
    append(content);
}

TemporaryFile::~TemporaryFile()
{
    ::unlink(path_.c_str());
}

void TemporaryFile::append(std::string const& content) const
{
    std::ofstream(path_, std::ios::binary | std::ios::app) << content;
}

} // namespace ZelkTest
