#include "framework/json_text.h"
#include "framework/nodes.h"
#include "framework/reflector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zelk::MetaData {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

template <typename T>
using Field = Reflector<T, false, true>;

Element tree(std::string const& json)
{
    return Json::readText(json);
}

template <typename T>
std::string written(T const& source)
{
    Element target;
    source.copyToMetaData(target);
    return Json::printText(target);
}

/// A record whose only field differs between Inner() and an Inner that could not be read.
struct Inner : MirroredObject {
    explicit Inner(std::string const& name = "default") : Name(this, "Name", true, name) {}
    Inner(Inner const& other) : Inner(std::string()) { *this = other; }
    Inner& operator=(Inner const& other) = default;

    Field<std::string> Name;
};

using RecordField = Reflector<Inner, true, true>;

/// A record that refuses to be read, and not with a std::exception.
struct Refusing : MirroredObject {
    Refusing() = default;
    Refusing(Refusing const&) : Refusing() {}
    Refusing& operator=(Refusing const&) = default;
    void copyFromMetaData(Element const&) override { throw 7; }

    Field<long long> Number{this, "Number", false};
};

// ---- what a field of each type reads and writes

template <typename T>
struct Values;

template <>
struct Values<bool> {
    static constexpr char const* typeName = "bool";
    static constexpr char const* form = "true";
    static bool standard() { return false; }
    static bool other() { return true; }
};

template <>
struct Values<double> {
    static constexpr char const* typeName = "double";
    static constexpr char const* form = "2.5";
    static double standard() { return 0.0; }
    static double other() { return 2.5; }
};

template <>
struct Values<long long> {
    static constexpr char const* typeName = "long_long";
    static constexpr char const* form = "-4";
    static long long standard() { return 0; }
    static long long other() { return -4; }
};

template <>
struct Values<std::string> {
    static constexpr char const* typeName = "string";
    static constexpr char const* form = "\"Running\"";
    static std::string standard() { return ""; }
    static std::string other() { return "Running"; }
};

template <typename T>
class FieldOf : public testing::Test {
protected:
    MirroredObject owner;
    Field<T> optional{&owner, "k", false};
    Field<T> required{&owner, "r", true};
    std::string const object = std::string("{\"k\":") + Values<T>::form + ",\"r\":" + Values<T>::form + "}";

    /// The value, whether the field is set or not.
    static T valueOf(Field<T>& field)
    {
        bool const set = field.initialized();
        field.init();
        T const value = field();
        if (!set)
            field.uninit();
        return value;
    }
};

using ValueTypes = testing::Types<bool, double, long long, std::string>;
struct TypeNames {
    template <typename T>
    static std::string GetName(int)
    {
        return Values<T>::typeName;
    }
};
TYPED_TEST_SUITE(FieldOf, ValueTypes, TypeNames);

TYPED_TEST(FieldOf, StartsSetExactlyWhenItIsRequired)
{
    EXPECT_FALSE(this->optional.initialized());
    EXPECT_FALSE(this->optional.isRequired());
    EXPECT_TRUE(this->required.initialized());
    EXPECT_TRUE(this->required.isRequired());
    EXPECT_EQ(this->required(), Values<TypeParam>::standard());
    EXPECT_EQ(this->valueOf(this->optional), Values<TypeParam>::standard());
}

TYPED_TEST(FieldOf, DoesNotBecomeSetByAnInitialValue)
{
    Field<TypeParam> filled(&this->owner, "o", false, Values<TypeParam>::other());
    Field<TypeParam> filledAndRequired(&this->owner, "p", true, Values<TypeParam>::other());
    EXPECT_FALSE(filled.initialized());
    EXPECT_EQ(this->valueOf(filled), Values<TypeParam>::other());
    EXPECT_EQ(filledAndRequired(), Values<TypeParam>::other());
}

TYPED_TEST(FieldOf, IsSetByAssign)
{
    this->optional.assign(Values<TypeParam>::other());
    EXPECT_TRUE(this->optional.initialized());
    EXPECT_EQ(this->optional(), Values<TypeParam>::other());
}

TYPED_TEST(FieldOf, IsSetByAssignmentOfAValue)
{
    Field<TypeParam>& result = this->optional = Values<TypeParam>::other();
    EXPECT_EQ(&result, &this->optional);
    EXPECT_TRUE(this->optional.initialized());
    EXPECT_EQ(this->optional(), Values<TypeParam>::other());
}

TYPED_TEST(FieldOf, WritesItsValueUnderItsKey)
{
    this->optional = Values<TypeParam>::other();
    EXPECT_EQ(written(this->optional), std::string("{\"k\":") + Values<TypeParam>::form + "}");
}

TYPED_TEST(FieldOf, WritesOverAMemberOfAnyKind)
{
    this->optional = Values<TypeParam>::other();
    for (char const* former : {"null", "true", "1", "1.5", "\"text\"", "[1]", "{\"a\":1}"}) {
        SCOPED_TRACE(former);
        Element target = tree(std::string("{\"k\":") + former + "}");
        this->optional.copyToMetaData(target);
        EXPECT_EQ(target, tree(std::string("{\"k\":") + Values<TypeParam>::form + "}"));
    }
}

TYPED_TEST(FieldOf, WritesNothingWhileItIsUnset)
{
    Element target;
    this->optional.copyToMetaData(target);
    EXPECT_EQ(target, Element());

    Element number = Tests::integer(1);
    this->optional.copyToMetaData(number);
    EXPECT_EQ(number, Tests::integer(1));
}

TYPED_TEST(FieldOf, ReadsAMemberOfItsKind)
{
    this->optional.copyFromMetaData(tree(this->object));
    EXPECT_TRUE(this->optional.initialized());
    EXPECT_EQ(this->optional(), Values<TypeParam>::other());

    this->required.uninit();
    this->required.assign(tree(this->object));
    EXPECT_TRUE(this->required.initialized());
    EXPECT_EQ(this->required(), Values<TypeParam>::other());
}

TYPED_TEST(FieldOf, IsUnsetWithItsDefaultAfterReadingWhatDoesNotFit)
{
    std::vector<std::pair<std::string, std::string>> const cases = {
        {"empty node", "null"},    {"boolean", "false"},   {"integer", "1"},
        {"floating-point", "1.5"}, {"string", "\"true\""}, {"object", "{\"k\":true}"},
        {"empty object", "{}"},    {"array", "[true]"},    {"empty array", "[]"},
    };
    unsigned int const own = tree(Values<TypeParam>::form).GetElementType();
    for (auto const& [name, member] : cases) {
        if (tree(member).GetElementType() == own)
            continue;
        SCOPED_TRACE(name);
        for (Field<TypeParam>* field : {&this->optional, &this->required}) {
            *field = Values<TypeParam>::other();
            EXPECT_NO_THROW(field->copyFromMetaData(tree("{\"" + field->name() + "\":" + member + "}")));
            EXPECT_FALSE(field->initialized());
            EXPECT_EQ(this->valueOf(*field), Values<TypeParam>::standard());
        }
    }
}

TYPED_TEST(FieldOf, IsUnsetWithItsDefaultAfterReadingFromWhatHasNoSuchMember)
{
    for (char const* source :
         {"{}", "{\"K\":true}", "null", "true", "1", "1.5", "\"k\"", "[]", "[{\"k\":1}]"}) {
        SCOPED_TRACE(source);
        for (Field<TypeParam>* field : {&this->optional, &this->required}) {
            *field = Values<TypeParam>::other();
            Element const before = tree(source);
            Element const node = before;
            EXPECT_NO_THROW(field->copyFromMetaData(node));
            EXPECT_FALSE(field->initialized());
            EXPECT_EQ(this->valueOf(*field), Values<TypeParam>::standard());
            EXPECT_EQ(node, before);
        }
    }
}

TYPED_TEST(FieldOf, IsUnsetWithItsDefaultAfterReset)
{
    for (Field<TypeParam>* field : {&this->optional, &this->required}) {
        *field = Values<TypeParam>::other();
        field->reset();
        EXPECT_FALSE(field->initialized());
        EXPECT_EQ(this->valueOf(*field), Values<TypeParam>::standard());
    }
}

TYPED_TEST(FieldOf, KeepsItsValueThroughInitAndUninit)
{
    this->optional = Values<TypeParam>::other();
    this->optional.uninit();
    EXPECT_FALSE(this->optional.initialized());
    this->optional.init();
    EXPECT_EQ(this->optional(), Values<TypeParam>::other());
}

TYPED_TEST(FieldOf, ThrowsWhenItIsReadWhileUnset)
{
    EXPECT_THAT([this] { this->optional(); },
                ThrowsMessage<UnsetFieldError>(
                    StrEq("Zelk::MetaData::Reflector::operator()(): field \"k\" is not set")));
}

TYPED_TEST(FieldOf, ReadsTheValueItHoldsWithoutACopy)
{
    this->optional = Values<TypeParam>::other();
    EXPECT_EQ(&this->optional(), &this->optional());
    static_assert(std::is_same_v<decltype(this->optional()), TypeParam const&>);
}

TYPED_TEST(FieldOf, FollowsASetSourceWhenCopied)
{
    Field<TypeParam> source(&this->owner, "s", false);
    source = Values<TypeParam>::other();
    for (Field<TypeParam>* target : {&this->optional, &this->required}) {
        target->reset();
        *target = source;
        EXPECT_TRUE(target->initialized());
        EXPECT_EQ((*target)(), Values<TypeParam>::other());
    }
}

TYPED_TEST(FieldOf, FollowsItsOwnRequiredFlagWhenCopiedFromAnUnsetSource)
{
    for (bool sourceIsRequired : {false, true}) {
        SCOPED_TRACE(sourceIsRequired);
        Field<TypeParam> source(&this->owner, "s", sourceIsRequired);
        source = Values<TypeParam>::other();
        source.uninit();

        this->optional = Values<TypeParam>::other();
        this->optional = source;
        EXPECT_FALSE(this->optional.initialized());
        EXPECT_FALSE(this->optional.isRequired());
        EXPECT_EQ(this->valueOf(this->optional), Values<TypeParam>::standard());

        this->required.uninit();
        this->required = source;
        EXPECT_TRUE(this->required.initialized());
        EXPECT_TRUE(this->required.isRequired());
        EXPECT_EQ(this->required(), Values<TypeParam>::standard());

        EXPECT_FALSE(source.initialized()) << "the source changed";
    }
}

TYPED_TEST(FieldOf, KeepsKeyAndRequiredFlagWhenCopied)
{
    Field<TypeParam> source(&this->owner, "s", true);
    this->optional = source;
    EXPECT_EQ(this->optional.name(), "k");
    EXPECT_FALSE(this->optional.isRequired());
}

TYPED_TEST(FieldOf, CanBeCopiedFromItself)
{
    this->optional = Values<TypeParam>::other();
    Field<TypeParam> const& self = this->optional;
    this->optional = self;
    EXPECT_TRUE(this->optional.initialized());
    EXPECT_EQ(this->optional(), Values<TypeParam>::other());
}

TYPED_TEST(FieldOf, TakesAValueThroughItsBase)
{
    ReflectorNoWriteParend<TypeParam, true>& base = this->optional;
    base = Values<TypeParam>::other();
    EXPECT_TRUE(this->optional.initialized());
    EXPECT_EQ(this->optional(), Values<TypeParam>::other());
}

TYPED_TEST(FieldOf, CannotBeConstructedFromAnother)
{
    static_assert(!std::is_copy_constructible_v<Field<TypeParam>>);
    static_assert(!std::is_move_constructible_v<Field<TypeParam>>);
    static_assert(!std::is_copy_constructible_v<ReflectorNoWriteParend<TypeParam, true>>);
    static_assert(!std::is_copy_constructible_v<ReflectorBase>);
    static_assert(!std::is_copy_assignable_v<ReflectorBase>);
    static_assert(std::is_copy_assignable_v<Field<TypeParam>>);
}

// ---- the untyped part

TEST(ReflectorBase, BecomesRequiredWithoutBecomingSet)
{
    MirroredObject owner;
    Field<bool> field(&owner, "k", false);
    field.makeRequired();
    EXPECT_TRUE(field.isRequired());
    EXPECT_FALSE(field.initialized());
}

TEST(ReflectorBase, TellsAnyAccessorThatRefused)
{
    MirroredObject owner;
    Field<bool> field(&owner, "a \"key\"", false);
    EXPECT_THAT([&field] { field.throwIfUninited("here"); },
                ThrowsMessage<UnsetFieldError>(StrEq("here: field \"a \"key\"\" is not set")));
    field.init();
    EXPECT_NO_THROW(field.throwIfUninited("here"));
}

// ---- the ways to read and write

/// Counts the calls that go through the virtual operations.
struct Counting : Field<long long> {
    using Field<long long>::Field;
    using Field<long long>::operator=;
    void assign(long long const& value) override
    {
        ++values;
        Field<long long>::assign(value);
    }
    void assign(Element const& source) override
    {
        ++nodes;
        Field<long long>::assign(source);
    }
    int values = 0;
    int nodes = 0;
};

TEST(Reflector, ReadsAndCopiesThroughTheVirtualAssign)
{
    MirroredObject owner;
    Counting field(&owner, "k", false);
    field.copyFromMetaData(tree("{\"k\":1}"));
    EXPECT_EQ(field.nodes, 1);
    EXPECT_EQ(field.values, 0);

    field = 2LL;
    EXPECT_EQ(field.values, 1);

    Field<long long> source(&owner, "s", true);
    Field<long long>& target = field;
    target = source;
    EXPECT_EQ(field.values, 2);

    source.uninit();
    target = source;
    EXPECT_EQ(field.values, 2) << "an unset source assigns nothing";
}

TEST(Reflector, IsModifiedInPlaceOnlyWithWriteThrough)
{
    static_assert(std::is_same_v<decltype(std::declval<Reflector<bool, false, true>&>()()), bool const&>);
    static_assert(std::is_same_v<decltype(std::declval<Reflector<bool, true, true>&>()()), bool&>);
    static_assert(
        std::is_same_v<decltype(std::declval<Reflector<bool, true, true> const&>()()), bool const&>);

    MirroredObject owner;
    Reflector<std::string, true, true> field(&owner, "k", false);
    field() += "ab";
    field() += "c";
    EXPECT_EQ(written(field), "{\"k\":\"abc\"}");
}

TEST(Reflector, BecomesSetByAMereLookWithWriteThrough)
{
    MirroredObject owner;
    Reflector<double, true, true> field(&owner, "k", false);
    EXPECT_THROW(std::as_const(field)(), UnsetFieldError);
    EXPECT_FALSE(field.initialized());
    EXPECT_EQ(field(), 0.0);
    EXPECT_TRUE(field.initialized());
    EXPECT_EQ(std::as_const(field)(), 0.0);
}

TEST(Reflector, TakesAStringLiteral)
{
    MirroredObject owner;
    Field<std::string> field(&owner, "k", false);
    field = "text";
    EXPECT_EQ(field(), "text");
}

// ---- fields whose value is a record

class FieldOfRecord : public testing::Test {
protected:
    MirroredObject owner;
    RecordField field{&owner, "Data", false};
    RecordField required{&owner, "Required", true};
};

TEST_F(FieldOfRecord, HoldsADefaultRecord)
{
    EXPECT_EQ(required().Name(), "default");
    EXPECT_FALSE(field.initialized());
    field.init();
    EXPECT_EQ(std::as_const(field)().Name(), "default");
}

TEST_F(FieldOfRecord, HoldsACopyOfTheInitialRecord)
{
    RecordField const copy(&owner, "c", true, Inner("first"));
    EXPECT_EQ(copy().Name(), "first");
    RecordField const unset(&owner, "u", false, Inner("first"));
    EXPECT_FALSE(unset.initialized());
}

TEST_F(FieldOfRecord, IsAnObjectInTheObject)
{
    field = Inner("x");
    EXPECT_EQ(written(field), R"({"Data":{"Name":"x"}})");
}

TEST_F(FieldOfRecord, IsWrittenAfterAMereMutableAccess)
{
    field();
    EXPECT_EQ(written(field), R"({"Data":{"Name":"default"}})");
}

TEST_F(FieldOfRecord, IsWrittenWithWhatWasPutIntoItsRecord)
{
    field().Name = "put in";
    EXPECT_EQ(written(field), R"({"Data":{"Name":"put in"}})");
}

TEST_F(FieldOfRecord, IsWrittenAsAnEmptyObjectWhenNothingInItIsSet)
{
    field().Name.uninit();
    EXPECT_EQ(written(field), R"({"Data":{}})");
}

TEST_F(FieldOfRecord, IsWrittenIntoTheObjectThatIsThere)
{
    field().Name = "x";
    Element target = tree(R"({"Data":{"Name":1,"Other":2}})");
    field.copyToMetaData(target);
    EXPECT_EQ(target, tree(R"({"Data":{"Name":"x","Other":2}})"));

    Element wrong = tree(R"({"Data":[]})");
    EXPECT_THROW(field.copyToMetaData(wrong), TypeError);
}

TEST_F(FieldOfRecord, ReadsItsRecordAsAWhole)
{
    field.copyFromMetaData(tree(R"({"Data":{"Name":"read"},"Name":"not this"})"));
    EXPECT_TRUE(field.initialized());
    EXPECT_EQ(field().Name(), "read");
}

TEST_F(FieldOfRecord, IsSetEvenWhenTheFieldsOfItsRecordCannotBeRead)
{
    for (char const* source : {R"({"Data":{}})", R"({"Data":{"Name":1}})"}) {
        SCOPED_TRACE(source);
        field = Inner("former");
        field.copyFromMetaData(tree(source));
        ASSERT_TRUE(field.initialized());
        Inner const& inner = std::as_const(field)();
        EXPECT_FALSE(inner.Name.initialized());
        EXPECT_THAT(inner.unsetRequired(), testing::ElementsAre("Name"));
    }
}

TEST_F(FieldOfRecord, IsUnsetWithADefaultRecordWhenItsMemberIsMissingOrNoObject)
{
    for (char const* source :
         {"{}", R"({"Data":null})", R"({"Data":true})", R"({"Data":1})", R"({"Data":1.5})",
          R"({"Data":"text"})", R"({"Data":[{"Name":"x"}]})", "null", "[]", "7"}) {
        SCOPED_TRACE(source);
        field = Inner("former");
        EXPECT_NO_THROW(field.copyFromMetaData(tree(source)));
        EXPECT_FALSE(field.initialized());
        EXPECT_EQ(field().Name(), "default");
    }
}

TEST_F(FieldOfRecord, SwallowsAFailureOfAnyType)
{
    Reflector<Refusing, true, true> refusing(&owner, "Refusing", true);
    refusing().Number = 5;
    EXPECT_NO_THROW(refusing.copyFromMetaData(tree(R"({"Refusing":{"Number":6}})")));
    EXPECT_FALSE(refusing.initialized());
    EXPECT_FALSE(refusing().Number.initialized());
}

TEST_F(FieldOfRecord, IsCopiedDeeply)
{
    field = Inner("a");
    required = field;
    field().Name = "b";
    EXPECT_EQ(required().Name(), "a");
}

TEST_F(FieldOfRecord, GetsTheSetDefaultFromAnUnsetSourceWhenItIsRequired)
{
    required = Inner("former");
    required = field;
    EXPECT_TRUE(required.initialized());
    EXPECT_EQ(required().Name(), "default");

    field = Inner("former");
    RecordField unset(&owner, "u", false);
    field = unset;
    EXPECT_FALSE(field.initialized());
    EXPECT_EQ(field().Name(), "default");
}

TEST_F(FieldOfRecord, IsSetByARecordWhoseOwnFieldsAreUnset)
{
    Inner empty("former");
    empty.Name.uninit();
    field.assign(empty);
    EXPECT_TRUE(field.initialized());
    EXPECT_EQ(field().Name(), "") << "from an unset source a required field becomes empty and set";
}

TEST_F(FieldOfRecord, HasTheFieldsOfItsRecordRegisteredWithThatRecord)
{
    field = Inner("x");
    Element target;
    owner.copyToMetaData(target);
    EXPECT_EQ(target, tree(R"({"Data":{"Name":"x"},"Required":{"Name":"default"}})"));
}

} // namespace
} // namespace Zelk::MetaData
