#include "framework/serializable.h"
#include "nodes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ios>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Zelk::Json {
namespace {

using MetaData::Element;
using MetaData::MissingMemberError;
using MetaData::TypeError;
using Tests::array;
using Tests::boolean;
using Tests::integer;
using Tests::object;
using Tests::real;
using Tests::text;

// ---- records

class Record : public Serializable {
public:
    Record() = default;
    Record(std::string recordName, double recordFreq) : name(std::move(recordName)), freq(recordFreq) {}

    void copyToMetaData(Element& target) const override
    {
        ++writes;
        target["name"] = text(name);
        target["freq"] = real(freq);
    }
    void copyFromMetaData(Element const& source) override
    {
        ++reads;
        name = source["name"].asString();
        freq = source["freq"].asDouble();
    }

    std::string name = "default";
    double freq = 0;
    mutable int writes = 0;
    int reads = 0;
};

Element const recordTree = object({{"name", text("n")}, {"freq", real(0.5)}});
std::string const recordText = R"({"freq":0.5,"name":"n"})";

TEST(Serializable, WritesItselfAsTextInAllForms)
{
    Record record("n", 0.5);
    std::ostringstream stream;
    record.toJson(stream);
    EXPECT_EQ(stream.str(), recordText);
    EXPECT_EQ(record.toJsonString(), recordText);
    std::ostringstream moved;
    record.moveToJson(moved);
    EXPECT_EQ(moved.str(), recordText);
    EXPECT_EQ(record.moveToJsonString(), recordText);
    EXPECT_EQ(record.writes, 4);
}

TEST(Serializable, ReadsItselfFromTextInAllForms)
{
    Record fromStream;
    std::istringstream stream(recordText);
    fromStream.fromJson(stream);
    EXPECT_EQ(fromStream.name, "n");
    EXPECT_EQ(fromStream.freq, 0.5);
    Record fromString;
    fromString.fromJsonString(" " + recordText + "\n");
    EXPECT_EQ(fromString.name, "n");
    EXPECT_EQ(fromString.freq, 0.5);
    EXPECT_EQ(fromString.reads, 1);
}

TEST(Serializable, MoveFormsCallTheCopyForms)
{
    Record record("n", 0.5);
    Element target;
    record.moveToMetaData(target);
    EXPECT_EQ(target, recordTree);
    EXPECT_EQ(record.name, "n");
    EXPECT_EQ(record.writes, 1);

    Record read;
    Element source = recordTree;
    read.moveFromMetaData(std::move(source));
    EXPECT_EQ(read.name, "n");
    EXPECT_EQ(read.reads, 1);
}

TEST(Serializable, IsUnchangedWhenTheTextDoesNotParse)
{
    Record record("former", 2);
    EXPECT_THROW(record.fromJsonString("{\"name\":\"n\",\"freq\":0.5"), ParseError);
    std::istringstream stream(recordText + "x");
    EXPECT_THROW(record.fromJson(stream), ParseError);
    std::istringstream failed(recordText);
    failed.setstate(std::ios_base::failbit);
    EXPECT_THROW(record.fromJson(failed), std::ios_base::failure);
    EXPECT_EQ(record.name, "former");
    EXPECT_EQ(record.freq, 2);
    EXPECT_EQ(record.reads, 0);
}

TEST(Serializable, PassesOnWhatItsOwnReadingThrows)
{
    Record record;
    EXPECT_THROW(record.fromJsonString("{}"), MissingMemberError);
    EXPECT_THROW(record.fromJsonString("[]"), TypeError);
    EXPECT_THROW(record.fromJsonString(R"({"name":"kept","freq":1})"), TypeError);
    EXPECT_EQ(record.name, "kept");
}

TEST(Serializable, WritesNothingThatCannotBePrinted)
{
    Record record("n", std::numeric_limits<double>::infinity());
    std::ostringstream stream;
    EXPECT_THROW(record.toJson(stream), PrintError);
    EXPECT_THROW(record.moveToJson(stream), PrintError);
    EXPECT_EQ(stream.str(), "");
    EXPECT_TRUE(stream.good());
    EXPECT_THROW(record.toJsonString(), PrintError);
    EXPECT_THROW(record.moveToJsonString(), PrintError);

    Record good("n", 0.5);
    stream.setstate(std::ios_base::failbit);
    EXPECT_THROW(good.toJson(stream), std::ios_base::failure);
    EXPECT_THROW(good.moveToJson(stream), std::ios_base::failure);
    EXPECT_EQ(stream.str(), "");
}

TEST(Serializable, FromElementFillsADefaultRecord)
{
    Record const record = Serializable::fromElement<Record>(recordTree);
    EXPECT_EQ(record.name, "n");
    EXPECT_EQ(record.freq, 0.5);
    EXPECT_EQ(record.reads, 1);
    EXPECT_THROW(Serializable::fromElement<Record>(object({{"name", text("n")}})), MissingMemberError);
    EXPECT_THROW(Serializable::fromElement<Record>(Element()), TypeError);
}

// ---- messages

/// Two levels of a message; the log tells the order in which the hooks do their work.
class Message : public PartiallyDeserializable {
public:
    void copyToInternalMetaData() const override
    {
        log.push_back("write name");
        elementImpl(metaData(), "name") = text(name);
    }
    void copyFromInternalMetaData() override
    {
        log.push_back("read name");
        name = elementImpl(metaData(), "name").asString();
    }

    std::string name;
    mutable std::vector<std::string> log;
};

class NumberedMessage : public Message {
public:
    void copyToInternalMetaData() const override
    {
        Message::copyToInternalMetaData();
        log.push_back("write id");
        elementImpl(metaData(), "id") = integer(id);
        elementImpl(metaData(), "freq") = real(freq);
    }
    void copyFromInternalMetaData() override
    {
        Message::copyFromInternalMetaData();
        log.push_back("read id");
        if (element<int>("id") != id)
            throw std::runtime_error("wrong id");
        freq = element<double>("freq");
    }

    int id = -3;
    double freq = 0;
};

NumberedMessage message(std::string name, double freq)
{
    NumberedMessage result;
    result.name = std::move(name);
    result.freq = freq;
    return result;
}

Element messageTree(std::string const& name, double freq)
{
    return object({{"name", text(name)}, {"id", integer(-3)}, {"freq", real(freq)}});
}

std::string const messageText = R"({"freq":0.5,"id":-3,"name":"n"})";

TEST(PartiallyDeserializable, WritesAndReadsBaseLevelsFirst)
{
    NumberedMessage written = message("n", 0.5);
    Element tree;
    written.copyToMetaData(tree);
    EXPECT_EQ(written.log, (std::vector<std::string>{"write name", "write id"}));
    written.log.clear();
    written.copyFromMetaData(tree);
    EXPECT_EQ(written.log, (std::vector<std::string>{"read name", "read id"}));
}

TEST(PartiallyDeserializable, WritesItselfAsTextAndLeavesTheTreeFilled)
{
    NumberedMessage const written = message("n", 0.5);
    std::ostringstream stream;
    written.toJson(stream);
    EXPECT_EQ(stream.str(), messageText);
    EXPECT_EQ(written.metaData(), messageTree("n", 0.5));

    NumberedMessage const toString = message("n", 0.5);
    EXPECT_EQ(toString.toJsonString(), messageText);
    EXPECT_EQ(toString.metaData(), messageTree("n", 0.5));
    EXPECT_EQ(toString.toJsonString(), messageText);
}

TEST(PartiallyDeserializable, CopiesItsTreeOutAndLeavesItFilled)
{
    NumberedMessage const written = message("n", 0.5);
    Element target = array({integer(1)});
    written.copyToMetaData(target);
    EXPECT_EQ(target, messageTree("n", 0.5));
    EXPECT_EQ(written.metaData(), target);
    target["name"] = text("changed");
    EXPECT_EQ(written.metaData(), messageTree("n", 0.5));
}

TEST(PartiallyDeserializable, MovesItsTreeOutAndKeepsItsMembers)
{
    NumberedMessage written = message("n", 0.5);
    Element target = array({integer(1)});
    written.moveToMetaData(target);
    EXPECT_EQ(target, messageTree("n", 0.5));
    EXPECT_EQ(written.metaData(), Element());
    EXPECT_EQ(written.name, "n");
    EXPECT_EQ(written.freq, 0.5);
    EXPECT_EQ(written.toJsonString(), messageText);

    std::ostringstream stream;
    written.moveToJson(stream);
    EXPECT_EQ(stream.str(), messageText);
    EXPECT_EQ(written.metaData(), Element());
    EXPECT_EQ(written.moveToJsonString(), messageText);
    EXPECT_EQ(written.metaData(), Element());
    EXPECT_EQ(written.name, "n");
}

TEST(PartiallyDeserializable, KeepsItsTreeWhenItCannotBePrinted)
{
    NumberedMessage written = message("n", std::numeric_limits<double>::infinity());
    Element const expected = messageTree("n", std::numeric_limits<double>::infinity());
    std::ostringstream stream;
    EXPECT_THROW(written.toJson(stream), PrintError);
    EXPECT_EQ(written.metaData(), expected);
    EXPECT_THROW(written.moveToJson(stream), PrintError);
    EXPECT_EQ(written.metaData(), expected);
    EXPECT_THROW(written.toJsonString(), PrintError);
    EXPECT_EQ(written.metaData(), expected);
    EXPECT_THROW(written.moveToJsonString(), PrintError);
    EXPECT_EQ(written.metaData(), expected);
    EXPECT_EQ(stream.str(), "");
    EXPECT_TRUE(stream.good());

    NumberedMessage good = message("n", 0.5);
    stream.setstate(std::ios_base::badbit);
    EXPECT_THROW(good.moveToJson(stream), std::ios_base::failure);
    EXPECT_EQ(good.metaData(), messageTree("n", 0.5));
}

TEST(PartiallyDeserializable, MoveFormsOfWritingCallTheMoveHook)
{
    struct Moving : NumberedMessage {
        void moveToInternalMetaData() override
        {
            PartiallyDeserializable::moveToInternalMetaData();
            name.clear();
        }
    };
    Moving toTree;
    toTree.name = "n";
    Element target;
    toTree.moveToMetaData(target);
    EXPECT_EQ(target["name"].asString(), "n");
    EXPECT_EQ(toTree.name, "");
    Moving toText;
    toText.name = "n";
    EXPECT_NE(toText.moveToJsonString().find("\"n\""), std::string::npos);
    EXPECT_EQ(toText.name, "");
    Moving toStream;
    toStream.name = "n";
    std::ostringstream stream;
    toStream.moveToJson(stream);
    EXPECT_NE(stream.str().find("\"n\""), std::string::npos);
    EXPECT_EQ(toStream.name, "");
    Moving copied;
    copied.name = "n";
    copied.copyToMetaData(target);
    EXPECT_EQ(copied.name, "n");
}

TEST(PartiallyDeserializable, ReadsItselfInAllForms)
{
    NumberedMessage fromString;
    fromString.fromJsonString(messageText);
    NumberedMessage fromStream;
    std::istringstream stream(messageText);
    fromStream.fromJson(stream);
    NumberedMessage copied;
    Element const source = messageTree("n", 0.5);
    copied.copyFromMetaData(source);
    NumberedMessage moved;
    Element movedSource = source;
    moved.moveFromMetaData(std::move(movedSource));
    EXPECT_EQ(movedSource, Element());
    for (NumberedMessage* const read : {&fromString, &fromStream, &copied, &moved}) {
        EXPECT_EQ(read->name, "n");
        EXPECT_EQ(read->freq, 0.5);
        EXPECT_EQ(read->metaData(), source);
    }
}

TEST(PartiallyDeserializable, WritesOutMembersThatItDoesNotKnow)
{
    NumberedMessage read;
    read.fromJsonString(R"({"future":[{"x":1}],"name":"n","freq":0.5,"id":-3})");
    read.name = "renamed";
    EXPECT_EQ(read.toJsonString(), R"({"freq":0.5,"future":[{"x":1}],"id":-3,"name":"renamed"})");
    read.fromJsonString(messageText);
    EXPECT_EQ(read.toJsonString(), messageText) << "a read replaces the whole tree";
}

TEST(PartiallyDeserializable, IsUnchangedWhenTheTextDoesNotParse)
{
    NumberedMessage read;
    read.fromJsonString(messageText);
    EXPECT_THROW(read.fromJsonString("{\"name\":\"other\",}"), ParseError);
    std::istringstream stream("[");
    EXPECT_THROW(read.fromJson(stream), ParseError);
    std::istringstream failed(messageText);
    failed.setstate(std::ios_base::eofbit);
    EXPECT_THROW(read.fromJson(failed), std::ios_base::failure);
    EXPECT_EQ(read.name, "n");
    EXPECT_EQ(read.freq, 0.5);
    EXPECT_EQ(read.metaData(), messageTree("n", 0.5));
}

Element const wrongTree = object({{"name", text("half")}, {"id", integer(4)}, {"freq", real(9)}});

TEST(PartiallyDeserializable, PutsItsFormerTreeBackWhenAReadFails)
{
    enum class Form { copy, move, string, stream };
    for (Form const form : {Form::copy, Form::move, Form::string, Form::stream})
        for (Element const& bad :
             {wrongTree, array({integer(1)}), integer(5), Element(), Element(MetaData::Object())}) {
            NumberedMessage read;
            read.fromJsonString(R"({"future":1,"name":"n","freq":0.5,"id":-3})");
            Element const former = read.metaData();
            Element source = bad;
            switch (form) {
            case Form::copy:
                EXPECT_THROW(read.copyFromMetaData(source), std::runtime_error);
                EXPECT_EQ(source, bad);
                break;
            case Form::move:
                EXPECT_THROW(read.moveFromMetaData(std::move(source)), std::runtime_error);
                break;
            case Form::string:
                EXPECT_THROW(read.fromJsonString(printText(bad)), std::runtime_error);
                break;
            case Form::stream: {
                std::istringstream stream(printText(bad));
                EXPECT_THROW(read.fromJson(stream), std::runtime_error);
                break;
            }
            }
            EXPECT_EQ(read.metaData(), former);
            EXPECT_EQ(read.freq, 0.5);
            EXPECT_EQ(read.name, bad == wrongTree ? "half" : "n")
                << "members read before the failure keep their values";
            EXPECT_EQ(read.toJsonString(), R"({"freq":0.5,"future":1,"id":-3,"name":")" + read.name + "\"}");
        }
}

TEST(PartiallyDeserializable, GivesTheSourceItsTreeBackWhenAMoveFails)
{
    NumberedMessage read;
    Element source = wrongTree;
    EXPECT_THROW(read.moveFromMetaData(std::move(source)), std::runtime_error);
    EXPECT_EQ(source, wrongTree);
    EXPECT_EQ(read.metaData(), Element());
}

TEST(PartiallyDeserializable, TreatsItsOwnTreeAsASource)
{
    Element const tree =
        object({{"name", text("n")}, {"id", integer(-3)}, {"freq", real(0.5)}, {"more", integer(1)}});
    NumberedMessage copied;
    copied.metaData() = tree;
    copied.copyFromMetaData(copied.metaData());
    NumberedMessage moved;
    moved.metaData() = tree;
    moved.moveFromMetaData(std::move(moved.metaData()));
    for (NumberedMessage* const read : {&copied, &moved}) {
        EXPECT_EQ(read->name, "n");
        EXPECT_EQ(read->freq, 0.5);
        EXPECT_EQ(read->metaData(), tree);
    }

    copied.metaData() = wrongTree;
    EXPECT_THROW(copied.copyFromMetaData(copied.metaData()), std::runtime_error);
    EXPECT_EQ(copied.metaData(), wrongTree);
    moved.metaData() = wrongTree;
    EXPECT_THROW(moved.moveFromMetaData(std::move(moved.metaData())), std::runtime_error);
    EXPECT_EQ(moved.metaData(), wrongTree);
}

TEST(PartiallyDeserializable, TreatsAPartOfItsOwnTreeAsASource)
{
    Element const tree = object({{"inside", messageTree("n", 0.5)}, {"more", integer(1)}});
    NumberedMessage copied;
    copied.metaData() = tree;
    copied.copyFromMetaData(copied.metaData()["inside"]);
    EXPECT_EQ(copied.name, "n");
    EXPECT_EQ(copied.metaData(), messageTree("n", 0.5));
    NumberedMessage moved;
    moved.metaData() = tree;
    moved.moveFromMetaData(std::move(moved.metaData()["inside"]));
    EXPECT_EQ(moved.name, "n");
    EXPECT_EQ(moved.metaData(), messageTree("n", 0.5));

    Element const wrong = object({{"inside", wrongTree}, {"more", integer(1)}});
    copied.metaData() = wrong;
    EXPECT_THROW(copied.copyFromMetaData(copied.metaData()["inside"]), std::runtime_error);
    EXPECT_EQ(copied.metaData(), wrong);
    moved.metaData() = wrong;
    EXPECT_THROW(moved.moveFromMetaData(std::move(moved.metaData()["inside"])), std::runtime_error);
    EXPECT_EQ(moved.metaData(), wrong);
}

TEST(PartiallyDeserializable, TreatsItsOwnTreeAsATarget)
{
    NumberedMessage written = message("n", 0.5);
    written.copyToMetaData(written.metaData());
    EXPECT_EQ(written.metaData(), messageTree("n", 0.5));
    written.name = "m";
    written.moveToMetaData(written.metaData());
    EXPECT_EQ(written.metaData(), messageTree("m", 0.5));
}

TEST(PartiallyDeserializable, DoesNotTouchTheTargetWhenItsWritingFails)
{
    NumberedMessage written = message("n", 0.5);
    written.metaData() = integer(1); // no members can be written into it
    Element target = text("former");
    EXPECT_THROW(written.copyToMetaData(target), TypeError);
    EXPECT_THROW(written.moveToMetaData(target), TypeError);
    EXPECT_EQ(target, text("former"));
    EXPECT_EQ(written.metaData(), integer(1));
    std::ostringstream stream;
    EXPECT_THROW(written.toJson(stream), TypeError);
    EXPECT_THROW(written.moveToJson(stream), TypeError);
    EXPECT_THROW(written.toJsonString(), TypeError);
    EXPECT_THROW(written.moveToJsonString(), TypeError);
    EXPECT_EQ(stream.str(), "");
}

TEST(PartiallyDeserializable, HookCalledDirectlyRestoresNothing)
{
    NumberedMessage read;
    read.fromJsonString(messageText);
    read.metaData() = wrongTree;
    EXPECT_THROW(read.copyFromInternalMetaData(), std::runtime_error);
    EXPECT_EQ(read.metaData(), wrongTree);
}

TEST(PartiallyDeserializable, CopiesAreIndependent)
{
    NumberedMessage original;
    original.fromJsonString(R"({"future":1,"name":"n","freq":0.5,"id":-3})");
    NumberedMessage copy = original;
    copy.metaData()["future"] = integer(2);
    NumberedMessage assigned;
    assigned = original;
    EXPECT_EQ(original.metaData()["future"], integer(1));
    EXPECT_EQ(assigned.metaData(), original.metaData());
    EXPECT_EQ(copy.metaData()["future"], integer(2));
}

TEST(PartiallyDeserializable, IsUsedThroughItsVirtualBase)
{
    NumberedMessage written = message("n", 0.5);
    Serializable& base = written;
    EXPECT_EQ(base.toJsonString(), messageText);
    base.fromJsonString(R"({"freq":1.5,"id":-3,"name":"m"})");
    EXPECT_EQ(written.name, "m");
    EXPECT_EQ(base.moveToJsonString(), R"({"freq":1.5,"id":-3,"name":"m"})");
    EXPECT_EQ(written.metaData(), Element());
}

// Writing text lends a message's tree to the printer instead of copying it. Nobody may see that.

/// Writes the tree of a message and something of its own.
class Envelope : public Serializable {
public:
    void copyToMetaData(Element& target) const override
    {
        first.copyToMetaData(target);
        target["stamp"] = integer(7);
        if (second != nullptr)
            second->copyToMetaData(target);
    }
    void copyFromMetaData(Element const& source) override { first.copyFromMetaData(source); }

    NumberedMessage first = message("n", 0.5);
    NumberedMessage* second = nullptr;
};

TEST(PartiallyDeserializable, KeepsWhatAnEnvelopeAddsOutOfItsOwnTree)
{
    Envelope envelope;
    EXPECT_EQ(envelope.toJsonString(), R"({"freq":0.5,"id":-3,"name":"n","stamp":7})");
    EXPECT_EQ(envelope.first.metaData(), messageTree("n", 0.5));
    std::ostringstream stream;
    envelope.toJson(stream);
    EXPECT_EQ(stream.str(), R"({"freq":0.5,"id":-3,"name":"n","stamp":7})");
    EXPECT_EQ(envelope.first.metaData(), messageTree("n", 0.5));
    EXPECT_EQ(envelope.moveToJsonString(), R"({"freq":0.5,"id":-3,"name":"n","stamp":7})");
    EXPECT_EQ(envelope.first.metaData(), messageTree("n", 0.5));
    EXPECT_EQ(envelope.first.toJsonString(), messageText);
}

TEST(PartiallyDeserializable, KeepsItsTreeWhenTwoAreWrittenIntoOneTarget)
{
    Envelope envelope;
    NumberedMessage second = message("second", 1.5);
    envelope.second = &second;
    EXPECT_EQ(envelope.toJsonString(), R"({"freq":1.5,"id":-3,"name":"second"})");
    EXPECT_EQ(envelope.first.metaData(), messageTree("n", 0.5));
    EXPECT_EQ(second.metaData(), messageTree("second", 1.5));
}

// ---- lookups

TEST(ElementImpl, GivesTheMemberAndCreatesItWhenItIsMissing)
{
    Element parent;
    Element& created = PartiallyDeserializable::elementImpl(parent, "a");
    EXPECT_EQ(parent, object({{"a", Element()}}));
    created = integer(1);
    EXPECT_EQ(&PartiallyDeserializable::elementImpl(parent, "a"), &created);
    Element noParent = integer(1);
    EXPECT_THROW(PartiallyDeserializable::elementImpl(noParent, "a"), TypeError);
    EXPECT_EQ(noParent, integer(1));
}

NumberedMessage with(Element const& node)
{
    NumberedMessage result;
    result.metaData()["key"] = node;
    return result;
}

TEST(ElementLookup, ReadsNumbersLeniently)
{
    EXPECT_EQ(with(real(2.9)).element<int>("key"), 2);
    EXPECT_EQ(with(real(-2.9)).element<int>("key"), -2);
    EXPECT_EQ(with(real(1e10)).element<int>("key"), std::numeric_limits<int>::max());
    EXPECT_EQ(with(integer(4294967297)).element<int>("key"), 1);
    EXPECT_EQ(with(boolean(true)).element<int>("key"), 1);
    EXPECT_EQ(with(real(-1.0)).element<unsigned int>("key"), 0u);
    EXPECT_EQ(with(real(1e10)).element<unsigned int>("key"), 4294967295u);
    EXPECT_EQ(with(integer(-1)).element<unsigned int>("key"), 4294967295u);
    EXPECT_EQ(with(boolean(false)).element<unsigned int>("key"), 0u);
    EXPECT_EQ(with(boolean(true)).element<double>("key"), 1.0);
    EXPECT_EQ(with(integer(7)).element<double>("key"), 7.0);
    EXPECT_EQ(with(real(0.5)).element<double>("key"), 0.5);
    EXPECT_FALSE(with(real(0.00001)).element<bool>("key"));
    EXPECT_TRUE(with(real(0.00002)).element<bool>("key"));
    EXPECT_TRUE(with(integer(-1)).element<bool>("key"));
    EXPECT_TRUE(with(boolean(true)).element<bool>("key"));
}

TEST(ElementLookup, LeavesOtherKindsToTheAccessors)
{
    for (Element const& node :
         {text("1"), Element(MetaData::Object()), Element(MetaData::Array()), Element()}) {
        NumberedMessage const read = with(node);
        EXPECT_THROW(read.element<int>("key"), TypeError);
        EXPECT_THROW(read.element<unsigned int>("key"), TypeError);
        EXPECT_THROW(read.element<double>("key"), TypeError);
        EXPECT_THROW(read.element<bool>("key"), TypeError);
        EXPECT_EQ(read.metaData(), object({{"key", node}}));
    }
}

TEST(ElementLookup, CreatesAMissingMemberEmptyAndThenFails)
{
    NumberedMessage const read;
    EXPECT_THROW(read.element<int>("id"), TypeError);
    EXPECT_EQ(read.metaData(), object({{"id", Element()}}));
    NumberedMessage notAnObject;
    notAnObject.metaData() = array({});
    EXPECT_THROW(notAnObject.element<int>("id"), TypeError);
    EXPECT_EQ(notAnObject.metaData(), array({}));
}

TEST(ElementLookup, ReachesIntoATopLevelMemberAndCreatesWhatIsMissing)
{
    NumberedMessage const written;
    Element& created = written.element("body", "statelist");
    EXPECT_EQ(written.metaData(), object({{"body", object({{"statelist", Element()}})}}));
    created = array({});
    EXPECT_EQ(&written.element("body", "statelist"), &created);
    written.element("body", "id") = integer(-9);
    EXPECT_EQ(written.metaData(),
              object({{"body", object({{"statelist", array({})}, {"id", integer(-9)}})}}));

    NumberedMessage const other;
    other.metaData()["head"] = integer(1);
    other.element("body", "id");
    EXPECT_EQ(other.metaData(), object({{"head", integer(1)}, {"body", object({{"id", Element()}})}}));
}

TEST(ElementLookup, RefusesToReachIntoWhatHasNoMembers)
{
    NumberedMessage const read = with(text("x"));
    EXPECT_THROW(read.element("key", "id"), TypeError);
    EXPECT_EQ(read.metaData(), object({{"key", text("x")}}));
    NumberedMessage const noObject;
    noObject.metaData() = integer(1);
    EXPECT_THROW(noObject.element("body", "id"), TypeError);
    EXPECT_EQ(noObject.metaData(), integer(1));
}

} // namespace
} // namespace Zelk::Json
