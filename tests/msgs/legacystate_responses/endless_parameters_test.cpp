// Reading an event that has a parameter goes on until memory ends. So each case is a child process with
// little memory: operator new of this program fails when more than the budget is in use. That bound holds
// under the sanitizers too, which need more address space than any limit of the system would leave them;
// without them the system's limit is tried as well.
#include "msgs/legacystate/metadata_response.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZELK_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define ZELK_SANITIZED 1
#endif
#endif

namespace {
std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> budget{std::numeric_limits<std::size_t>::max()};

// In front of every block stands its size.
constexpr std::size_t headSize = alignof(std::max_align_t);
} // namespace

void* operator new(std::size_t size)
{
    if (size > budget || inUse + size > budget)
        throw std::bad_alloc();
    void* const block = std::malloc(headSize + size);
    if (block == nullptr)
        throw std::bad_alloc();
    *static_cast<std::size_t*>(block) = size;
    inUse += size;
    return static_cast<char*>(block) + headSize;
}

void operator delete(void* memory) noexcept
{
    if (memory == nullptr)
        return;
    void* const block = static_cast<char*>(memory) - headSize;
    inUse -= *static_cast<std::size_t*>(block);
    std::free(block);
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace Zelk::Msgs::LegacyState {
namespace {

using EventMetaData = MetaDataResponse::EventMetaData;

char const* const eventWithParameter =
    R"({"name":"new","id":7,"param0_name":"speed","param0_type":"int","param0_default":5})";
char const* const responseWithParameter =
    R"({"header":"new","body":{"id":-1,"eventlist":[{"name":"before","id":1},)"
    R"({"name":"start","id":7,"param0_name":"speed","param0_type":"int","param0_default":5}]}})";

/// How a child ended.
enum Ending : int { ranOutOfMemory = 0, returned = 1, threwAnother = 2, wrongAfterwards = 3 };

/// Runs `read` in a child process after `limit`, and reports how it ended. `check` says whether the object is
/// as it should be after the failure.
template <typename Limit, typename Read, typename Check>
Ending inChild(Limit limit, Read read, Check check)
{
    pid_t const child = fork();
    if (child == 0) {
        limit();
        Ending ending = returned;
        try {
            read();
        } catch (std::bad_alloc const&) {
            ending = ranOutOfMemory;
        } catch (std::length_error const&) {
            ending = ranOutOfMemory;
        } catch (...) {
            ending = threwAnother;
        }
        budget = std::numeric_limits<std::size_t>::max();
        if (ending == ranOutOfMemory && !check())
            ending = wrongAfterwards;
        _exit(ending);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        ADD_FAILURE() << "the child did not end by itself, status " << status;
        return threwAnother;
    }
    return static_cast<Ending>(WEXITSTATUS(status));
}

void allowSixteenMebibytes()
{
    budget = inUse + (std::size_t{16} << 20);
}

TEST(EndlessParameters, EndsTheReadingOfAnEventOnlyWhenMemoryEnds)
{
    EventMetaData event;
    EXPECT_EQ(inChild(
                  allowSixteenMebibytes, [&] { event.fromJsonString(eventWithParameter); },
                  [&] {
                      // What was read so far is there: the name, the id, and one parameter over and over.
                      if (event.name() != "new" || event.eventId() != 7 || event.params().size() < 1000)
                          return false;
                      for (auto const& param : event.params()) {
                          if (param.name() != "speed" || param.type() != "int" ||
                              param.defaultValue().asInt64() != 5)
                              return false;
                      }
                      event.fromJsonString(R"({"name":"again","id":8})");
                      return event.name() == "again" && event.params().empty();
                  }),
              ranOutOfMemory);
}

TEST(EndlessParameters, EndsTheReadingOfAResponseOnlyWhenMemoryEnds)
{
    MetaDataResponse response;
    response.fromJsonString(R"({"header":"old","body":{"id":-1,"eventlist":[]},"kept":1})");
    EXPECT_EQ(
        inChild(
            allowSixteenMebibytes, [&] { response.fromJsonString(responseWithParameter); },
            [&] {
                return response.header() == "new" && response.events().size() == 1 &&
                       response.events()[0].name() == "before" &&
                       response.toJsonString() ==
                           R"({"body":{"eventlist":[{"id":1,"name":"before"}],"id":-1},"header":"new","kept":1})";
            }),
        ranOutOfMemory);
}

TEST(EndlessParameters, ReadsTheSameEventInTheParentWhenItHasNoParam0Name)
{
    EventMetaData event;
    event.fromJsonString(
        R"({"name":"new","id":7,"param1_name":"speed","param1_type":"int","param1_default":5})");
    EXPECT_TRUE(event.params().empty());
}

#ifndef ZELK_SANITIZED
TEST(EndlessParameters, EndsAtTheAddressSpaceLimitOfTheProcess)
{
    MetaDataResponse response;
    EXPECT_EQ(inChild(
                  [] {
                      rlimit const limit{rlim_t{256} << 20, rlim_t{256} << 20};
                      if (setrlimit(RLIMIT_AS, &limit) != 0)
                          _exit(threwAnother);
                  },
                  [&] { response.fromJsonString(responseWithParameter); },
                  [&] { return response.events().size() == 1; }),
              ranOutOfMemory);
}
#endif

} // namespace
} // namespace Zelk::Msgs::LegacyState
