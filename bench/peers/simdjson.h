/// Reading with simdjson on demand: keeps no tree, so it is a bound, not a peer. Its parser is kept, as its
/// manual advises, and a text must have simdjson::SIMDJSON_PADDING bytes of room behind it.
#pragma once

#include "bench/plain_messages.h"
#include "bench/verify.h"

#include <simdjson.h>

namespace bench {

struct Simdjson {
    static constexpr char const* name = "simdjson";
    static constexpr Numbers numbers = Numbers::exact;

    static void read(std::string const& text, Subscriber& message)
    {
        auto document = parse(text);
        assign(message.clientName, document["clientname"]);
        message.commandId = static_cast<unsigned int>(std::int64_t(document["commandid"]));
        message.eventId = static_cast<int>(std::int64_t(document["eventId"]));
        message.filterFreq = double(document["filterFreq"]);
        message.filterType = static_cast<int>(std::int64_t(document["filterType"]));
        if (std::int64_t(document["id"]) != -4)
            refuseMessage("wrong id");
        assign(message.publisherName, document["publisherName"]);
    }

    static void read(std::string const& text, StateSpace& message)
    {
        auto document = parse(text);
        message.transitions.clear();
        for (auto member : document.get_object()) {
            std::string_view const key = member.unescaped_key();
            if (key == "header")
                assign(message.header, member.value());
            else if (key == "body")
                readBody(member.value().get_object(), message);
        }
    }

    static void read(std::string const& text, Registration& message)
    {
        auto document = parse(text);
        assign(message.clientName, document["clientname"]);
        message.commandId = static_cast<unsigned int>(std::int64_t(document["commandid"]));
        message.events.clear();
        for (auto id : document["eventlist"]["ids"])
            message.events.push_back({static_cast<int>(std::int64_t(id)), 0, 0});
        auto filters = document["filterlist"].get_object();
        std::size_t read = 0;
        for (auto frequency : filters["freq"])
            message.events.at(read++).filterFreq = double(frequency);
        if (read != message.events.size())
            refuseMessage("lists of different lengths");
        read = 0;
        for (auto type : filters["type"])
            message.events.at(read++).filterType = static_cast<int>(std::int64_t(type));
        if (read != message.events.size())
            refuseMessage("lists of different lengths");
    }

private:
    static simdjson::ondemand::document parse(std::string const& text)
    {
        static simdjson::ondemand::parser parser;
        return parser.iterate(text.data(), text.size(), text.capacity());
    }

    template <typename Value>
    static void assign(std::string& to, Value value)
    {
        to = std::string_view(value.get_string());
    }

    static void readBody(simdjson::ondemand::object body, StateSpace& message)
    {
        if (std::int64_t(body["id"]) != -9)
            refuseMessage("wrong id");
        for (auto record : body["statelist"]) {
            Transition& transition = message.transitions.emplace_back();
            int required = 0;
            for (auto member : record.get_object()) {
                std::string_view const key = member.unescaped_key();
                if (key == "parametername") {
                    assign(transition.paramName, member.value());
                    continue;
                }
                if (key == "parametertype") {
                    assign(transition.paramType, member.value());
                    continue;
                }
                ++required;
                if (key == "name")
                    assign(transition.name, member.value());
                else if (key == "transition_id")
                    transition.transitionId = static_cast<int>(std::int64_t(member.value()));
                else if (key == "startstate")
                    assign(transition.startState, member.value());
                else if (key == "endState")
                    assign(transition.endState, member.value());
                else if (key == "eventname")
                    assign(transition.eventName, member.value());
                else if (key == "eventid")
                    transition.eventId = static_cast<int>(std::int64_t(member.value()));
                else
                    --required;
            }
            if (required != 6)
                refuseMessage("a member is missing");
        }
    }
};

} // namespace bench
