/// A small client of the door service: registers for events, subscribes to one, asks for the state space, and
/// sends something wrong to see it refused. Prints what it sends and gets, one JSON text a line.
///
///     door_client SOCKET

#include "examples/line_socket.h"
#include "msgs/legacystate/queue_mapping_app_info.h"
#include "msgs/legacystate/registration_commands.h"
#include "msgs/legacystate/state_space_response.h"
#include "msgs/legacystate/subscriber_commands.h"

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

using namespace Zelk::Msgs::LegacyState;

class Client {
public:
    explicit Client(std::string const& path) : service_(LineSocket::connectTo(path)) {}

    /// Sends the command in the name of this client and reads the answer into a response of the expected
    /// class, which throws when the answer is another one.
    template <typename Response>
    Response ask(StateCommand& command)
    {
        command.setClientName("door-panel");
        Response response;
        response.fromJsonString(exchange(command.toJsonString()));
        return response;
    }

    /// Sends a line as it is and returns the answer as it is.
    std::string exchange(std::string const& line)
    {
        std::cout << "> " << line << "\n";
        service_.sendLine(line);
        std::string answer;
        if (!service_.receiveLine(answer))
            throw std::runtime_error("the service has closed the connection");
        std::cout << "< " << answer << "\n";
        return answer;
    }

private:
    LineSocket service_;
};

void talk(Client& client)
{
    NormalGlobalEventCommand<-10> open_queue;
    auto const queue = client.ask<RegisterMessageQueueResponse>(open_queue);
    std::cout << "my queue is " << queue.name() << "\n";

    RegisterCommand registration;
    registration.events().emplace_back(3, 1, 0.5);
    registration.events().emplace_back(4, 1, 0.5);
    std::cout << client.ask<StateResponse>(registration).header() << "\n";

    CreateSubscriberCommand subscription;
    subscription.setPublisherName("entrance");
    subscription.setEventId(3);
    subscription.setFilterType(1);
    subscription.setFilterFreq(2.0);
    std::cout << client.ask<StateResponse>(subscription).header() << "\n";

    NormalGlobalEventCommand<-6> ask_states;
    auto const space = client.ask<StateSpaceMetaDataResponse>(ask_states);
    for (auto const& transition : space.states())
        std::cout << transition.startState() << " -- " << transition.eventName() << " -> "
                  << transition.endState() << "\n";

    // A subscription under the id of another command: the service refuses it and says why.
    StateResponse refusal;
    refusal.fromJsonString(
        client.exchange(R"({"clientname":"door-panel","commandid":0,"id":-8,"publisherName":"x"})"));
    std::cout << refusal.header() << "\n";

    DeleteSubscriberCommand cancellation;
    cancellation.setPublisherName("entrance");
    cancellation.setEventId(3);
    std::cout << client.ask<StateResponse>(cancellation).header() << "\n";

    UnregisterCommand withdrawal;
    withdrawal.events() = {3, 4};
    std::cout << client.ask<StateResponse>(withdrawal).header() << "\n";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: door_client SOCKET\n";
        return 2;
    }
    try {
        Client client(argv[1]);
        talk(client);
    } catch (std::exception const& e) {
        std::cerr << "door_client: " << e.what() << "\n";
        return 1;
    }
}
