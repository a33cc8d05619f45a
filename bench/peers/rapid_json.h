/// The measured work done with RapidJSON, which parses with full precision and checks UTF-8. Its writer
/// checks UTF-8 too, as ours does, or, as a bound, does not.
#pragma once

#include "bench/plain_messages.h"
#include "bench/verify.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace bench {

/// Tells the two kinds of writer apart.
enum class Utf8OnWriting { checked, unchecked };

template <Utf8OnWriting utf8>
struct BasicRapidJson {
    static constexpr char const* name = utf8 == Utf8OnWriting::checked ? "rapidjson" : "rapidjson_unchecked";
    static constexpr Numbers numbers = Numbers::exact;
    using Tree = rapidjson::Document;
    using Value = rapidjson::Value;
    using Pool = rapidjson::MemoryPoolAllocator<>;

    static constexpr unsigned int parseFlags =
        rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag;

    static Tree parse(std::string const& text)
    {
        Tree tree;
        parse(text, tree);
        return tree;
    }

    /// The text stays where the library puts it; copying it into a string would not be its own work.
    static rapidjson::StringBuffer print(Tree const& tree)
    {
        rapidjson::StringBuffer buffer;
        print(tree, buffer);
        return buffer;
    }

    static void fill(Tree& tree, Subscriber const& message)
    {
        tree.SetObject();
        auto& pool = tree.GetAllocator();
        tree.AddMember("commandid", message.commandId, pool);
        tree.AddMember("clientname", string(message.clientName, pool), pool);
        tree.AddMember("id", -4, pool);
        tree.AddMember("publisherName", string(message.publisherName, pool), pool);
        tree.AddMember("eventId", message.eventId, pool);
        tree.AddMember("filterType", message.filterType, pool);
        tree.AddMember("filterFreq", message.filterFreq, pool);
    }

    static void fill(Tree& tree, StateSpace const& message)
    {
        tree.SetObject();
        auto& pool = tree.GetAllocator();
        Value list(rapidjson::kArrayType);
        list.Reserve(static_cast<rapidjson::SizeType>(message.transitions.size()), pool);
        for (Transition const& transition : message.transitions) {
            Value record(rapidjson::kObjectType);
            record.AddMember("name", string(transition.name, pool), pool);
            record.AddMember("transition_id", transition.transitionId, pool);
            record.AddMember("startstate", string(transition.startState, pool), pool);
            record.AddMember("endState", string(transition.endState, pool), pool);
            record.AddMember("eventname", string(transition.eventName, pool), pool);
            record.AddMember("eventid", transition.eventId, pool);
            if (transition.hasParam()) {
                record.AddMember("parametername", string(transition.paramName, pool), pool);
                record.AddMember("parametertype", string(transition.paramType, pool), pool);
            }
            list.PushBack(record, pool);
        }
        Value body(rapidjson::kObjectType);
        body.AddMember("id", -9, pool);
        body.AddMember("statelist", list, pool);
        tree.AddMember("header", string(message.header, pool), pool);
        tree.AddMember("body", body, pool);
    }

    static void fill(Tree& tree, Registration const& message)
    {
        tree.SetObject();
        auto& pool = tree.GetAllocator();
        auto const count = static_cast<rapidjson::SizeType>(message.events.size());
        Value ids(rapidjson::kArrayType);
        Value types(rapidjson::kArrayType);
        Value frequencies(rapidjson::kArrayType);
        ids.Reserve(count, pool);
        types.Reserve(count, pool);
        frequencies.Reserve(count, pool);
        for (EventFilter const& event : message.events) {
            ids.PushBack(event.id, pool);
            types.PushBack(event.filterType, pool);
            frequencies.PushBack(event.filterFreq, pool);
        }
        tree.AddMember("commandid", message.commandId, pool);
        tree.AddMember("clientname", string(message.clientName, pool), pool);
        tree.AddMember("eventlist", Value(rapidjson::kObjectType).AddMember("ids", ids, pool), pool);
        Value filters(rapidjson::kObjectType);
        filters.AddMember("type", types, pool);
        filters.AddMember("freq", frequencies, pool);
        tree.AddMember("filterlist", filters, pool);
    }

    template <typename Message>
    static std::string write(Message const& message)
    {
        Tree tree;
        fill(tree, message);
        rapidjson::StringBuffer const buffer = print(tree);
        return {buffer.GetString(), buffer.GetSize()};
    }

    /// Keeps the memory of the tree and of the text from one message to the next.
    class SubscriberWriter {
    public:
        std::string write(Subscriber const& message)
        {
            Pool pool(memory_, sizeof memory_);
            Tree tree(&pool);
            fill(tree, message);
            buffer_.Clear();
            print(tree, buffer_);
            return {buffer_.GetString(), buffer_.GetSize()};
        }

    private:
        alignas(16) char memory_[4096];
        rapidjson::StringBuffer buffer_;
    };

    static void read(std::string const& text, Subscriber& message)
    {
        Tree tree;
        parse(text, tree);
        message.commandId = static_cast<unsigned int>(integer(member(tree, "commandid")));
        message.clientName = string(member(tree, "clientname"));
        if (integer(member(tree, "id")) != -4)
            refuseMessage("wrong id");
        message.publisherName = string(member(tree, "publisherName"));
        message.eventId = static_cast<int>(integer(member(tree, "eventId")));
        message.filterType = static_cast<int>(integer(member(tree, "filterType")));
        message.filterFreq = real(member(tree, "filterFreq"));
    }

    static void read(std::string const& text, StateSpace& message)
    {
        Tree tree;
        parse(text, tree);
        message.header = string(member(tree, "header"));
        Value const& body = member(tree, "body");
        if (integer(member(body, "id")) != -9)
            refuseMessage("wrong id");
        Value const& list = array(member(body, "statelist"));
        message.transitions.clear();
        message.transitions.reserve(list.Size());
        for (Value const& record : list.GetArray()) {
            Transition& transition = message.transitions.emplace_back();
            transition.name = string(member(record, "name"));
            transition.transitionId = static_cast<int>(integer(member(record, "transition_id")));
            transition.startState = string(member(record, "startstate"));
            transition.endState = string(member(record, "endState"));
            transition.eventName = string(member(record, "eventname"));
            transition.eventId = static_cast<int>(integer(member(record, "eventid")));
            auto const parameter = record.FindMember("parametername");
            if (parameter != record.MemberEnd()) {
                transition.paramName = string(parameter->value);
                transition.paramType = string(member(record, "parametertype"));
            }
        }
    }

    static void read(std::string const& text, Registration& message)
    {
        Tree tree;
        parse(text, tree);
        message.commandId = static_cast<unsigned int>(integer(member(tree, "commandid")));
        message.clientName = string(member(tree, "clientname"));
        Value const& ids = array(member(member(tree, "eventlist"), "ids"));
        Value const& filters = member(tree, "filterlist");
        Value const& types = array(member(filters, "type"));
        Value const& frequencies = array(member(filters, "freq"));
        if (ids.Size() != types.Size() || ids.Size() != frequencies.Size())
            refuseMessage("lists of different lengths");
        message.events.clear();
        message.events.reserve(ids.Size());
        for (rapidjson::SizeType i = 0; i < ids.Size(); ++i)
            message.events.push_back({static_cast<int>(integer(ids[i])), static_cast<int>(integer(types[i])),
                                      real(frequencies[i])});
    }

private:
    static void parse(std::string const& text, Tree& tree)
    {
        if (tree.Parse<parseFlags>(text.c_str()).HasParseError())
            refuseMessage("does not parse");
    }
    static void print(Tree const& tree, rapidjson::StringBuffer& buffer)
    {
        constexpr unsigned int flags =
            utf8 == Utf8OnWriting::checked ? rapidjson::kWriteValidateEncodingFlag : rapidjson::kWriteNoFlags;
        rapidjson::Writer<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>,
                          rapidjson::CrtAllocator, flags>
            writer(buffer);
        if (!tree.Accept(writer))
            refuseMessage("cannot be printed");
    }
    static Value string(std::string const& text, Pool& pool)
    {
        return Value(text.data(), static_cast<rapidjson::SizeType>(text.size()), pool);
    }

    static Value const& member(Value const& object, rapidjson::Value::StringRefType key)
    {
        if (!object.IsObject())
            refuseMessage("not an object");
        auto const found = object.FindMember(Value(key));
        if (found == object.MemberEnd())
            refuseMessage("a member is missing");
        return found->value;
    }
    static Value const& array(Value const& node)
    {
        if (!node.IsArray())
            refuseMessage("not an array");
        return node;
    }
    static std::string string(Value const& node)
    {
        if (!node.IsString())
            refuseMessage("not a string");
        return {node.GetString(), node.GetStringLength()};
    }
    static std::int64_t integer(Value const& node)
    {
        if (!node.IsInt64())
            refuseMessage("not an integer");
        return node.GetInt64();
    }
    static double real(Value const& node)
    {
        if (!node.IsNumber())
            refuseMessage("not a number");
        return node.GetDouble();
    }
};

using RapidJson = BasicRapidJson<Utf8OnWriting::checked>;
using UncheckedRapidJson = BasicRapidJson<Utf8OnWriting::unchecked>;

} // namespace bench
