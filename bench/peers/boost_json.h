/// The measured work done with Boost.JSON, with its default memory and with a monotonic resource for each
/// tree.
#pragma once

#include "bench/plain_messages.h"
#include "bench/verify.h"

#include <boost/json.hpp>

#include <memory>

namespace bench {

/// Each node out of the heap.
struct HeapMemory {
    boost::json::storage_ptr storage() { return {}; }
    boost::json::value parse(std::string const& text) { return boost::json::parse(text); }
};

/// All nodes out of one resource that starts with a buffer on the stack and frees everything at once; the
/// parser works on the stack too.
struct MonotonicMemory {
    boost::json::storage_ptr storage() { return &resource_; }
    boost::json::value parse(std::string const& text)
    {
        unsigned char stack[4096];
        boost::json::parser parser(boost::json::storage_ptr(), boost::json::parse_options(), stack);
        parser.reset(&resource_);
        parser.write(text);
        return parser.release();
    }

private:
    unsigned char start_[4096];
    boost::json::monotonic_resource resource_{start_};
};

template <typename Memory>
struct BoostJson {
    static constexpr char const* name = std::is_same_v<Memory, MonotonicMemory> ? "boost_monotonic" : "boost";
    static constexpr Numbers numbers = Numbers::adjacent;

    /// A value, and the memory it lives in.
    class Tree {
    public:
        explicit Tree(std::string const& text) : value_(memory_->parse(text)) {}
        boost::json::value const& value() const { return value_; }

    private:
        std::unique_ptr<Memory> memory_ = std::make_unique<Memory>();
        boost::json::value value_;
    };

    static Tree parse(std::string const& text) { return Tree(text); }
    static std::string print(Tree const& tree) { return boost::json::serialize(tree.value()); }

    static void fill(boost::json::object& tree, Subscriber const& message)
    {
        tree.reserve(7);
        tree["commandid"] = message.commandId;
        tree["clientname"] = message.clientName;
        tree["id"] = -4;
        tree["publisherName"] = message.publisherName;
        tree["eventId"] = message.eventId;
        tree["filterType"] = message.filterType;
        tree["filterFreq"] = message.filterFreq;
    }

    static void fill(boost::json::object& tree, StateSpace const& message)
    {
        tree["header"] = message.header;
        boost::json::object& body = tree["body"].emplace_object();
        body["id"] = -9;
        boost::json::array& list = body["statelist"].emplace_array();
        list.reserve(message.transitions.size());
        for (Transition const& transition : message.transitions) {
            boost::json::object& record = list.emplace_back(boost::json::object_kind).get_object();
            record.reserve(transition.hasParam() ? 8 : 6);
            record.emplace("name", transition.name);
            record.emplace("transition_id", transition.transitionId);
            record.emplace("startstate", transition.startState);
            record.emplace("endState", transition.endState);
            record.emplace("eventname", transition.eventName);
            record.emplace("eventid", transition.eventId);
            if (transition.hasParam()) {
                record.emplace("parametername", transition.paramName);
                record.emplace("parametertype", transition.paramType);
            }
        }
    }

    static void fill(boost::json::object& tree, Registration const& message)
    {
        tree["commandid"] = message.commandId;
        tree["clientname"] = message.clientName;
        boost::json::array& ids = tree["eventlist"].emplace_object()["ids"].emplace_array();
        boost::json::object& filters = tree["filterlist"].emplace_object();
        filters.reserve(2);
        boost::json::array& types = filters["type"].emplace_array();
        boost::json::array& frequencies = filters["freq"].emplace_array();
        ids.reserve(message.events.size());
        types.reserve(message.events.size());
        frequencies.reserve(message.events.size());
        for (EventFilter const& event : message.events) {
            ids.emplace_back(event.id);
            types.emplace_back(event.filterType);
            frequencies.emplace_back(event.filterFreq);
        }
    }

    template <typename Message>
    static std::string write(Message const& message)
    {
        Memory memory;
        boost::json::object tree(memory.storage());
        fill(tree, message);
        return boost::json::serialize(tree);
    }

    /// Keeps the tree; of a monotonic resource only the memory can be kept, since assigning never frees.
    class SubscriberWriter {
    public:
        std::string write(Subscriber const& message)
        {
            if constexpr (std::is_same_v<Memory, MonotonicMemory>)
                return BoostJson::write(message);
            fill(tree_, message);
            return boost::json::serialize(tree_);
        }

    private:
        boost::json::object tree_;
    };

    static void read(std::string const& text, Subscriber& message)
    {
        Memory memory;
        boost::json::value const parsed = memory.parse(text);
        boost::json::object const& tree = parsed.as_object();
        message.commandId = static_cast<unsigned int>(tree.at("commandid").as_int64());
        assign(message.clientName, tree.at("clientname"));
        if (tree.at("id").as_int64() != -4)
            refuseMessage("wrong id");
        assign(message.publisherName, tree.at("publisherName"));
        message.eventId = static_cast<int>(tree.at("eventId").as_int64());
        message.filterType = static_cast<int>(tree.at("filterType").as_int64());
        message.filterFreq = tree.at("filterFreq").to_number<double>();
    }

    static void read(std::string const& text, StateSpace& message)
    {
        Memory memory;
        boost::json::value const parsed = memory.parse(text);
        boost::json::object const& tree = parsed.as_object();
        assign(message.header, tree.at("header"));
        boost::json::object const& body = tree.at("body").as_object();
        if (body.at("id").as_int64() != -9)
            refuseMessage("wrong id");
        boost::json::array const& list = body.at("statelist").as_array();
        message.transitions.clear();
        message.transitions.reserve(list.size());
        for (boost::json::value const& item : list) {
            boost::json::object const& record = item.as_object();
            Transition& transition = message.transitions.emplace_back();
            assign(transition.name, record.at("name"));
            transition.transitionId = static_cast<int>(record.at("transition_id").as_int64());
            assign(transition.startState, record.at("startstate"));
            assign(transition.endState, record.at("endState"));
            assign(transition.eventName, record.at("eventname"));
            transition.eventId = static_cast<int>(record.at("eventid").as_int64());
            if (boost::json::value const* parameter = record.if_contains("parametername")) {
                assign(transition.paramName, *parameter);
                assign(transition.paramType, record.at("parametertype"));
            }
        }
    }

    static void read(std::string const& text, Registration& message)
    {
        Memory memory;
        boost::json::value const parsed = memory.parse(text);
        boost::json::object const& tree = parsed.as_object();
        message.commandId = static_cast<unsigned int>(tree.at("commandid").as_int64());
        assign(message.clientName, tree.at("clientname"));
        boost::json::array const& ids = tree.at("eventlist").as_object().at("ids").as_array();
        boost::json::object const& filters = tree.at("filterlist").as_object();
        boost::json::array const& types = filters.at("type").as_array();
        boost::json::array const& frequencies = filters.at("freq").as_array();
        if (ids.size() != types.size() || ids.size() != frequencies.size())
            refuseMessage("lists of different lengths");
        message.events.clear();
        message.events.reserve(ids.size());
        for (std::size_t i = 0; i < ids.size(); ++i)
            message.events.push_back({static_cast<int>(ids[i].as_int64()),
                                      static_cast<int>(types[i].as_int64()),
                                      frequencies[i].to_number<double>()});
    }

private:
    static void assign(std::string& to, boost::json::value const& node)
    {
        boost::json::string const& text = node.as_string();
        to.assign(text.data(), text.size());
    }
};

} // namespace bench
