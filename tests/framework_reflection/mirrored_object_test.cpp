#include "framework/json_text.h"
#include "framework/mirrored_object.h"
#include "framework/nodes.h"
#include "framework/reflector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::MetaData {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;
using testing::ThrowsMessage;

template <typename T>
using Field = Reflector<T, false, true>;

Element tree(std::string const& json)
{
    return Json::readText(json);
}

std::string written(MirroredObject const& record)
{
    Element target;
    record.copyToMetaData(target);
    return Json::printText(target);
}

/// A user's record: each type of value, required and optional, the keys not in the order of registration.
struct Position : MirroredObject {
    Field<double> Z{this, "Z", true};
    Field<long long> Count{this, "Count", false};
    Field<std::string> Unit{this, "Unit", true, "mm"};
    Field<bool> Absolute{this, "Absolute", false};
    int revision = 0;

    Position() = default;
    Position(Position const& other) : Position() { *this = other; }
    Position& operator=(Position const& other) = default;
};

/// Records in a record in a record.
struct Segment : MirroredObject {
    Reflector<Position, true, true> From{this, "From", true};
    Reflector<Position, true, true> To{this, "To", false};

    Segment() = default;
    Segment(Segment const& other) : Segment() { *this = other; }
    Segment& operator=(Segment const& other) = default;
};

struct Route : MirroredObject {
    Field<std::string> Name{this, "Name", false};
    Reflector<Segment, true, true> First{this, "First", false};

    Route() = default;
    Route(Route const& other) : Route() { *this = other; }
    Route& operator=(Route const& other) = default;
};

TEST(MirroredObject, WritesTheFieldsThatAreSet)
{
    Position position;
    EXPECT_EQ(written(position), R"({"Unit":"mm","Z":0.0})");
    position.Absolute = true;
    position.Count = 3;
    position.Z = 1.5;
    EXPECT_EQ(written(position), R"({"Absolute":true,"Count":3,"Unit":"mm","Z":1.5})");
    position.Unit.uninit();
    EXPECT_EQ(written(position), R"({"Absolute":true,"Count":3,"Z":1.5})");
}

TEST(MirroredObject, MakesAnObjectEvenWhenNothingIsWritten)
{
    EXPECT_EQ(written(MirroredObject()), "{}");
    Position position;
    position.Z.uninit();
    position.Unit.uninit();
    EXPECT_EQ(written(position), "{}");
}

TEST(MirroredObject, LeavesMembersOfOthersInTheTarget)
{
    Position position;
    position.Z.uninit();
    Element target = tree(R"({"Other":[1],"Unit":7,"Z":"kept"})");
    position.copyToMetaData(target);
    EXPECT_EQ(target, tree(R"({"Other":[1],"Unit":"mm","Z":"kept"})"));
}

TEST(MirroredObject, CannotBeWrittenIntoWhatIsNeitherObjectNorEmpty)
{
    std::vector<std::pair<char const*, char const*>> const cases = {
        {"[]", "expected object, found array"},
        {"1", "expected object, found integer"},
        {"true", "expected object, found boolean"},
        {"\"text\"", "expected object, found string"},
        {"1.5", "expected object, found floating-point number"},
    };
    for (auto const& [former, text] : cases) {
        SCOPED_TRACE(former);
        Element target = tree(former);
        EXPECT_THAT([&target] { Position().copyToMetaData(target); }, ThrowsMessage<TypeError>(StrEq(text)));
        EXPECT_THAT([&target] { MirroredObject().copyToMetaData(target); },
                    ThrowsMessage<TypeError>(StrEq(text)));
        EXPECT_EQ(target, tree(former));
    }
}

TEST(MirroredObject, ReadsEveryFieldByItself)
{
    Position position;
    position.Absolute = true;
    position.copyFromMetaData(tree(R"({"Z":2.5,"Count":"three","Unit":"m","Other":1})"));
    EXPECT_EQ(position.Z(), 2.5);
    EXPECT_FALSE(position.Count.initialized());
    EXPECT_EQ(position.Unit(), "m");
    EXPECT_FALSE(position.Absolute.initialized()) << "a missing member unsets what was set before";
}

TEST(MirroredObject, RefusesWhatIsNoObjectBeforeAnyFieldIsRead)
{
    std::vector<std::pair<char const*, char const*>> const cases = {
        {"null", "expected object, found empty"},
        {"[]", "expected object, found array"},
        {"1", "expected object, found integer"},
        {"\"text\"", "expected object, found string"},
    };
    for (auto const& [source, text] : cases) {
        SCOPED_TRACE(source);
        Position position;
        position.Z = 2.5;
        position.Count = 3;
        Element const node = tree(source);
        EXPECT_THAT([&] { position.copyFromMetaData(node); }, ThrowsMessage<TypeError>(StrEq(text)));
        EXPECT_EQ(written(position), R"({"Count":3,"Unit":"mm","Z":2.5})");
    }
}

TEST(MirroredObject, ReadsAnEmptyObjectWithoutThrowingForItsRequiredFields)
{
    Position position;
    EXPECT_NO_THROW(position.copyFromMetaData(tree("{}")));
    EXPECT_EQ(written(position), "{}");
}

TEST(MirroredObject, NamesTheRequiredFieldsThatAreUnsetInTheOrderOfRegistration)
{
    Position position;
    EXPECT_THAT(position.unsetRequired(), IsEmpty());
    position.copyFromMetaData(tree("{}"));
    EXPECT_THAT(position.unsetRequired(), ElementsAre("Z", "Unit"));
    position.Count.makeRequired();
    EXPECT_THAT(position.unsetRequired(), ElementsAre("Z", "Count", "Unit"));
    position.Z = 1;
    EXPECT_THAT(position.unsetRequired(), ElementsAre("Count", "Unit"));
}

TEST(MirroredObject, ReadsBackWhatItWrote)
{
    Route route;
    route.Name = "r";
    route.First().From().Z = -0.5;
    route.First().To().Count = 9;
    Element form;
    route.copyToMetaData(form);
    EXPECT_EQ(Json::printText(form), R"({"First":{"From":{"Unit":"mm","Z":-0.5},)"
                                     R"("To":{"Count":9,"Unit":"mm","Z":0.0}},"Name":"r"})");
    Route read;
    read.copyFromMetaData(form);
    Element again;
    read.copyToMetaData(again);
    EXPECT_EQ(again, form);
}

TEST(MirroredObject, ReadsTheInnerRecordsItCan)
{
    Route route;
    route.copyFromMetaData(tree(R"({"First":{"From":7,"To":{"Z":1.5}}})"));
    ASSERT_TRUE(route.First.initialized());
    EXPECT_FALSE(route.First().From.initialized());
    EXPECT_THAT(route.First().unsetRequired(), ElementsAre("From"));
    ASSERT_TRUE(route.First().To.initialized());
    EXPECT_EQ(route.First().To().Z(), 1.5);
    EXPECT_THAT(route.First().To().unsetRequired(), ElementsAre("Unit"));
}

// ---- copies

TEST(RecordCopy, TakesOverWhatIsSet)
{
    Position source;
    source.Count = 3;
    source.Unit = "km";
    source.revision = 12;
    Position const copy = source;
    EXPECT_EQ(written(copy), written(source));
    EXPECT_EQ(copy.revision, 12);
}

TEST(RecordCopy, FollowsTheRequiredFlagOfTheTargetForWhatIsUnset)
{
    Position source;
    source.Z = 2.5;
    source.Z.uninit();
    source.Unit.uninit();
    source.Count.makeRequired();
    source.Count.uninit();

    Position const copy = source;
    EXPECT_EQ(written(copy), R"({"Unit":"","Z":0.0})");
    EXPECT_FALSE(copy.Count.isRequired());

    Position assigned;
    assigned.Count = 5;
    assigned.Unit = "km";
    assigned = source;
    EXPECT_EQ(written(assigned), R"({"Unit":"","Z":0.0})");
}

TEST(RecordCopy, HasFieldsOfItsOwn)
{
    auto source = std::make_unique<Position>();
    source->Count = 3;
    Position copy = *source;
    Position assigned;
    assigned = *source;

    source->Count = 4;
    EXPECT_EQ(copy.Count(), 3);
    copy.Count = 5;
    EXPECT_EQ(source->Count(), 4);
    EXPECT_EQ(written(copy), R"({"Count":5,"Unit":"mm","Z":0.0})");

    source.reset();
    EXPECT_EQ(written(copy), R"({"Count":5,"Unit":"mm","Z":0.0})");
    EXPECT_EQ(written(assigned), R"({"Count":3,"Unit":"mm","Z":0.0})");
    copy.copyFromMetaData(tree(R"({"Z":7.0})"));
    EXPECT_EQ(copy.Z(), 7.0);
    EXPECT_EQ(assigned.Z(), 0.0);
}

TEST(RecordCopy, CopiesInnerRecords)
{
    Route source;
    source.First().To().Z = 3.5;
    Route copy = source;
    source.First().To().Z = 4.5;
    EXPECT_EQ(copy.First().To().Z(), 3.5);
}

TEST(RecordCopy, WorksInAVector)
{
    std::vector<Position> positions;
    for (int i = 0; i < 20; ++i) {
        positions.emplace_back();
        positions.back().Count = i;
    }
    positions.erase(positions.begin());
    EXPECT_EQ(written(positions.front()), R"({"Count":1,"Unit":"mm","Z":0.0})");
    EXPECT_EQ(written(positions.back()), R"({"Count":19,"Unit":"mm","Z":0.0})");
}

TEST(RecordCopy, CanBeAssignedFromItself)
{
    Position position;
    position.Count = 3;
    Position const& self = position;
    position = self;
    EXPECT_EQ(written(position), R"({"Count":3,"Unit":"mm","Z":0.0})");
}

TEST(RecordCopy, DoesNotCopyTheOwnerByConstruction)
{
    static_assert(!std::is_copy_constructible_v<MirroredObject>);
    static_assert(std::is_copy_assignable_v<MirroredObject>);
    static_assert(!std::is_copy_constructible_v<MirroredObject::MembersStorage>);
    static_assert(std::is_copy_assignable_v<MirroredObject::MembersStorage>);
}

TEST(MembersStorage, KeepsItsOwnRegistrationsWhenTheOwnerIsAssigned)
{
    Position source;
    MirroredObject empty;
    MirroredObject& base = source;
    base = empty;
    EXPECT_EQ(written(source), R"({"Unit":"mm","Z":0.0})");
    empty = source;
    EXPECT_EQ(written(empty), "{}");
}

// ---- registration

/// Writes itself while it is being destroyed, when the fields of the derived record are gone.
struct WritesAtTheEnd : MirroredObject {
    explicit WritesAtTheEnd(std::string& text) : text_(text) {}
    WritesAtTheEnd(WritesAtTheEnd const&) = delete;
    WritesAtTheEnd& operator=(WritesAtTheEnd const&) = delete;
    ~WritesAtTheEnd() override
    {
        copyFromMetaData(tree(R"({"Base":1,"Derived":2,"Third":3})"));
        text_ = written(*this);
    }

    Field<long long> Base{this, "Base", true};

private:
    std::string& text_;
};

struct WithMoreFields : WritesAtTheEnd {
    using WritesAtTheEnd::WritesAtTheEnd;
    Field<long long> Derived{this, "Derived", true};
    Field<long long> Third{this, "Third", true};
};

TEST(Registration, EndsWithTheField)
{
    std::string text;
    {
        WithMoreFields record(text);
        EXPECT_EQ(written(record), R"({"Base":0,"Derived":0,"Third":0})");
    }
    EXPECT_EQ(text, R"({"Base":1})");
}

TEST(Registration, EndsInAnyOrder)
{
    MirroredObject owner;
    std::vector<std::unique_ptr<Field<long long>>> fields;
    for (char const* key : {"a", "b", "c", "d", "e"})
        fields.push_back(std::make_unique<Field<long long>>(&owner, key, true));
    auto const keys = [&owner] {
        owner.copyFromMetaData(tree("{}"));
        return owner.unsetRequired();
    };
    EXPECT_THAT(keys(), ElementsAre("a", "b", "c", "d", "e"));
    fields[2].reset();
    EXPECT_THAT(keys(), ElementsAre("a", "b", "d", "e"));
    fields[4].reset();
    EXPECT_THAT(keys(), ElementsAre("a", "b", "d"));
    fields[0].reset();
    EXPECT_THAT(keys(), ElementsAre("b", "d"));
    fields[0] = std::make_unique<Field<long long>>(&owner, "new", true);
    EXPECT_THAT(keys(), ElementsAre("b", "d", "new"));
    fields.clear();
    EXPECT_THAT(keys(), IsEmpty());
    Field<bool> last(&owner, "last", true);
    EXPECT_EQ(written(owner), R"({"last":false})");
}

struct FailsInTheMiddle : WritesAtTheEnd {
    explicit FailsInTheMiddle(std::string& text)
        : WritesAtTheEnd(text), First(this, "First", true), Second(fail())
    {}
    static int fail() { throw std::runtime_error("no second member"); }
    Field<long long> First;
    int Second;
};

TEST(Registration, EndsWhenTheRecordCannotBeBuilt)
{
    std::string text;
    EXPECT_THROW(FailsInTheMiddle record(text), std::runtime_error);
    EXPECT_EQ(text, R"({"Base":1})");
}

TEST(Registration, KeepsTheOrderInWhichFieldsAreReadAndWritten)
{
    // Two fields under one key: the one that registered last writes last, and both read the member.
    MirroredObject owner;
    Field<std::string> first(&owner, "k", true, "first");
    Field<std::string> second(&owner, "k", true, "second");
    EXPECT_EQ(written(owner), R"({"k":"second"})");
    owner.copyFromMetaData(tree(R"({"k":"read"})"));
    EXPECT_EQ(first(), "read");
    EXPECT_EQ(second(), "read");
}

TEST(PartiallySerializableInterface, IsTheOneBaseOfEveryRecordAndField)
{
    // The conversions below are ambiguous, and do not compile, when there is more than one.
    Position position;
    PartiallySerializableInterface& record = position;
    PartiallySerializableInterface& field = position.Z;
    Element form;
    field.copyToMetaData(form);
    EXPECT_EQ(Json::printText(form), R"({"Z":0.0})");
    record.copyFromMetaData(tree(R"({"Z":3.5})"));
    EXPECT_EQ(position.Z(), 3.5);
    EXPECT_EQ(dynamic_cast<ReflectorBase*>(&record), nullptr);
    EXPECT_EQ(dynamic_cast<ReflectorBase&>(field).name(), "Z");
    static_assert(std::is_abstract_v<PartiallySerializableInterface>);
    static_assert(std::is_abstract_v<ReflectorBase>);
    static_assert(!std::is_abstract_v<MirroredObject>);
}

} // namespace
} // namespace Zelk::MetaData
