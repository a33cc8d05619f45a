/// zelk-msg: a look into the traffic between clients and the state-machine service.
///
/// Reads the command line and hands over to the command; see commands.h.

#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/input.h"
#include "tools/zelk-msg/memory_limit.h"
#include "tools/zelk-msg/suggest.h"
#include "tools/zelk-msg/trouble.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

using namespace ZelkMsg;

constexpr std::uint64_t smallestLimit = std::uint64_t{32} << 20;

/// The number of bytes that "512M" or "4GiB" stand for; nothing when it is no such size.
std::optional<std::uint64_t> sizeOf(std::string const& text)
{
    std::uint64_t value = 0;
    char const* const end = text.data() + text.size();
    auto const [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || rest == text.data())
        return std::nullopt;
    std::string unit(rest, end);
    std::transform(unit.begin(), unit.end(), unit.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    int shift = 0;
    for (char const letter : {'K', 'M', 'G', 'T'}) {
        shift += 10;
        std::string const prefix(1, letter);
        if (unit == prefix || unit == prefix + "B" || unit == prefix + "IB") {
            constexpr auto most = std::numeric_limits<std::uint64_t>::max();
            return value > most >> shift ? most : value << shift;
        }
    }
    return unit.empty() || unit == "B" ? std::optional(value) : std::nullopt;
}

std::string isSize(std::string const& text)
{
    auto const size = sizeOf(text);
    if (!size)
        return "'" + text + "' is no size such as 512M or 4G";
    return *size < smallestLimit ? "at least 32M are needed" : "";
}

/// A word that no command is called, with the nearest command.
int refuseUsage(CLI::App const& program, CLI::ParseError const& error, int argc, char const* const* argv)
{
    std::string what = error.what();
    std::string help = "zelk-msg --help";
    if (argc == 1) {
        what = "which command?";
    } else if (program.get_subcommands().empty()) {
        for (int i = 1; i < argc; ++i) {
            std::string const word = argv[i];
            if (word.empty() || word.front() == '-')
                continue;
            std::vector<std::string> names;
            for (CLI::App const* const command :
                 program.get_subcommands([](CLI::App const*) { return true; }))
                names.push_back(command->get_name());
            what = "no command is called '" + word + "'" + didYouMean(word, names);
            break;
        }
    } else {
        help = "zelk-msg " + program.get_subcommands().front()->get_name() + " --help";
    }
    complain("zelk-msg: " + what + " (see " + help + ")");
    return trouble;
}

int runProgram(int argc, char const* const* argv)
{
    CLI::App program("Looks into the messages spoken to and by the state-machine service.", "zelk-msg");
    program.set_version_flag("--version", std::string("zelk-msg " ZELK_MSG_VERSION));
    program.set_help_flag("-h,--help", "Print this help and exit");
    program.require_subcommand(1);
    program.fallthrough();

    std::string color = "auto";
    program
        .add_option("--color", color,
                    "Colours: auto (on a terminal, unless NO_COLOR is set), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
        ->type_name("WHEN");
    std::string memory_limit;
    program
        .add_option(
            "--memory-limit", memory_limit,
            "Most memory to take, such as 512M or 4G; a message that needs more is refused (default 1G)")
        ->check(CLI::Validator(isSize, ""))
        ->type_name("SIZE");
    program.footer(
        "Files hold one message a line, messages one after the other, or arrays of messages; - is standard\n"
        "input. Call a command with --help for its options and examples.\n"
        "\n"
        "Exit status: 0 nothing to complain about, 1 messages were refused or differ, 2 trouble.");

    Run run;
    for (auto const add : {addShow, addCheck, addDiff, addGraph, addSequence, addMake, addKinds})
        add(program, run);
    try {
        program.parse(argc, argv);
    } catch (CLI::Success const& e) {
        std::ostringstream help;
        int const status = program.exit(e, help);
        Output output(ColorMode::never);
        output << help.str();
        output.flush();
        return status;
    } catch (CLI::ParseError const& e) {
        return refuseUsage(program, e, argc, argv);
    }

    limitMemory(memory_limit.empty() ? defaultMemoryLimit : *sizeOf(memory_limit));
    Output output(color == "auto"     ? ColorMode::automatic
                  : color == "always" ? ColorMode::always
                                      : ColorMode::never);
    try {
        int const status = run(output);
        output.flush();
        return status;
    } catch (...) {
        output.flush(); // what was printed before the failure was right
        throw;
    }
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): any other exception is a fault of the program and ends it
int main(int argc, char** argv)
{
    // A reader that goes away ends the program, whatever the parent did with the signal.
    std::signal(SIGPIPE, SIG_DFL);
    try {
        return runProgram(argc, argv);
    } catch (Trouble const& e) {
        complain(std::string("zelk-msg: ") + e.what());
    } catch (std::bad_alloc const&) {
        complain("zelk-msg: out of memory (see --memory-limit)");
    }
    return trouble;
}
