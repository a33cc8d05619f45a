/// zelk-msg make: a message from the command line.

#include "framework/json_text.h"
#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/composer.h"
#include "tools/zelk-msg/input.h"
#include "tools/zelk-msg/memory_limit.h"
#include "tools/zelk-msg/pretty.h"
#include "tools/zelk-msg/trouble.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZelkMsg {

namespace {

struct Options {
    std::string kind;
    std::vector<std::string> settings;
    std::string edit;
    bool indented = false;
};

/// The JSON object in the file. Throws Trouble, or reports what is wrong with its text and returns nothing.
std::optional<Zelk::MetaData::Element> readObject(std::string const& file)
{
    TextSource source(file, longestText());
    Text text;
    if (!source.next(text))
        throw Trouble(source.name() + ": there is no JSON object");
    Reception reception;
    reception.text = text.bytes;
    reception.begin = {text.line, text.column};
    std::string problem(text.problem);
    std::size_t offset = 0;
    if (problem.empty()) {
        try {
            auto tree = Zelk::Json::readText(text.bytes);
            if (source.next(text))
                throw Trouble(source.name() + ": one JSON object is wanted, not several");
            return tree;
        } catch (Zelk::Json::ParseError const& e) {
            problem = notJson(reception.text, e);
            offset = e.offset();
        }
    }
    complain(errorLine(source.name(), placeAt(reception, offset), problem));
    return std::nullopt;
}

int make(Options const& options, Output& output)
{
    Composer composer(kindNamed(options.kind));
    if (!options.edit.empty()) {
        auto const object = readObject(options.edit);
        if (!object)
            return trouble;
        composer.edit(*object);
    }
    try {
        for (std::string const& setting : options.settings)
            composer.set(setting);
        auto const tree = composer.finish();
        output << (options.indented ? prettyText(tree) : harmless(Zelk::Json::printText(tree))) << "\n";
    } catch (Zelk::Json::PrintError const& e) { // arguments may be no text at all
        throw Trouble(e.what());
    }
    return fine;
}

} // namespace

void addMake(CLI::App& program, Run& run)
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command = program.add_subcommand("make", "Write a message of a kind");
    command->add_option("KIND", options->kind, "The kind, see zelk-msg kinds")->required()->type_name("");
    command
        ->add_option(
            "--set", options->settings,
            "Set a member, by its name or /path; the value is text, or JSON where the member is no string; "
            "may be repeated")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command
        ->add_option(
            "--edit", options->edit,
            "First set members from a JSON object in this file (- is standard input), by their names")
        ->type_name("FILE");
    command->add_flag("--indent", options->indented, "Print it indented instead of on one line");
    command->footer(
        "Members that are not set are as in a fresh message of the class.\n"
        "\n"
        "Examples:\n"
        "  zelk-msg make EnableLogModeCommand --set clientname=ui --set value=true\n"
        "  zelk-msg make RegisterCommand --set ids=7,9 --set type=1,0 --set freq=0.5,2\n"
        "  zelk-msg make XmlAttrToEventMappingResponse --set mode=12 --set level=40\n"
        "  echo '{\"clientname\":\"ui\",\"eventId\":7}' | zelk-msg make DeleteSubscriberCommand --edit -\n"
        "\n"
        "Exit status: 0 fine, 2 a wrong key or value.");
    command->callback(
        [options, &run] { run = [options](Output& output) { return make(*options, output); }; });
}

} // namespace ZelkMsg
