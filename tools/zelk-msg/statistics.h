/// Counts of messages by kind and client, and of refusals by reason.
#pragma once

#include "tools/zelk-msg/output.h"
#include "tools/zelk-msg/reception.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace ZelkMsg {

class Statistics {
public:
    void count(Reception const& reception);
    void print(Output& output) const;

private:
    struct Sum {
        std::uint64_t messages = 0;
        std::uint64_t bytes = 0;
    };
    using ByKindAndClient = std::map<std::pair<std::string, std::string>, Sum>;

    ByKindAndClient accepted_;
    std::map<std::string, Sum> refused_;
};

} // namespace ZelkMsg
