/// The measured work done with nlohmann/json.
#pragma once

#include "bench/plain_messages.h"
#include "bench/verify.h"

#include <nlohmann/json.hpp>

#include <cstdint>

namespace bench {

struct Nlohmann {
    static constexpr char const* name = "nlohmann";
    static constexpr Numbers numbers = Numbers::exact;
    using Tree = nlohmann::json;

    static Tree parse(std::string const& text) { return Tree::parse(text); }
    static std::string print(Tree const& tree) { return tree.dump(); }

    static void fill(Tree& tree, Subscriber const& message)
    {
        tree["commandid"] = message.commandId;
        tree["clientname"] = message.clientName;
        tree["id"] = -4;
        tree["publisherName"] = message.publisherName;
        tree["eventId"] = message.eventId;
        tree["filterType"] = message.filterType;
        tree["filterFreq"] = message.filterFreq;
    }

    static void fill(Tree& tree, StateSpace const& message)
    {
        tree["header"] = message.header;
        Tree& body = tree["body"];
        body["id"] = -9;
        Tree& list = body["statelist"] = Tree::array();
        list.get_ref<Tree::array_t&>().reserve(message.transitions.size());
        for (Transition const& transition : message.transitions) {
            Tree& record = list.emplace_back(Tree::object());
            record["name"] = transition.name;
            record["transition_id"] = transition.transitionId;
            record["startstate"] = transition.startState;
            record["endState"] = transition.endState;
            record["eventname"] = transition.eventName;
            record["eventid"] = transition.eventId;
            if (transition.hasParam()) {
                record["parametername"] = transition.paramName;
                record["parametertype"] = transition.paramType;
            }
        }
    }

    static void fill(Tree& tree, Registration const& message)
    {
        tree["commandid"] = message.commandId;
        tree["clientname"] = message.clientName;
        Tree::array_t ids;
        Tree::array_t types;
        Tree::array_t frequencies;
        ids.reserve(message.events.size());
        types.reserve(message.events.size());
        frequencies.reserve(message.events.size());
        for (EventFilter const& event : message.events) {
            ids.emplace_back(event.id);
            types.emplace_back(event.filterType);
            frequencies.emplace_back(event.filterFreq);
        }
        tree["eventlist"]["ids"] = std::move(ids);
        Tree& filters = tree["filterlist"];
        filters["type"] = std::move(types);
        filters["freq"] = std::move(frequencies);
    }

    template <typename Message>
    static std::string write(Message const& message)
    {
        Tree tree;
        fill(tree, message);
        return print(tree);
    }

    class SubscriberWriter {
    public:
        std::string write(Subscriber const& message)
        {
            fill(tree_, message);
            return print(tree_);
        }

    private:
        Tree tree_;
    };

    static void read(std::string const& text, Subscriber& message)
    {
        Tree const tree = parse(text);
        message.commandId = static_cast<unsigned int>(integer(tree.at("commandid")));
        message.clientName = string(tree.at("clientname"));
        if (integer(tree.at("id")) != -4)
            refuseMessage("wrong id");
        message.publisherName = string(tree.at("publisherName"));
        message.eventId = static_cast<int>(integer(tree.at("eventId")));
        message.filterType = static_cast<int>(integer(tree.at("filterType")));
        message.filterFreq = tree.at("filterFreq").get<double>();
    }

    static void read(std::string const& text, StateSpace& message)
    {
        Tree const tree = parse(text);
        message.header = string(tree.at("header"));
        Tree const& body = tree.at("body");
        if (integer(body.at("id")) != -9)
            refuseMessage("wrong id");
        auto const& list = body.at("statelist").get_ref<Tree::array_t const&>();
        message.transitions.clear();
        message.transitions.reserve(list.size());
        for (Tree const& record : list) {
            Transition& transition = message.transitions.emplace_back();
            transition.name = string(record.at("name"));
            transition.transitionId = static_cast<int>(integer(record.at("transition_id")));
            transition.startState = string(record.at("startstate"));
            transition.endState = string(record.at("endState"));
            transition.eventName = string(record.at("eventname"));
            transition.eventId = static_cast<int>(integer(record.at("eventid")));
            auto const parameter = record.find("parametername");
            if (parameter != record.end()) {
                transition.paramName = string(*parameter);
                transition.paramType = string(record.at("parametertype"));
            }
        }
    }

    static void read(std::string const& text, Registration& message)
    {
        Tree const tree = parse(text);
        message.commandId = static_cast<unsigned int>(integer(tree.at("commandid")));
        message.clientName = string(tree.at("clientname"));
        auto const& ids = tree.at("eventlist").at("ids").get_ref<Tree::array_t const&>();
        Tree const& filters = tree.at("filterlist");
        auto const& types = filters.at("type").get_ref<Tree::array_t const&>();
        auto const& frequencies = filters.at("freq").get_ref<Tree::array_t const&>();
        if (ids.size() != types.size() || ids.size() != frequencies.size())
            refuseMessage("lists of different lengths");
        message.events.clear();
        message.events.reserve(ids.size());
        for (std::size_t i = 0; i < ids.size(); ++i)
            message.events.push_back({static_cast<int>(integer(ids[i])), static_cast<int>(integer(types[i])),
                                      frequencies[i].get<double>()});
    }

private:
    static std::string const& string(Tree const& node) { return node.get_ref<std::string const&>(); }
    static std::int64_t integer(Tree const& node) { return node.get<std::int64_t>(); }
};

} // namespace bench
