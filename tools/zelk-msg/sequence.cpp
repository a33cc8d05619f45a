/// zelk-msg sequence: a conversation as a sequence diagram.

#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/input.h"
#include "tools/zelk-msg/mermaid.h"
#include "tools/zelk-msg/table.h"
#include "tools/zelk-msg/trouble.h"
#include "tools/zelk-msg/view.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace ZelkMsg {

namespace {

constexpr char const* service = "service";

struct Options {
    std::vector<std::string> files;
    std::string format = "mermaid";
};

/// One line of the diagram. A note has neither sender nor receiver.
struct Step {
    enum class What { message, answer, note };
    What what;
    std::string line;
    std::string from;
    std::string to;
    std::string text;
    std::string details;
};

/// Turns messages into steps. Responses do not say whom they are for: they go to the client that spoke last.
class Story {
public:
    void add(std::string const& file, Reception& reception)
    {
        std::string const line = file + ':' + std::to_string(reception.begin.line);
        if (!reception.accepted()) {
            steps_.push_back({Step::What::note, line, "", "", "refused", readable(reception.reason)});
            return;
        }
        Kind const& kind = *reception.kind;
        auto const known = reception.message->writtenKnown();
        std::string const details = summary(kind, known);
        switch (kind.direction) {
        case Direction::command:
            client_ = known["clientname"].asString();
            join(client_);
            steps_.push_back({Step::What::message, line, client_, service, nameWithId(kind, known), details});
            break;
        case Direction::response:
            join(client_);
            steps_.push_back({Step::What::answer, line, service, client_, nameWithId(kind, known), details});
            break;
        case Direction::record:
            steps_.push_back({Step::What::note, line, "", "", std::string(kind.name), details});
            break;
        }
    }

    std::vector<Step> const& steps() const { return steps_; }
    /// In the order in which they first speak.
    std::vector<std::string> const& clients() const { return clients_; }
    std::size_t numberOf(std::string const& client) const { return numbers_.at(client); }

private:
    void join(std::string const& client)
    {
        if (numbers_.emplace(client, clients_.size()).second)
            clients_.push_back(client);
    }

    /// The kind; where its id is not bound to it, the id too.
    static std::string nameWithId(Kind const& kind, Zelk::MetaData::Element const& known)
    {
        std::string name(kind.name);
        auto const* const id = valueAt(known, kind.direction == Direction::command ? "/id" : "/body/id");
        if (!kind.globalEventId && id != nullptr)
            name += ' ' + valueText(id);
        return name;
    }

    std::vector<Step> steps_;
    std::vector<std::string> clients_;
    std::unordered_map<std::string, std::size_t> numbers_; // index of each in clients_
    std::string client_ = "client";
};

void printMermaid(Story const& story, Output& output)
{
    auto const idOf = [&](std::string const& client) { return "c" + std::to_string(story.numberOf(client)); };
    output << "sequenceDiagram\n";
    for (std::string const& client : story.clients())
        output << "    participant " << idOf(client) << " as " << mermaidText(readable(client)) << "\n";
    output << "    participant s as service\n";
    for (Step const& step : story.steps()) {
        switch (step.what) {
        case Step::What::message:
            output << "    " << idOf(step.from) << "->>s: ";
            break;
        case Step::What::answer:
            output << "    s-->>" << idOf(step.to) << ": ";
            break;
        case Step::What::note:
            output << "    Note over s: " << mermaidText(step.line) << " ";
            break;
        }
        output << mermaidText(step.text);
        if (!step.details.empty())
            output << "<br/>" << mermaidText(step.details);
        output << "\n";
    }
}

void printText(Story const& story, Output& output)
{
    if (story.steps().empty())
        return;
    Table table({"line", "from", "", "to", "message", "members"});
    for (Step const& step : story.steps()) {
        bool const note = step.what == Step::What::note;
        table.add({step.line, note ? "" : readable(step.from), note ? "" : "->",
                   note ? "" : readable(step.to), step.text, step.details});
    }
    table.print(output, "");
}

int sequence(Options const& options, Output& output)
{
    Story story;
    int const status = readMessages(options.files, [&](TextSource const& source, Reception& reception) {
        if (!reception.accepted())
            complain(errorLine(source.name(), reception.place, reception.reason));
        story.add(source.name(), reception);
    });
    if (options.format == "text")
        printText(story, output);
    else
        printMermaid(story, output);
    return status;
}

} // namespace

void addSequence(CLI::App& program, Run& run)
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        program.add_subcommand("sequence", "Draw a conversation: who sends what to whom, in order");
    command->add_option("FILE", options->files, "Files to read; - or none is standard input")->type_name("");
    command->add_option("--format", options->format, "mermaid (a sequence diagram) or text")
        ->check(CLI::IsMember({"mermaid", "text"}).description(""))
        ->type_name("NAME");
    command->footer("A response goes to the client that spoke last; refused messages and records are notes.\n"
                    "\n"
                    "Examples:\n"
                    "  zelk-msg sequence conversation.jsonl > conversation.mmd\n"
                    "  zelk-msg sequence --format text conversation.jsonl\n"
                    "\n"
                    "Exit status: 0 every message was accepted, 1 some were refused, 2 trouble.");
    command->callback(
        [options, &run] { run = [options](Output& output) { return sequence(*options, output); }; });
}

} // namespace ZelkMsg
