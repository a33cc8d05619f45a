#include "tools/zelk-msg/text_batches.h"

#include "tools/zelk-msg/trouble.h"

#include <system_error>

namespace ZelkMsg {

namespace {

constexpr std::size_t batchSize = 256 * 1024;

} // namespace

bool TextBatch::fill(TextSource& source)
{
    while (bytes_.size() < batchSize && (hasNext_ || source.next(next_))) {
        hasNext_ = true;
        spans_.push_back({bytes_.size(), next_});
        try {
            bytes_ += next_.bytes;
        } catch (...) {
            spans_.pop_back();
            throw;
        }
        hasNext_ = false;
    }
    return !spans_.empty();
}

bool TextBatch::refuseNext()
{
    next_.bytes = {};
    next_.problem = "needs more memory than the limit";
    return hasNext_;
}

std::vector<Text> TextBatch::texts() const
{
    std::vector<Text> result;
    result.reserve(spans_.size());
    for (Span const& span : spans_) {
        result.push_back(span.text);
        result.back().bytes = std::string_view(bytes_).substr(span.offset, span.text.bytes.size());
    }
    return result;
}

void startThreads(std::vector<std::thread>& threads, unsigned int count, std::function<void()> const& work)
{
    while (threads.size() < count) {
        try {
            threads.emplace_back(work);
        } catch (std::system_error const& e) {
            if (threads.empty())
                throw Trouble("no thread can be started: " + e.code().message());
            return;
        }
    }
}

} // namespace ZelkMsg
