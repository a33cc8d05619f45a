/// Times writing and reading of messages. Names: message/work/library.
///
/// Without arguments of its own: the subscriber command, state spaces of 8 and 1,000 transitions, a
/// registration of 1,000 events. With --transitions=COUNT: only the state space of that size.
#include "bench/our_messages.h"
#include "bench/peers/boost_json.h"
#include "bench/peers/by_hand.h"
#include "bench/peers/nlohmann.h"
#include "bench/peers/rapid_json.h"
#include "bench/peers/simdjson.h"
#include "bench/verify.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string_view>

namespace {

using namespace bench;
using std::shared_ptr;

/// A text with the room behind it that simdjson asks for.
shared_ptr<std::string const> padded(std::string const& text)
{
    auto copy = std::make_shared<std::string>();
    copy->reserve(text.size() + simdjson::SIMDJSON_PADDING);
    *copy = text;
    return copy;
}

/// Registers a work that is repeated as it is.
template <typename Work>
void add(std::string const& name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(work());
    });
}

template <typename Library, typename Message>
Message readFresh(std::string const& text)
{
    Message message;
    Library::read(text, message);
    return message;
}

template <typename Message>
bool agree(Message const& actual, Message const& expected, Numbers)
{
    return actual == expected;
}

bool agree(Registration const& actual, Registration const& expected, Numbers numbers)
{
    Registration rounded = actual;
    if (numbers == Numbers::adjacent && actual.events.size() == expected.events.size())
        for (std::size_t i = 0; i < actual.events.size(); ++i)
            if (std::fabs(actual.events[i].filterFreq - expected.events[i].filterFreq) <
                1e-15 * expected.events[i].filterFreq)
                rounded.events[i].filterFreq = expected.events[i].filterFreq;
    return rounded == expected;
}

/// From the values to the text: builds the message, then writes it.
template <typename Library, typename Message>
void addBuildAndWrite(std::string const& work, shared_ptr<Message const> values,
                      nlohmann::json const& expected)
{
    std::string const name = work + "/" + Library::name;
    auto const buildAndWrite = [values] {
        if constexpr (std::is_same_v<Library, Ours>)
            return Ours::write(*values);
        else
            return Library::write(Message(*values));
    };
    requireJson(buildAndWrite(), expected, name, Library::numbers);
    add(name, buildAndWrite);
}

/// From a message that exists already to the text.
template <typename Library, typename Message>
void addWrite(std::string const& work, shared_ptr<Message const> message, nlohmann::json const& expected)
{
    std::string const name = work + "/" + Library::name;
    if constexpr (std::is_same_v<Library, Ours>) {
        auto const object = std::make_shared<OurClass<Message>>();
        fill(*object, *message);
        auto const write = [object] { return object->toJsonString(); };
        requireJson(write(), expected, name, Library::numbers);
        requireJson(write(), expected, name, Library::numbers);
        add(name, write);
    } else {
        auto const write = [message] { return Library::write(*message); };
        requireJson(write(), expected, name, Library::numbers);
        add(name, write);
    }
}

/// From the text to a new message.
template <typename Library, typename Message>
void addRead(std::string const& work, shared_ptr<std::string const> text, Message const& expected)
{
    std::string const name = work + "/" + Library::name;
    if constexpr (std::is_same_v<Library, Ours>) {
        OurClass<Message> object;
        object.fromJsonString(*text);
        require(agree(plain(object), expected, Library::numbers), name);
        benchmark::RegisterBenchmark(name.c_str(), [text](benchmark::State& state) {
            for (auto _ : state) {
                OurClass<Message> fresh;
                fresh.fromJsonString(*text);
                benchmark::DoNotOptimize(fresh);
            }
        });
    } else {
        require(agree(readFresh<Library, Message>(*text), expected, Library::numbers), name);
        add(name, [text] { return readFresh<Library, Message>(*text); });
    }
}

template <typename Library>
void addKeptWrite(std::string const& work, shared_ptr<Subscriber const> message,
                  nlohmann::json const& expected)
{
    std::string const name = work + "/" + Library::name;
    auto const writer = std::make_shared<typename Library::SubscriberWriter>();
    requireJson(writer->write(*message), expected, name, Library::numbers);
    requireJson(writer->write(*message), expected, name, Library::numbers);
    add(name, [writer, message] { return writer->write(*message); });
}

template <typename Library>
void addKeptRead(std::string const& work, shared_ptr<std::string const> text, Subscriber const& expected)
{
    std::string const name = work + "/" + Library::name;
    if constexpr (std::is_same_v<Library, Ours>) {
        auto const object = std::make_shared<OurSubscriber>();
        object->fromJsonString(*text);
        object->fromJsonString(*text);
        require(agree(plain(*object), expected, Library::numbers), name);
        add(name, [object, text] {
            object->fromJsonString(*text);
            return object.get();
        });
    } else {
        auto const message = std::make_shared<Subscriber>();
        Library::read(*text, *message);
        Library::read(*text, *message);
        require(agree(*message, expected, Library::numbers), name);
        add(name, [message, text] {
            Library::read(*text, *message);
            return message.get();
        });
    }
}

void addSubscriber()
{
    auto const message = std::make_shared<Subscriber const>(sampleSubscriber());
    auto const text = padded(textOf(*message));
    auto const value = nlohmann::json::parse(*text);
    auto const trees = [&](auto library) {
        using Library = decltype(library);
        addBuildAndWrite<Library>("subscriber/write_fresh", message, value);
        addRead<Library>("subscriber/read_fresh", text, *message);
        addKeptRead<Library>("subscriber/read_kept", text, *message);
        if constexpr (std::is_same_v<Library, Ours>)
            addWrite<Library>("subscriber/write_kept", message, value);
        else
            addKeptWrite<Library>("subscriber/write_kept", message, value);
    };
    trees(Ours());
    trees(Nlohmann());
    trees(RapidJson());
    trees(BoostJson<HeapMemory>());
    trees(BoostJson<MonotonicMemory>());
    addBuildAndWrite<UncheckedRapidJson>("subscriber/write_fresh", message, value);
    addKeptWrite<UncheckedRapidJson>("subscriber/write_kept", message, value);
    addKeptWrite<ByHand>("subscriber/write_kept", message, value);
    addRead<Simdjson>("subscriber/read_fresh", text, *message);
    addKeptRead<Simdjson>("subscriber/read_kept", text, *message);
}

void addStateSpace(std::size_t count)
{
    auto const message = std::make_shared<StateSpace const>(sampleStateSpace(count));
    auto const sorted = padded(textOf(*message, MemberOrder::byName));
    auto const unsorted = padded(textOf(*message, MemberOrder::asInTheForm));
    auto const value = nlohmann::json::parse(*sorted);
    std::string const prefix = "states_" + std::to_string(count);
    auto const trees = [&](auto library) {
        using Library = decltype(library);
        addWrite<Library>(prefix + "/write", message, value);
        addBuildAndWrite<Library>(prefix + "/build_and_write", message, value);
        addRead<Library>(prefix + "/read_sorted", sorted, *message);
        addRead<Library>(prefix + "/read_unsorted", unsorted, *message);
    };
    trees(Ours());
    trees(Nlohmann());
    trees(RapidJson());
    trees(BoostJson<HeapMemory>());
    trees(BoostJson<MonotonicMemory>());
    addWrite<UncheckedRapidJson>(prefix + "/write", message, value);
    addBuildAndWrite<UncheckedRapidJson>(prefix + "/build_and_write", message, value);
    addRead<Simdjson>(prefix + "/read_sorted", sorted, *message);
    addRead<Simdjson>(prefix + "/read_unsorted", unsorted, *message);
}

void addRegistration()
{
    auto const message = std::make_shared<Registration const>(sampleRegistration(1000));
    auto const text = padded(textOf(*message));
    auto const value = nlohmann::json::parse(*text);
    std::string const prefix = "registration_1000";
    auto const trees = [&](auto library) {
        using Library = decltype(library);
        addWrite<Library>(prefix + "/write", message, value);
        addRead<Library>(prefix + "/read", text, *message);
    };
    trees(Ours());
    trees(Nlohmann());
    trees(RapidJson());
    trees(BoostJson<HeapMemory>());
    trees(BoostJson<MonotonicMemory>());
    addWrite<UncheckedRapidJson>(prefix + "/write", message, value);
    addRead<Simdjson>(prefix + "/read", text, *message);
}

} // namespace

int main(int argc, char** argv)
{
    std::string_view const option = "--transitions=";
    std::size_t transitions = 0;
    if (argc > 1 && std::string_view(argv[argc - 1]).substr(0, option.size()) == option)
        transitions = std::strtoul(argv[--argc] + option.size(), nullptr, 10);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    if (transitions != 0) {
        addStateSpace(transitions);
    } else {
        addSubscriber();
        addStateSpace(8);
        addStateSpace(1000);
        addRegistration();
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
