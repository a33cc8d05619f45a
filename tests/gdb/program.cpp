/// What the debugger looks at: trees, messages, lists and fields with known values.
#include "framework/json_text.h"
#include "framework/reflector.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_space_response.h"
#include "msgs/legacystate/subscriber_commands.h"

#include <string>

namespace {

using namespace Zelk::MetaData;
using namespace Zelk::Msgs::LegacyState;

struct Position : MirroredObject {
    Reflector<double, false, true> Angle{this, "Angle", true, 1.5};
    Reflector<std::string, false, true> Unit{this, "Unit", false};
};

/// The breakpoint.
[[gnu::noinline]] void look(StateCommand const& command)
{
    asm volatile("" : : "r"(&command) : "memory");
}

} // namespace

int main()
{
    Element empty;
    Element scalars = Zelk::Json::readText(R"([null,true,false,-7,2.5,"a \"b\"\u00fc",{},[]])");
    Element many;
    for (unsigned int i = 0; i < 30; ++i)
        many["numbers"][std::to_string(i)] = many["items"].operator Array&()[i] =
            Trivial_T<long long>(static_cast<long long>(i));
    Element const read = Zelk::Json::readText(Zelk::Json::printText(many));
    Element deep;
    Element* node = &deep;
    for (int i = 0; i < 3000; ++i)
        node = &(*node)["a"];

    CreateSubscriberCommand subscribe;
    subscribe.setClientName("ui");
    subscribe.setPublisherName("door");
    subscribe.setEventId(7);
    subscribe.copyToInternalMetaData();
    UnregisterCommand unregister;
    unregister.events() = {7, 9};
    StateSpaceMetaDataResponse response;
    response.setHeader("from door");
    response.states().push_back({"opens", 1, "Closed", "Opening", "open", 12, "", ""});
    Position position;

    look(subscribe);
    return scalars == read || deep == empty || response.states().empty() || unregister.events().empty();
}
