/// zelk-msg show: messages as people read them.

#include "framework/json_text.h"
#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/differences.h"
#include "tools/zelk-msg/input.h"
#include "tools/zelk-msg/pretty.h"
#include "tools/zelk-msg/statistics.h"
#include "tools/zelk-msg/trouble.h"
#include "tools/zelk-msg/view.h"

#include <algorithm>
#include <fnmatch.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

struct Options {
    std::vector<std::string> files;
    std::vector<std::string> kinds;
    std::vector<std::string> greps;
    bool stats = false;
    bool json = false;
    bool follow = false;
};

/// A condition KEY=VALUE: some member of that name, or at that path, has that value.
class Condition {
public:
    explicit Condition(std::string const& text)
    {
        std::size_t const equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            throw Trouble("--grep wants KEY=VALUE, not '" + text + "'");
        key_ = text.substr(0, equals);
        pattern_ = text.substr(equals + 1);
        try {
            Element value = Zelk::Json::readText(pattern_);
            if (value.GetElementType() == Element::integer || value.GetElementType() == Element::real)
                number_ = std::move(value);
        } catch (Zelk::Json::ParseError const&) { // then it is text
        }
    }

    bool holds(Element const& tree) const
    {
        if (key_.front() == '/') {
            Element const* const value = valueAt(tree, key_);
            return value != nullptr && matches(*value);
        }
        return holdsBelow(tree);
    }

private:
    bool matches(Element const& value) const
    {
        std::string const text =
            value.GetElementType() == Element::string ? value.asString() : Zelk::Json::printText(value);
        return ::fnmatch(pattern_.c_str(), text.c_str(), 0) == 0 ||
               (number_ && differences(*number_, value).empty());
    }

    bool holdsBelow(Element const& node) const
    {
        if (node.GetElementType() == Element::array) {
            MetaData::Array const& items = node;
            return std::any_of(items.begin(), items.end(),
                               [&](Element const& item) { return holdsBelow(item); });
        }
        if (node.GetElementType() != Element::object)
            return false;
        MetaData::Object const& members = node;
        return std::any_of(members.begin(), members.end(), [&](auto const& member) {
            return (member.name() == key_ && matches(member.element())) || holdsBelow(member.element());
        });
    }

    std::string key_;
    std::string pattern_;
    std::optional<Element> number_; // what the pattern says, when it says a number
};

/// Which messages the user wants to see.
class Selection {
public:
    explicit Selection(Options const& options)
    {
        for (std::string const& name : options.kinds)
            kinds_.push_back(&kindNamed(name));
        for (std::string const& text : options.greps)
            conditions_.emplace_back(text);
    }

    bool contains(Reception const& reception) const
    {
        if (!kinds_.empty() && std::find(kinds_.begin(), kinds_.end(), reception.kind) == kinds_.end())
            return false;
        if (conditions_.empty())
            return true;
        if (!reception.accepted())
            return false;
        Element const tree = treeOf(reception);
        return std::all_of(conditions_.begin(), conditions_.end(),
                           [&](Condition const& condition) { return condition.holds(tree); });
    }

private:
    std::vector<Kind const*> kinds_;
    std::vector<Condition> conditions_;
};

int show(Options const& options, Output& output)
{
    if (options.follow && options.files.size() > 1)
        throw Trouble("--follow takes one file only");
    Selection const selection(options);
    Statistics statistics;
    bool const in_view = !options.json && !options.stats;
    // Where both come together on a screen, the view itself says what was refused.
    bool const complain_too = !(in_view && output.isTerminal() && ::isatty(STDERR_FILENO) == 1);

    int const status = readMessages(
        options.files,
        [&](TextSource const& source, Reception& reception) {
            bool const selected = selection.contains(reception);
            if (options.stats) {
                if (selected)
                    statistics.count(reception);
            } else if (selected && in_view) {
                printMessage(output, source.name(), reception);
            } else if (selected && reception.accepted()) {
                output << prettyText(reception.message->written()) << "\n";
            }
            if (!reception.accepted() && !options.stats && complain_too)
                complain(errorLine(source.name(), reception.place, reception.reason));
            if (output.isTerminal())
                output.flush();
        },
        [&output] { output.flush(); }, options.follow);
    if (options.stats)
        statistics.print(output);
    return status;
}

} // namespace

void addShow(CLI::App& program, Run& run)
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command = program.add_subcommand(
        "show", "Show messages: kind, envelope, members; and what is refused, with the reason");
    command->add_option("FILE", options->files, "Files to read; - or none is standard input")->type_name("");
    command->add_option("--kind", options->kinds, "Only messages of this kind; may be repeated")
        ->type_name("KIND")
        ->allow_extra_args(false);
    command
        ->add_option("--grep", options->greps,
                     "Only messages with such a member; KEY is a name or a /path, VALUE may hold * and ?; "
                     "may be repeated, then all must hold")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    auto* const stats = command->add_flag("--stats", options->stats,
                                          "Count messages and bytes by kind and client, and refusals");
    auto* const json =
        command->add_flag("--json", options->json, "Print the messages as indented JSON instead");
    auto* const follow = command->add_flag("--follow", options->follow,
                                           "Go on reading when the file grows, is begun anew or replaced");
    stats->excludes(json);
    follow->excludes(stats);
    command->footer(
        "Examples:\n"
        "  zelk-msg show traffic.jsonl\n"
        "  zelk-msg show --kind CreateSubscriberCommand --grep clientname=door-panel traffic.jsonl\n"
        "  zelk-msg show --grep '/body/id=-9' --json traffic.jsonl\n"
        "  zelk-msg show --stats traffic.jsonl\n"
        "  zelk-msg show --follow traffic.jsonl\n"
        "\n"
        "Exit status: 0 every message was accepted, 1 some were refused, 2 trouble.");
    command->callback(
        [options, &run] { run = [options](Output& output) { return show(*options, output); }; });
}

} // namespace ZelkMsg
