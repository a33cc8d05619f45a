/// Times text to tree and tree to text on whole documents. Names: document/work/library.
#include "bench/documents.h"
#include "bench/our_tree.h"
#include "bench/peers/boost_json.h"
#include "bench/peers/nlohmann.h"
#include "bench/peers/rapid_json.h"
#include "bench/verify.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string_view>

namespace {

std::string_view view(std::string const& text)
{
    return text;
}
std::string_view view(rapidjson::StringBuffer const& text)
{
    return {text.GetString(), text.GetSize()};
}

template <typename Library>
void addPrint(std::string const& document, std::string const& text, nlohmann::json const& expected)
{
    std::string const name = document + "/print/" + Library::name;
    auto const tree = std::make_shared<typename Library::Tree const>(Library::parse(text));
    bench::requireJson(view(Library::print(*tree)), expected, name, Library::numbers);
    benchmark::RegisterBenchmark(name.c_str(), [tree](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(Library::print(*tree));
    });
}

/// What is printed is also the proof that parsing was right.
template <typename Library>
void add(std::string const& document, std::shared_ptr<std::string const> text, nlohmann::json const& expected)
{
    addPrint<Library>(document, *text, expected);
    benchmark::RegisterBenchmark((document + "/parse/" + Library::name).c_str(),
                                 [text](benchmark::State& state) {
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(Library::parse(*text));
                                 });
}

void addAll(std::string const& document, std::string const& content)
{
    auto const text = std::make_shared<std::string const>(content);
    nlohmann::json const expected = nlohmann::json::parse(content);
    add<bench::OurTree>(document, text, expected);
    add<bench::Nlohmann>(document, text, expected);
    add<bench::RapidJson>(document, text, expected);
    addPrint<bench::UncheckedRapidJson>(document, *text, expected);
    add<bench::BoostJson<bench::HeapMemory>>(document, text, expected);
    add<bench::BoostJson<bench::MonotonicMemory>>(document, text, expected);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    addAll("feed", bench::socialFeed());
    addAll("outlines", bench::mapOutlines());
    addAll("catalogue", bench::catalogue());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
