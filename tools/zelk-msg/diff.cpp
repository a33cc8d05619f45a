/// zelk-msg diff: what changed from one message or conversation to another.

#include "framework/json_text.h"
#include "tools/zelk-msg/alignment.h"
#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/differences.h"
#include "tools/zelk-msg/input.h"
#include "tools/zelk-msg/trouble.h"
#include "tools/zelk-msg/view.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZelkMsg {

namespace {

struct Options {
    std::string left;
    std::string right;
    bool quiet = false;
};

/// A message as its class read it.
struct Entry {
    Kind const* kind;
    std::size_t line;
    std::string text; ///< as the class writes it, so that equal messages have equal texts
};

struct Conversation {
    std::string name;
    std::vector<Entry> entries;
    int status = fine;
};

Conversation readConversation(std::string const& file)
{
    Conversation conversation;
    conversation.name = file;
    conversation.status = readMessages({file}, [&](TextSource const& source, Reception& reception) {
        conversation.name = source.name();
        if (!reception.accepted()) {
            complain(errorLine(source.name(), reception.place, reception.reason));
            return;
        }
        conversation.entries.push_back(
            {reception.kind, reception.begin.line, Zelk::Json::printText(reception.message->written())});
    });
    return conversation;
}

class Printer {
public:
    Printer(Conversation const& left, Conversation const& right, Output& output)
        : left_(left), right_(right), output_(output)
    {}

    void print(Alignment const& pair) const
    {
        if (!pair.right) {
            printAlone("only in ", Style::bad, left_, *pair.left);
        } else if (!pair.left) {
            printAlone("only in ", Style::good, right_, *pair.right);
        } else {
            Entry const& left = left_.entries[*pair.left];
            Entry const& right = right_.entries[*pair.right];
            output_.print(Style::heading, left.kind->name)
                << "  " << placeOf(left_, left) << "  " << placeOf(right_, right) << "\n";
            for (Difference const& difference : differences(
                     Zelk::Json::readText(left.text), Zelk::Json::readText(right.text), Items::byContent))
                printDifference(difference);
        }
    }

private:
    static std::string placeOf(Conversation const& conversation, Entry const& entry)
    {
        return conversation.name + ':' + std::to_string(entry.line);
    }

    void printAlone(std::string_view words, Style style, Conversation const& conversation,
                    std::size_t index) const
    {
        Entry const& entry = conversation.entries[index];
        output_.print(Style::heading, entry.kind->name)
            << "  " << words << placeOf(conversation, entry) << "\n    ";
        output_.print(style, (style == Style::bad ? "- " : "+ ") + harmless(entry.text)) << "\n";
    }

    void printDifference(Difference const& difference) const
    {
        std::string const path = harmless(difference.path);
        if (!difference.left.empty()) {
            output_ << "    ";
            output_.print(Style::bad, "- " + path + ": " + harmless(difference.left)) << "\n";
        }
        if (!difference.right.empty()) {
            output_ << "    ";
            output_.print(Style::good, "+ " + path + ": " + harmless(difference.right)) << "\n";
        }
    }

    Conversation const& left_;
    Conversation const& right_;
    Output& output_;
};

int diff(Options const& options, Output& output)
{
    if (options.left == "-" && options.right == "-")
        throw Trouble("only one of the two can be standard input");
    Conversation const left = readConversation(options.left);
    Conversation const right = readConversation(options.right);
    Printer const printer(left, right, output);
    int status = fine;
    Identities identities;
    auto const itemsOf = [&](Conversation const& conversation) {
        std::vector<Item> items;
        items.reserve(conversation.entries.size());
        for (Entry const& entry : conversation.entries)
            items.push_back(
                {identities.of(entry.text), static_cast<std::size_t>(entry.kind - &kinds().front())});
        return items;
    };
    auto const pairs = align(itemsOf(left), itemsOf(right));
    for (Alignment const& pair : pairs) {
        if (pair.equal)
            continue;
        status = findings;
        if (!options.quiet)
            printer.print(pair);
    }
    // As for diff, what cannot be read is trouble and not a difference.
    return left.status != fine || right.status != fine ? int{trouble} : status;
}

} // namespace

void addDiff(CLI::App& program, Run& run)
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command = program.add_subcommand(
        "diff", "Compare two messages or two conversations, member by member, by meaning");
    command->add_option("A", options->left, "File with the first; - is standard input")
        ->required()
        ->type_name("");
    command->add_option("B", options->right, "File with the second; - is standard input")
        ->required()
        ->type_name("");
    command->add_flag("-q,--quiet", options->quiet, "Print nothing, only set the exit status");
    command->footer(
        "Messages are compared as their classes read them: 5 and 5.0 are the same where a number is\n"
        "read, the order of members and white space do not count.\n"
        "\n"
        "Examples:\n"
        "  zelk-msg diff yesterday.jsonl today.jsonl\n"
        "  zelk-msg make StateCommand | zelk-msg diff - expected.json\n"
        "\n"
        "Exit status: 0 no difference, 1 differences, 2 trouble or messages that were refused.");
    command->callback(
        [options, &run] { run = [options](Output& output) { return diff(*options, output); }; });
}

} // namespace ZelkMsg
