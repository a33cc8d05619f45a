/// Does each work of this library a fixed number of times, so that what it costs can be counted instead of
/// timed: allocations by this program itself, instructions by valgrind's callgrind, which gets one dump a
/// work.
///
/// Prints the compiler, then one line a work: name, operations done, allocations in all.
#include "bench/count_allocations.h"
#include "bench/documents.h"
#include "bench/our_messages.h"
#include "bench/our_tree.h"

#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <valgrind/callgrind.h>

namespace {

using namespace bench;

void measure(std::string const& name, int operations, std::function<void()> const& work)
{
    work(); // lazy set-up, and what a kept object keeps
    work();
    CALLGRIND_START_INSTRUMENTATION;
    std::size_t const before = allocationCount();
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < operations; ++i)
        work();
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    std::size_t const allocations = allocationCount() - before;
    CALLGRIND_STOP_INSTRUMENTATION;
    std::cout << name << ' ' << operations << ' ' << allocations << '\n';
}

template <typename Message>
void measureWrite(std::string const& name, int operations, Message const& message)
{
    OurClass<Message> object;
    fill(object, message);
    measure(name, operations, [&object] { object.toJsonString(); });
}

template <typename Message>
void measureRead(std::string const& name, int operations, std::string const& text)
{
    measure(name, operations, [&text] {
        OurClass<Message> object;
        object.fromJsonString(text);
    });
}

void measureSubscriber()
{
    Subscriber const message = sampleSubscriber();
    std::string const text = textOf(message);
    measure("subscriber/write_fresh", 20, [&message] { Ours::write(message); });
    measureWrite("subscriber/write_kept", 20, message);
    measureRead<Subscriber>("subscriber/read_fresh", 20, text);
    OurSubscriber kept;
    measure("subscriber/read_kept", 20, [&kept, &text] { kept.fromJsonString(text); });
}

void measureStateSpace(std::size_t count, int operations)
{
    StateSpace const message = sampleStateSpace(count);
    std::string const prefix = "states_" + std::to_string(count);
    measureWrite(prefix + "/write", operations, message);
    measure(prefix + "/build_and_write", operations, [&message] { Ours::write(message); });
    measureRead<StateSpace>(prefix + "/read_sorted", operations, textOf(message, MemberOrder::byName));
    measureRead<StateSpace>(prefix + "/read_unsorted", operations, textOf(message, MemberOrder::asInTheForm));
}

void measureRegistration()
{
    Registration const message = sampleRegistration(1000);
    measureWrite("registration_1000/write", 2, message);
    measureRead<Registration>("registration_1000/read", 2, textOf(message));
}

void measureDocument(std::string const& name, std::string const& text)
{
    measure(name + "/parse", 1, [&text] { OurTree::parse(text); });
    OurTree::Tree const tree = OurTree::parse(text);
    measure(name + "/print", 1, [&tree] { OurTree::print(tree); });
}

} // namespace

int main()
{
#ifdef __clang__
    std::cout << "clang++ " << __clang_major__ << '\n';
#else
    std::cout << "g++ " << __GNUC__ << '\n';
#endif
    measureSubscriber();
    measureStateSpace(8, 10);
    measureStateSpace(1000, 2);
    measureRegistration();
    measureDocument("feed", socialFeed());
    measureDocument("outlines", mapOutlines());
    measureDocument("catalogue", catalogue());
}
