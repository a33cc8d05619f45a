/// Texts of one file, processed by several threads, with the results in the order of the texts.
#pragma once

#include "tools/zelk-msg/text_source.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

namespace ZelkMsg {

/// Texts with the memory that they stand in.
class TextBatch {
public:
    /// Takes as many texts as make up a batch; false when there are none at all. Throws std::bad_alloc, and
    /// can go on from there when it is called again.
    bool fill(TextSource& source);
    /// Makes a text for which there was no memory one that is refused for that; false when it was the source
    /// that had not enough.
    bool refuseNext();
    /// The texts, valid as long as the batch is not filled again.
    std::vector<Text> texts() const;
    /// Bytes of all the texts.
    std::size_t size() const noexcept { return bytes_.size(); }

private:
    struct Span {
        std::size_t offset;
        Text text; // its bytes are elsewhere
    };
    std::string bytes_;
    std::vector<Span> spans_;
    Text next_; // from the source, but not here yet
    bool hasNext_ = false;
};

/// Adds `count` threads that run `work`, or fewer where the system allows no more. Throws Trouble when it
/// allows none.
void startThreads(std::vector<std::thread>& threads, unsigned int count, std::function<void()> const& work);

/// Reads the source in batches, lets `jobs` threads turn each into a Result by `process`, and hands the
/// results to `deliver` in the order of the batches, on the calling thread. Memory stays bounded: only a few
/// batches are under way at a time, of `mostBytes` bytes of text, or one that is longer. When there is not
/// enough for a batch, that may be because of what other threads took: a Result whose `outOfMemory` is set,
/// or std::bad_alloc, has it processed again alone, and one that cannot be read waits until the others are
/// done. An exception of `process` or of the source is thrown on, that of the source after the results of all
/// that was read before.
template <typename Result>
void processBatches(TextSource& source, unsigned int jobs, std::size_t mostBytes,
                    std::function<Result(std::vector<Text> const&)> const& process,
                    std::function<void(Result const&)> const& deliver)
{
    struct Work {
        TextBatch batch;
        Result result;
        std::exception_ptr failure;
        bool done = false;
    };
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::unique_ptr<Work>> under_way; // in the order of the texts
    std::size_t next = 0;                        // of under_way: not taken by a thread yet
    std::size_t bytes = 0;                       // of the batches in under_way
    bool ended = false;
    std::shared_mutex memory;

    auto const processWithOthers = [&](Work& work) {
        std::shared_lock<std::shared_mutex> const with_others(memory);
        try {
            work.result = process(work.batch.texts());
            return !work.result.outOfMemory;
        } catch (std::bad_alloc const&) {
            return false;
        }
    };
    auto const processOne = [&](Work& work) {
        try {
            if (!processWithOthers(work)) {
                std::unique_lock<std::shared_mutex> const alone(memory);
                work.result = process(work.batch.texts());
            }
        } catch (...) {
            work.failure = std::current_exception();
        }
    };
    auto const worker = [&] {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            changed.wait(lock, [&] { return ended || next < under_way.size(); });
            if (next == under_way.size())
                return;
            Work& work = *under_way[next++];
            lock.unlock();
            processOne(work);
            lock.lock();
            work.done = true;
            changed.notify_all();
        }
    };

    std::vector<std::thread> threads;
    auto const stop = [&] {
        {
            std::lock_guard<std::mutex> const lock(mutex);
            ended = true;
            next = under_way.size();
        }
        changed.notify_all();
        for (std::thread& thread : threads)
            thread.join();
    };
    auto const deliverFirst = [&] {
        std::unique_ptr<Work> first;
        {
            std::unique_lock<std::mutex> lock(mutex);
            changed.wait(lock, [&] { return under_way.front()->done; });
            first = std::move(under_way.front());
            under_way.pop_front();
            --next;
            bytes -= first->batch.size();
        }
        if (first->failure)
            std::rethrow_exception(first->failure);
        deliver(first->result);
    };
    std::exception_ptr unreadable;
    auto const fill = [&](TextBatch& batch) {
        for (;;) {
            try {
                return batch.fill(source);
            } catch (std::bad_alloc const&) {
                if (under_way.empty() && !batch.refuseNext()) {
                    unreadable = std::current_exception();
                    return true;
                }
            } catch (...) {
                unreadable = std::current_exception(); // after what was read before it
                return true;
            }
            if (!under_way.empty())
                deliverFirst();
        }
    };
    try {
        startThreads(threads, jobs, worker);
        while (!unreadable) {
            auto work = std::make_unique<Work>();
            if (!fill(work->batch))
                break;
            {
                std::lock_guard<std::mutex> const lock(mutex);
                bytes += work->batch.size();
                under_way.push_back(std::move(work));
            }
            changed.notify_all();
            // Only this thread adds and takes away, so that it may look without the lock.
            while (!under_way.empty() && (under_way.size() > 2 * std::size_t{jobs} || bytes > mostBytes))
                deliverFirst();
        }
        while (!under_way.empty())
            deliverFirst();
        if (unreadable)
            std::rethrow_exception(unreadable);
    } catch (...) {
        stop();
        throw;
    }
    stop();
}

} // namespace ZelkMsg
