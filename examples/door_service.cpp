/// A small state-machine service: the door of a house. Answers the commands of one client after the other,
/// one JSON text a line, over a Unix domain socket.
///
///     door_service SOCKET [--once]       --once: ends when the first client has gone

#include "examples/line_socket.h"
#include "framework/json_text.h"
#include "framework/number.h"
#include "msgs/legacystate/queue_mapping_app_info.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_space_response.h"
#include "msgs/legacystate/subscriber_commands.h"

#include <exception>
#include <iostream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace Zelk::Msgs::LegacyState;
using Zelk::MetaData::Element;

/// What the service knows of the client it is talking to.
class Conversation {
public:
    /// The answer to one line: a response, or why the line was refused.
    std::string answer(std::string const& line)
    {
        try {
            return answerCommand(Zelk::Json::readText(line));
        } catch (std::exception const& e) {
            // Text that is no JSON, a missing or wrong member, a wrong id: every failure is an exception with
            // a text that helps the sender.
            return acknowledge(std::string("refused: ") + e.what());
        }
    }

private:
    std::string answerCommand(Element&& tree)
    {
        Zelk::MetaData::Object const& members = tree;
        auto const id = members.find("id");
        if (id == members.end())
            return answerRegistration(std::move(tree));
        switch (Zelk::MetaData::numberAs<int>(id->element())) {
        case -3:
            return answerLogMode(read<EnableLogModeCommand>(std::move(tree)));
        case -5:
            return answerUnsubscription(read<DeleteSubscriberCommand>(std::move(tree)));
        case -6:
            read<NormalGlobalEventCommand<-6>>(std::move(tree));
            return stateSpace();
        case -10:
            return answerQueue(read<NormalGlobalEventCommand<-10>>(std::move(tree)));
        default:
            // Reading throws "event id does not match expected value" for every id but -4.
            return answerSubscription(read<CreateSubscriberCommand>(std::move(tree)));
        }
    }

    std::string answerRegistration(Element&& tree)
    {
        Zelk::MetaData::Object const& members = tree;
        if (members.find("eventlist") == members.end())
            throw std::runtime_error("a command needs an \"id\" or an \"eventlist\"");
        if (members.find("filterlist") == members.end()) {
            auto const command = read<UnregisterCommand>(std::move(tree));
            for (int const event : command.events())
                events_.erase(event);
            return acknowledge(std::to_string(command.events().size()) + " events withdrawn");
        }
        auto const command = read<RegisterCommand>(std::move(tree));
        for (RegisterCommand::Event const& event : command.events())
            events_.insert(event.id());
        return acknowledge(std::to_string(command.events().size()) + " events registered");
    }

    std::string answerSubscription(CreateSubscriberCommand const& command)
    {
        subscriptions_.insert({command.publisherName(), command.eventId()});
        return acknowledge("subscribed to event " + std::to_string(command.eventId()) + " of " +
                           command.publisherName());
    }

    std::string answerUnsubscription(DeleteSubscriberCommand const& command)
    {
        bool const known = subscriptions_.erase({command.publisherName(), command.eventId()}) > 0;
        return acknowledge(known ? "subscription cancelled" : "there was no such subscription");
    }

    std::string answerLogMode(EnableLogModeCommand const& command)
    {
        return acknowledge(command.value() ? "log mode is on" : "log mode is off");
    }

    std::string answerQueue(StateCommand const& command)
    {
        RegisterMessageQueueResponse response;
        response.setHeader("door");
        response.setName("/door." + command.clientName());
        return response.toJsonString();
    }

    static std::string stateSpace()
    {
        StateSpaceMetaDataResponse response;
        response.setHeader("door");
        auto& states = response.states();
        states.emplace_back("unlocking", 1, "Locked", "Closed", "unlock", 1, "pin", "string");
        states.emplace_back("locking", 2, "Closed", "Locked", "lock", 2, "", "");
        states.emplace_back("opening", 3, "Closed", "Open", "open", 3, "", "");
        states.emplace_back("closing", 4, "Open", "Closed", "close", 4, "", "");
        return response.toJsonString();
    }

    static std::string acknowledge(std::string const& what)
    {
        StateResponse response;
        response.setHeader(what);
        return response.toJsonString();
    }

    template <typename Command>
    static Command read(Element&& tree)
    {
        Command command;
        command.moveFromMetaData(std::move(tree));
        return command;
    }

    std::set<int> events_;
    std::set<std::pair<std::string, int>> subscriptions_;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: door_service SOCKET [--once]\n";
        return 2;
    }
    bool const once = argc > 2 && argv[2] == std::string("--once");
    try {
        LineSocket const door = LineSocket::listenAt(argv[1]);
        std::cout << "listening" << std::endl;
        while (true) {
            try {
                LineSocket client = door.accept();
                Conversation conversation;
                for (std::string line; client.receiveLine(line);)
                    client.sendLine(conversation.answer(line));
            } catch (std::system_error const& e) {
                std::cerr << "door_service: client lost: " << e.what() << "\n";
            }
            if (once)
                return 0;
        }
    } catch (std::exception const& e) {
        std::cerr << "door_service: " << e.what() << "\n";
        return 1;
    }
}
