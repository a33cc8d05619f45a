#include "tools/zelk-msg/text_batches.h"

#include "tools/zelk-msg/trouble.h"

#include <new>
#include <system_error>

namespace ZelkMsg {

namespace {

constexpr std::size_t batchSize = 256 * 1024;

} // namespace

bool TextBatch::fill(TextSource& source)
{
    bytes_.clear();
    spans_.clear();
    Text text;
    while (bytes_.size() < batchSize && source.next(text)) {
        std::size_t const offset = bytes_.size();
        try {
            bytes_ += text.bytes;
        } catch (std::bad_alloc const&) {
            text.bytes = {};
            text.problem = "needs more memory than the limit";
        }
        spans_.push_back({offset, text});
    }
    return !spans_.empty();
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
