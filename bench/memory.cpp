/// Peak memory of reading a large message, one reading a process.
///
///     zelk-bench-memory text COUNT >FILE     writes the text of a state space of COUNT transitions
///     zelk-bench-memory ours|nlohmann FILE   reads it, and prints by how many bytes that raised the peak of
///     the
///                                            memory resident in this process, the text not included
#include "bench/our_messages.h"
#include "bench/peers/nlohmann.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

long long peak()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return 1024LL * usage.ru_maxrss;
}

std::string contentOf(char const* path)
{
    struct stat status {};
    if (stat(path, &status) != 0)
        bench::refuseMessage("no such file");
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file)
        bench::refuseMessage("the file cannot be read");
    return text;
}

template <typename Read>
int report(char const* path, Read read)
{
    std::string const text = contentOf(path);
    long long const before = peak();
    std::size_t const transitions = read(text);
    std::cout << peak() - before << ' ' << transitions << '\n';
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::string_view const what = argc == 3 ? argv[1] : "";
    if (what == "text") {
        std::cout << bench::textOf(bench::sampleStateSpace(std::strtoul(argv[2], nullptr, 10)),
                                   bench::MemberOrder::byName);
        return 0;
    }
    if (what == "ours")
        return report(argv[2], [](std::string const& text) {
            bench::OurStateSpace response;
            response.fromJsonString(text);
            return response.states().size();
        });
    if (what == "nlohmann")
        return report(argv[2], [](std::string const& text) {
            bench::StateSpace message;
            bench::Nlohmann::read(text, message);
            return message.transitions.size();
        });
    std::cerr << "usage: zelk-bench-memory text COUNT | ours FILE | nlohmann FILE\n";
    return 2;
}
