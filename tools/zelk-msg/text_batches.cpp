#include "tools/zelk-msg/text_batches.h"

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
        spans_.push_back({bytes_.size(), text});
        bytes_ += text.bytes;
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

} // namespace ZelkMsg
