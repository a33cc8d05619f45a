/// zelk-msg graph: the transitions of a state space as a drawing.

#include "tools/zelk-msg/commands.h"
#include "tools/zelk-msg/drawing.h"
#include "tools/zelk-msg/graphviz.h"
#include "tools/zelk-msg/input.h"
#include "tools/zelk-msg/state_graph.h"
#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace ZelkMsg {

namespace {

using Zelk::Msgs::LegacyState::StateSpaceMetaDataResponse;

struct Options {
    std::string file = "-";
    std::string svg;
    std::string format = "dot";
    std::string initial;
    std::size_t number = 0;
    bool lint = false;
};

std::string drawing(StateGraph const& graph, std::string const& format)
{
    if (format == "mermaid")
        return mermaidDrawing(graph);
    if (format == "plantuml")
        return plantUmlDrawing(graph);
    std::string const text = dotDrawing(graph);
    return format == "svg" ? svgOf(text) : text;
}

void writeFile(std::string const& name, std::string const& content)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "wb"), std::fclose);
    bool const written = file && std::fwrite(content.data(), 1, content.size(), file.get()) == content.size();
    if (!written || std::fclose(file.release()) != 0)
        throw Trouble(name + ": " + std::generic_category().message(errno));
}

int graph(Options const& options, Output& output)
{
    std::optional<StateSpaceMetaDataResponse> chosen;
    std::size_t seen = 0;
    std::string name;
    int status = readMessages({options.file}, [&](TextSource const& source, Reception& reception) {
        name = source.name();
        if (!reception.accepted()) {
            complain(errorLine(name, reception.place, reception.reason));
            return;
        }
        if (reception.kind != findKind("StateSpaceMetaDataResponse"))
            return;
        ++seen;
        if (options.number != 0 && options.number != seen)
            return;
        chosen.emplace().moveFromMetaData(treeOf(reception));
    });
    if (!chosen && status == trouble)
        return trouble;
    if (!chosen && seen > 0)
        throw Trouble(name + ": there are only " + std::to_string(seen) + " state spaces");
    if (!chosen)
        throw Trouble((name.empty() ? options.file : name) +
                      ": no state space in it (StateSpaceMetaDataResponse)");
    if (options.number == 0 && seen > 1)
        complain("zelk-msg: " + name + ": " + std::to_string(seen) +
                 " state spaces, the last one is drawn (--number chooses another)");

    StateGraph const graph(*chosen, options.initial.empty() ? std::nullopt : std::optional(options.initial));
    if (options.lint) {
        auto const oddities = graph.oddities();
        for (std::string const& oddity : oddities)
            output << oddity << "\n";
        if (!oddities.empty())
            status = std::max<int>(status, findings);
        return status;
    }
    if (options.svg.empty() || options.svg == "-")
        output << drawing(graph, options.svg.empty() ? options.format : "svg");
    else
        writeFile(options.svg, drawing(graph, "svg"));
    return status;
}

} // namespace

void addGraph(CLI::App& program, Run& run)
{
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        program.add_subcommand("graph", "Draw a state space: its states and the transitions between them");
    command->add_option("FILE", options->file, "File with the state space; - or none is standard input")
        ->type_name("");
    auto* const svg = command->add_option(
        "--svg", options->svg, "Write a drawing to this file; - is standard output (needs Graphviz)");
    svg->type_name("OUT.svg");
    auto* const format = command
                             ->add_option("--format", options->format,
                                          "Print it as dot, mermaid, plantuml or svg (that needs Graphviz)")
                             ->check(CLI::IsMember({"dot", "mermaid", "plantuml", "svg"}).description(""))
                             ->type_name("NAME");
    auto* const lint = command->add_flag(
        "--lint", options->lint, "List unreachable states, dead ends and non-deterministic transitions");
    command
        ->add_option("--initial", options->initial,
                     "Initial state; otherwise the start of the first transition")
        ->type_name("STATE");
    command
        ->add_option("--number", options->number, "Which state space of the file, from 1; otherwise the last")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    svg->excludes(format);
    lint->excludes(svg)->excludes(format);
    command->footer(
        "In the drawing, unreachable states are dashed, dead ends have a double border, and transitions\n"
        "that leave one state by the same event to different targets are red.\n"
        "\n"
        "Examples:\n"
        "  zelk-msg graph conversation.jsonl | dot -Tpng > states.png\n"
        "  zelk-msg graph --svg states.svg conversation.jsonl\n"
        "  zelk-msg graph --format mermaid conversation.jsonl\n"
        "  zelk-msg graph --lint --initial Closed conversation.jsonl\n"
        "\n"
        "Exit status: 0 fine, 1 messages were refused or --lint found something, 2 trouble.");
    command->callback(
        [options, &run] { run = [options](Output& output) { return graph(*options, output); }; });
}

} // namespace ZelkMsg
