/// zelk-msg check: is every message accepted by its class, and does it come back the same when it is written
/// again?

#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/differences.h"
#include "tools/zelk-msg/input.h"
#include "tools/zelk-msg/memory_limit.h"
#include "tools/zelk-msg/place_in_text.h"
#include "tools/zelk-msg/progress.h"
#include "tools/zelk-msg/text_batches.h"
#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace ZelkMsg {

namespace {

struct Options {
    std::vector<std::string> files;
    bool strict = false;
    bool quiet = false;
    unsigned int jobs = 1;
};

/// What was found in some messages.
struct Report {
    std::string lines;
    std::uint64_t messages = 0;
    std::uint64_t refused = 0;
    std::uint64_t different = 0;
    bool outOfMemory = false;
};

/// Names a difference between what was received and what is written again.
std::string describe(Difference const& difference)
{
    auto const isNumber = [](std::string const& text) {
        return !text.empty() && (text.front() == '-' || (text.front() >= '0' && text.front() <= '9'));
    };
    switch (difference.what) {
    case Difference::What::onlyLeft:
        return "is dropped: " + difference.left;
    case Difference::What::onlyRight:
        return "is added: " + difference.right;
    case Difference::What::changed:
        break;
    }
    bool const numbers = isNumber(difference.left) && isNumber(difference.right);
    return difference.left + " comes back as " + difference.right + (numbers ? " (lost precision)" : "");
}

class Checker {
public:
    explicit Checker(bool strict) : strict_(strict) {}

    void check(std::string const& file, Text const& text, Report& report) const
    {
        receive(text, [&](Reception& reception) { check(file, reception, report); });
    }

private:
    void check(std::string const& file, Reception& reception, Report& report) const
    {
        ++report.messages;
        if (!reception.accepted()) {
            ++report.refused;
            report.outOfMemory = report.outOfMemory || reception.outOfMemory;
            report.lines += errorLine(file, reception.place, reception.reason) + '\n';
            return;
        }
        // What the class alone knows, as text: when it is the very text that came, all is well. This costs
        // least.
        try {
            if (reception.message->textOfKnown() != reception.text)
                checkThoroughly(file, reception, report);
        } catch (std::bad_alloc const&) {
            ++report.refused;
            report.outOfMemory = true;
            report.lines += errorLine(file, reception.begin, tooMuchMemory()) + '\n';
        }
    }

    void checkThoroughly(std::string const& file, Reception& reception, Report& report) const
    {
        auto const received = treeOf(reception);
        auto const known = reception.message->writtenKnown();
        if (received == known)
            return;
        // Members that the class keeps without knowing them come back; only --strict minds.
        auto again = reception.kind->create();
        again->read(treeOf(reception));
        auto const found = differences(received, again->written());
        std::set<std::string> named;
        for (Difference const& difference : found) {
            add(file, reception, difference.path, describe(difference), report);
            named.insert(difference.path);
        }
        bool unknown = false;
        if (strict_) {
            for (Difference const& difference : differences(received, known)) {
                if (difference.what != Difference::What::onlyLeft || named.count(difference.path) > 0)
                    continue;
                unknown = true;
                add(file, reception, difference.path, "unknown member: " + difference.left, report);
            }
        }
        if (!found.empty())
            ++report.different;
        else if (unknown)
            ++report.refused;
    }

    static void add(std::string const& file, Reception const& reception, std::string const& path,
                    std::string const& what, Report& report)
    {
        Place const place = placeAt(reception, offsetOf(reception.text, path));
        report.lines += errorLine(file, place, path + ": " + what) + '\n';
    }

    bool strict_;
};

void add(Report& sum, Report const& part, Output& output)
{
    output << part.lines;
    if (output.isTerminal())
        output.flush();
    sum.messages += part.messages;
    sum.refused += part.refused;
    sum.different += part.different;
}

void checkInOrder(TextSource& source, Checker const& checker, Report& sum, Output& output)
{
    Progress progress(source.name(), source.size());
    Text text;
    while (source.next(text)) {
        Report report;
        checker.check(source.name(), text, report);
        add(sum, report, output);
        progress.show(source.position());
    }
}

void checkInParallel(TextSource& source, Checker const& checker, unsigned int jobs, Report& sum,
                     Output& output)
{
    Progress progress(source.name(), source.size());
    processBatches<Report>(
        source, jobs, longestText() / 4,
        [&](std::vector<Text> const& texts) {
            Report report;
            for (Text const& text : texts)
                checker.check(source.name(), text, report);
            return report;
        },
        [&](Report const& report) {
            add(sum, report, output);
            progress.show(source.position());
        });
}

int check(Options const& options, Output& output)
{
    Checker const checker(options.strict);
    unsigned int const wanted =
        options.jobs == 0 ? std::max(1U, std::thread::hardware_concurrency()) : options.jobs;
    unsigned int const jobs = wanted == 1 ? 1 : makeRoomForThreads(wanted);
    int status = fine;
    Report sum;
    for (std::string const& file : options.files.empty() ? std::vector<std::string>{"-"} : options.files) {
        try {
            TextSource source(file, longestText(), [&output] { output.flush(); });
            if (jobs == 1)
                checkInOrder(source, checker, sum, output);
            else
                checkInParallel(source, checker, jobs, sum, output);
        } catch (UnreadableFile const& e) {
            complain(std::string("zelk-msg: ") + e.what());
            status = trouble;
        }
    }
    if (!options.quiet) {
        std::uint64_t const good = sum.messages - sum.refused - sum.different;
        output << std::to_string(sum.messages) << (sum.messages == 1 ? " message: " : " messages: ");
        output.print(Style::good, std::to_string(good) + " fine") << ", ";
        output.print(sum.refused > 0 ? Style::bad : Style::plain, std::to_string(sum.refused) + " refused")
            << ", ";
        output.print(sum.different > 0 ? Style::bad : Style::plain,
                     std::to_string(sum.different) + " different when written again")
            << "\n";
    }
    if (sum.refused > 0 || sum.different > 0)
        status = std::max<int>(status, findings);
    return status;
}

} // namespace

void addCheck(CLI::App& program, Run& run)
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command = program.add_subcommand(
        "check", "Check that every message is accepted and comes back the same when it is written again");
    command->add_option("FILE", options->files, "Files to read; - or none is standard input")->type_name("");
    command->add_flag("--strict", options->strict, "Refuse members that the class does not know, too");
    command
        ->add_option("-j,--jobs", options->jobs,
                     "Messages are checked by so many threads; 0: one per processor")
        ->type_name("N")
        ->check(CLI::Range(0, 256));
    command->add_flag("-q,--quiet", options->quiet, "Print no summary");
    command->footer(
        "Each finding is a line: file:line:column: /path/of/the/member: what. Numbers of the same value\n"
        "are the same (5 and 5.0), the order of members and white space do not count.\n"
        "\n"
        "Examples:\n"
        "  zelk-msg check traffic.jsonl\n"
        "  zelk-msg check --strict -j 0 big.jsonl\n"
        "  my-client | zelk-msg check --quiet && echo good\n"
        "\n"
        "Exit status: 0 every message is fine, 1 some are refused or differ, 2 trouble.");
    command->callback(
        [options, &run] { run = [options](Output& output) { return check(*options, output); }; });
}

} // namespace ZelkMsg
