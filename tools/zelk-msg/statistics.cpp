#include "tools/zelk-msg/statistics.h"

#include "tools/zelk-msg/table.h"
#include "tools/zelk-msg/view.h"

#include <algorithm>
#include <vector>

namespace ZelkMsg {

namespace {

// An input that names a new client in every message must not take memory without end.
constexpr std::size_t mostRows = 10000;
constexpr char const* others = "(others)";

} // namespace

void Statistics::count(Reception const& reception)
{
    if (!reception.accepted()) {
        bool const known = refused_.size() < mostRows || refused_.count(reception.rule) > 0;
        Sum& sum = refused_[known ? reception.rule : others];
        ++sum.messages;
        sum.bytes += reception.text.size();
        return;
    }
    std::string client = "-";
    if (reception.kind->direction == Direction::command) {
        auto const known = reception.message->writtenKnown();
        client = readable(known["clientname"].asString());
    }
    std::pair<std::string, std::string> key(reception.kind->name, client);
    if (accepted_.size() >= mostRows && accepted_.count(key) == 0)
        key.second = others;
    Sum& sum = accepted_[key];
    ++sum.messages;
    sum.bytes += reception.text.size();
}

void Statistics::print(Output& output) const
{
    Sum all;
    Table table({"kind", "client", ">messages", ">bytes"});
    for (auto const& [key, sum] : accepted_) {
        table.add({key.first, key.second, std::to_string(sum.messages), std::to_string(sum.bytes)});
        all.messages += sum.messages;
        all.bytes += sum.bytes;
    }
    table.add({"all accepted", "", std::to_string(all.messages), std::to_string(all.bytes)});
    table.print(output, "");
    if (refused_.empty())
        return;
    output << "\n";
    std::vector<std::pair<std::string, Sum>> reasons(refused_.begin(), refused_.end());
    std::stable_sort(reasons.begin(), reasons.end(),
                     [](auto const& a, auto const& b) { return a.second.messages > b.second.messages; });
    Sum refused;
    Table failures({"refused because", ">messages", ">bytes"});
    for (auto const& [reason, sum] : reasons) {
        failures.add({readable(reason), std::to_string(sum.messages), std::to_string(sum.bytes)});
        refused.messages += sum.messages;
        refused.bytes += sum.bytes;
    }
    failures.add({"all refused", std::to_string(refused.messages), std::to_string(refused.bytes)});
    failures.print(output, "");
}

} // namespace ZelkMsg
