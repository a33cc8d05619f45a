/// zelk-msg kinds: which messages there are, and the JSON form of each.

#include "framework/json_text.h"
#include "tools/zelk-msg/catalogue.h"
#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/pretty.h"
#include "tools/zelk-msg/table.h"
#include "tools/zelk-msg/trouble.h"

#include <memory>
#include <string>

namespace ZelkMsg {

namespace {

std::string_view senderOf(Direction direction)
{
    switch (direction) {
    case Direction::command:
        return "client to service";
    case Direction::response:
        return "service to client";
    case Direction::record:
        break;
    }
    return "record";
}

std::string idText(Kind const& kind)
{
    return kind.globalEventId ? std::to_string(*kind.globalEventId) : "-";
}

/// The keys of a kind without those that every message of its direction has; those of a list's records in
/// brackets.
std::string ownKeys(Kind const& kind)
{
    std::string text;
    std::string_view open_list;
    auto const close = [&] {
        text += open_list.empty() ? "" : "]";
        open_list = {};
    };
    for (Member const& member : kind.members) {
        // The line below the table names the envelope, but not what addresses a message by its identifier.
        if (inEnvelope(kind, member) && kind.members.front().path != "/MsgId")
            continue;
        std::size_t const star = member.path.find("/*/");
        std::string_view const list =
            star == std::string_view::npos ? std::string_view() : member.path.substr(0, star);
        bool first = text.empty();
        if (list != open_list) {
            close();
            if (!list.empty()) {
                text.append(text.empty() ? "" : " ").append(list.substr(list.rfind('/') + 1)).append("[");
                first = true;
            }
            open_list = list;
        }
        text += first ? "" : " ";
        text += shortName(member) == "?" ? "(any name)" : shortName(member);
        text += member.presence == Presence::required ? "" : "?";
    }
    close();
    return text.empty() ? "-" : text;
}

void listKinds(Output& output)
{
    Table table({"kind", "direction", ">global id", "keys beside the envelope"});
    for (Kind const& kind : kinds())
        table.add(
            {std::string(kind.name), std::string(senderOf(kind.direction)), idText(kind), ownKeys(kind)});
    table.print(output, "");
    output << "\nEnvelope of commands: commandid clientname, and id where there is a global id; of "
              "responses: header, id "
              "in body.\nA ? marks what need not be there, [] the members of a list's items. zelk-msg kinds "
              "KIND shows a kind in full.\n";
}

std::string typeText(Member const& member)
{
    switch (member.reading) {
    case Reading::strict:
        return member.type == Type::number ? "floating-point number" : std::string(nameOf(member.type));
    case Reading::lenient:
        return std::string(nameOf(member.type)) + ", or what converts to it";
    case Reading::ignored:
        break;
    }
    return std::string(nameOf(member.type)) + ", written but not read";
}

std::string presenceText(Presence presence)
{
    switch (presence) {
    case Presence::required:
        return "required";
    case Presence::optional:
        return "optional";
    case Presence::withPrevious:
        break;
    }
    return "with the one before";
}

void describeKind(Kind const& kind, Output& output)
{
    output.print(Style::heading, kind.name) << "  " << senderOf(kind.direction);
    if (kind.globalEventId)
        output << ", global event id " << idText(kind);
    output << "\n" << kind.purpose << "\n\n";
    Table table({"member", "type", "presence", "meaning"});
    for (Member const& member : kind.members)
        table.add({std::string(member.path), typeText(member), presenceText(member.presence),
                   std::string(member.meaning)});
    table.print(output, "");
    output << "\nA * stands for every item of a list, a ? for any name.\n\nExample:\n"
           << prettyText(Zelk::Json::readText(kind.example)) << "\n";
}

struct Options {
    std::string kind;
};

} // namespace

void addKinds(CLI::App& program, Run& run)
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command = program.add_subcommand("kinds", "List the kinds of messages, or describe one");
    command
        ->add_option("KIND", options->kind, "The kind to describe: its JSON form with types, and an example")
        ->type_name("");
    command->footer(
        "Examples:\n"
        "  zelk-msg kinds\n"
        "  zelk-msg kinds RegisterCommand\n"
        "  zelk-msg kinds normalglobaleventcommand-10     (case and angle brackets do not matter)\n"
        "\n"
        "Exit status: 0 fine, 2 no such kind.");
    command->callback([options, &run] {
        run = [options](Output& output) {
            if (options->kind.empty())
                listKinds(output);
            else
                describeKind(kindNamed(options->kind), output);
            return int{fine};
        };
    });
}

} // namespace ZelkMsg
