// What a user's program does with all three libraries, in few lines. Exits with 0 when every step came out
// right.
#include "framework/json_array.h"
#include "framework/json_text.h"
#include "framework/reflector.h"
#include "msgs/legacystate/subscriber_commands.h"
#include "msgs/msgidstate/info.h"

#include <iostream>
#include <stdexcept>
#include <string>

using namespace Zelk;

namespace {

// A record of the user's own, put into a list: the header templates are instantiated in the user's program.
class Reading : public Json::Serializable {
public:
    Reading() = default;
    explicit Reading(int celsius) : celsius_(celsius) {}

    int celsius() const { return celsius_; }

    void copyToMetaData(MetaData::Element& target) const override
    {
        target["celsius"] = MetaData::Trivial_T<long long>(celsius_);
    }
    void copyFromMetaData(MetaData::Element const& source) override
    {
        celsius_ = static_cast<int>(source["celsius"].asInt64());
    }

private:
    int celsius_ = 0;
};

int failures = 0;

void expect(bool right, char const* what)
{
    if (!right) {
        std::cerr << "wrong: " << what << '\n';
        ++failures;
    }
}

void expectText(std::string const& found, std::string const& wanted, char const* what)
{
    if (found != wanted) {
        std::cerr << "wrong: " << what << "\n  found  " << found << "\n  wanted " << wanted << '\n';
        ++failures;
    }
}

} // namespace

int main()
{
    Msgs::LegacyState::CreateSubscriberCommand command;
    command.setClientName("ui");
    command.setPublisherName("p");
    command.setEventId(7);
    command.setFilterType(1);
    command.setFilterFreq(0.5);
    std::string const text = command.toJsonString();
    expectText(text,
               R"({"clientname":"ui","commandid":0,"eventId":7,"filterFreq":0.5,"filterType":1,"id":-4,)"
               R"("publisherName":"p"})",
               "the text of a command");

    Msgs::LegacyState::CreateSubscriberCommand received;
    received.fromJsonString(text);
    expectText(received.publisherName(), "p", "a member read back");

    try {
        received.fromJsonString(R"({"clientname":"ui","commandid":0,"id":-5})");
        expect(false, "a command of another kind is refused");
    } catch (std::runtime_error const& error) {
        expectText(error.what(), "event id does not match expected value", "the text of the refusal");
    }

    try {
        received.fromJsonString("{\n  x}");
        expect(false, "text that is not JSON is refused");
    } catch (Json::ParseError const& error) {
        expect(error.line() == 2 && error.column() == 3, "the place of a mistake in the text");
    }

    Msgs::MsgIdState::InfoResponse response({"service"}, "Running");
    MetaData::Element tree;
    response.copyToMetaData(tree);
    expectText(tree["Data"]["StateName"].asString(), "Running", "a reflected field");
    try {
        MetaData::Element const& constTree = tree;
        constTree["NoSuchMember"];
        expect(false, "a missing member is refused");
    } catch (MetaData::MissingMemberError const&) {
    }

    Json::Array<Reading> readings{Reading(-3), Reading(21)};
    Json::Array<Reading> copies;
    copies.fromJsonString(readings.toJsonString());
    expect(copies.size() == 2 && copies[0].celsius() == -3 && copies[1].celsius() == 21,
           "a list of own records");

    if (failures == 0) {
        std::cout << text << '\n';
    }
    return failures == 0 ? 0 : 1;
}
