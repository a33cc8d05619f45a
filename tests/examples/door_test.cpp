#include "examples/line_socket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

using testing::HasSubstr;

namespace {

/// A running door service, ended with the test.
class Service {
public:
    Service()
    {
        std::string folder = "/tmp/zelk-door-XXXXXX";
        if (::mkdtemp(folder.data()) == nullptr)
            throw std::runtime_error("no folder");
        folder_ = folder;
        std::array<int, 2> pipe{};
        if (::pipe(pipe.data()) != 0)
            throw std::runtime_error("no pipe");
        child_ = ::fork();
        if (child_ == 0) {
            ::dup2(pipe[1], STDOUT_FILENO);
            ::close(pipe[0]);
            ::close(pipe[1]);
            ::execl(ZELK_DOOR_SERVICE_PATH, "door_service", path().c_str(), nullptr);
            ::_exit(127);
        }
        ::close(pipe[1]);
        char greeting[64] = {};
        ssize_t const count = ::read(pipe[0], greeting, sizeof greeting); // it listens from now on
        ::close(pipe[0]);
        if (count <= 0)
            throw std::runtime_error("the service did not start");
    }
    Service(Service const&) = delete;
    Service& operator=(Service const&) = delete;
    ~Service()
    {
        ::kill(child_, SIGTERM);
        ::waitpid(child_, nullptr, 0);
        ::unlink(path().c_str());
        ::rmdir(folder_.c_str());
    }
    std::string path() const { return folder_ + "/door"; }

private:
    std::string folder_;
    pid_t child_ = -1;
};

/// What the client prints, and its exit status.
std::string runClient(std::string const& path, int& status)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(
        ::popen((ZELK_DOOR_CLIENT_PATH " " + path + " 2>&1").c_str(), "r"), ::pclose);
    std::string text;
    char chunk[4096];
    while (std::size_t const count = std::fread(chunk, 1, sizeof chunk, output.get()))
        text.append(chunk, count);
    status = WEXITSTATUS(::pclose(output.release()));
    return text;
}

std::string exchange(LineSocket& socket, std::string const& line)
{
    socket.sendLine(line);
    std::string answer;
    EXPECT_TRUE(socket.receiveLine(answer));
    return answer;
}

} // namespace

TEST(DoorExample, ClientAndServiceUnderstandEachOther)
{
    Service const service;
    int status = -1;
    std::string const text = runClient(service.path(), status);
    EXPECT_EQ(status, 0);
    EXPECT_THAT(text, HasSubstr("my queue is /door.door-panel\n"));
    EXPECT_THAT(text,
                HasSubstr("> {\"clientname\":\"door-panel\",\"commandid\":0,\"eventlist\":{\"ids\":[3,4]},"
                          "\"filterlist\":{\"freq\":[0.5,0.5],\"type\":[1,1]}}\n"));
    EXPECT_THAT(text, HasSubstr("\n2 events registered\n"));
    EXPECT_THAT(text, HasSubstr("\nsubscribed to event 3 of entrance\n"));
    EXPECT_THAT(text, HasSubstr("Locked -- unlock -> Closed\nClosed -- lock -> Locked\n"));
    EXPECT_THAT(text, HasSubstr("\nrefused: event id does not match expected value\n"));
    EXPECT_THAT(text, HasSubstr("\nsubscription cancelled\n"));
    EXPECT_THAT(text, HasSubstr("\n2 events withdrawn\n"));
}

TEST(DoorExample, ServiceAnswersOneClientAfterTheOther)
{
    Service const service;
    for (int i = 0; i < 3; ++i) {
        int status = -1;
        runClient(service.path(), status);
        EXPECT_EQ(status, 0);
    }
}

TEST(DoorExample, ClientSaysSoWhenNobodyListens)
{
    int status = -1;
    EXPECT_EQ(runClient("/nonexistent/door", status), "door_client: socket: No such file or directory\n");
    EXPECT_EQ(status, 1);
}

TEST(DoorExample, ServiceAnswersHandWrittenMessages)
{
    struct Case {
        char const* line;
        char const* answer;
    };
    Case const cases[] = {
        {R"( { "commandid" : 0.0 , "clientname" : "x" , "id" : -10 } )",
         R"({"body":{"id":-2,"name":"/door.x"},"header":"door"})"},
        {R"({"id":-3,"commandid":0,"clientname":"x","value":2})",
         R"({"body":{"id":0},"header":"log mode is on"})"},
        {R"({"id":-3,"commandid":0,"clientname":"x","value":0.000001})",
         R"({"body":{"id":0},"header":"log mode is off"})"},
        {R"({"id":-4,"commandid":0,"clientname":"x","publisherName":"p","eventId":"7","filterType":0,"filterFreq":1})",
         R"({"body":{"id":0},"header":"refused: expected integer, found string"})"},
        {R"({"id":-5,"commandid":0,"clientname":"x","publisherName":"p","eventId":7})",
         R"({"body":{"id":0},"header":"there was no such subscription"})"},
        {R"({"id":-1,"commandid":0,"clientname":"x"})",
         R"({"body":{"id":0},"header":"refused: event id does not match expected value"})"},
        {R"({"commandid":0,"clientname":"x","eventlist":{"ids":[1,2]},"filterlist":{"type":[1],"freq":[1.0]}})",
         R"({"body":{"id":0},"header":"refused: event ids and filter lists do not match"})"},
        {R"({"commandid":0,"clientname":"x","eventlist":{"ids":[1,2]}})",
         R"({"body":{"id":0},"header":"2 events withdrawn"})"},
        {R"({"clientname":"x"})",
         R"({"body":{"id":0},"header":"refused: a command needs an \"id\" or an \"eventlist\""})"},
        {"[]", R"({"body":{"id":0},"header":"refused: expected object, found array"})"},
        {"nonsense",
         R"({"body":{"id":0},"header":"refused: line 1, column 2: expected \"null\", found 'o'"})"},
    };
    Service const service;
    LineSocket socket = LineSocket::connectTo(service.path());
    for (Case const& one : cases)
        EXPECT_EQ(exchange(socket, one.line), one.answer) << one.line;
}

TEST(DoorExample, ServiceOutlivesAClientThatSendsTooMuch)
{
    Service const service;
    {
        LineSocket socket = LineSocket::connectTo(service.path());
        std::string const flood(3 << 20, 'x');
        try {
            socket.sendLine(flood);
        } catch (std::system_error const& e) {
            EXPECT_TRUE(e.code().value() == EPIPE || e.code().value() == ECONNRESET) << e.what();
        }
    }
    LineSocket socket = LineSocket::connectTo(service.path());
    EXPECT_THAT(exchange(socket, R"({"commandid":0,"clientname":"x","id":-10})"), HasSubstr("/door.x"));
}
