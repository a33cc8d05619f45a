#include "tools/zelk-msg/text_source.h"

#include "tools/zelk-msg/trouble.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace ZelkMsg {

namespace {

constexpr std::size_t chunk = 256 * 1024;
constexpr int followInterval = 100; // milliseconds

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string reasonOf(int error)
{
    return std::generic_category().message(error);
}

/// Follows brackets and quotes from the first byte of a text to its last.
///
/// Stops before what cannot belong to the text, so that a text that was broken off does not swallow its
/// successors: at a line end inside a string, and at a line that begins with "{" where no value can stand, or
/// where one can but the line begins as only whole messages do.
class BracketScanner {
public:
    enum class Verdict { more, complete, broken };

    /// Goes on with `bytes`, the text from its first byte on, of which more is known than in the last call.
    Verdict scan(std::string_view bytes)
    {
        while (position_ < bytes.size()) {
            if (inString_) {
                if (!scanString(bytes))
                    return inString_ && position_ < bytes.size() ? Verdict::broken : Verdict::more;
                continue;
            }
            char const c = bytes[position_];
            if (c == '{' || c == '[') {
                if (c == '{' && lineBegins_ && !open_.empty()) {
                    if (!valueMayStandHere())
                        return Verdict::broken;
                    if (bytes.size() - position_ < longestOpening)
                        return Verdict::more;
                    if (opensMessage(bytes.substr(position_)))
                        return Verdict::broken;
                }
                open_.push_back(c);
            } else if (c == '}' || c == ']') {
                if (open_.empty() || open_.back() != (c == '}' ? '{' : '['))
                    return Verdict::broken;
                open_.pop_back();
                if (open_.empty()) {
                    ++position_;
                    return Verdict::complete;
                }
            } else if (c == '"') {
                inString_ = true;
            }
            if (!isSpace(c)) {
                previous_ = c;
                lineBegins_ = false;
            } else {
                lineBegins_ = c == '\n';
            }
            ++position_;
        }
        return Verdict::more;
    }

    /// Bytes that belong to the text.
    std::size_t length() const noexcept { return position_; }

private:
    /// False when the string does not end in `bytes`, or not in this line.
    bool scanString(std::string_view bytes)
    {
        while (position_ < bytes.size()) {
            char const c = bytes[position_];
            if (c == '"' && !escaped_) {
                inString_ = false;
                ++position_;
                return true;
            }
            if (c == '\n')
                return false;
            escaped_ = c == '\\' && !escaped_;
            ++position_;
        }
        return false;
    }

    bool valueMayStandHere() const
    {
        return previous_ == ':' || (open_.back() == '[' && (previous_ == '[' || previous_ == ','));
    }

    static bool opensMessage(std::string_view bytes)
    {
        for (std::string_view const opening : {"{\"clientname\":", "{\"commandid\":", "{\"header\":",
                                               "{\"body\":", "{\"Data\":", "{\"MsgId\":"}) {
            if (bytes.substr(0, opening.size()) == opening)
                return true;
        }
        return false;
    }

    static constexpr std::size_t longestOpening = 14;

    std::string open_;
    std::size_t position_ = 0;
    char previous_ = '\0';
    bool lineBegins_ = false;
    bool inString_ = false;
    bool escaped_ = false;
};

} // namespace

/// Thrown when a file that is followed begins anew: what was read of a text so far will never be completed.
struct TextSource::BegunAnew {};

TextSource::TextSource(std::string const& file, std::size_t longest, std::function<void()> beforeWaiting,
                       bool follow)
    : name_(file == "-" ? "<stdin>" : file), descriptor_(STDIN_FILENO), longest_(longest),
      beforeWaiting_(std::move(beforeWaiting))
{
    if (file != "-") {
        descriptor_ = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor_ < 0)
            throw UnreadableFile(file + ": " + reasonOf(errno));
    }
    struct stat status = {};
    bool const regular = ::fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
    follow_ = follow && regular; // anything else ends when its writer ends
    if (regular && !follow) {
        size_ = static_cast<std::uint64_t>(status.st_size);
        beforeWaiting_ = nullptr;
    }
}

TextSource::~TextSource()
{
    if (descriptor_ != STDIN_FILENO)
        ::close(descriptor_);
}

/// Reads on; false at the end of the file. What is not handed out yet moves to the front.
bool TextSource::more()
{
    if (ended_)
        return false;
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        consumed_ += begin_;
        end_ -= begin_;
        begin_ = 0;
    }
    // Doubling keeps the cost of a long text linear.
    std::size_t const room = std::max(chunk, end_);
    if (buffer_.size() < end_ + room)
        buffer_.resize(end_ + room);
    if (beforeWaiting_)
        beforeWaiting_();
    for (;;) {
        ssize_t const count = ::read(descriptor_, buffer_.data() + end_, room);
        if (count > 0) {
            end_ += static_cast<std::size_t>(count);
            return true;
        }
        if (count == 0 && follow_ && awaitGrowth())
            continue;
        if (count == 0) {
            ended_ = true;
            return false;
        }
        if (errno != EINTR)
            throw UnreadableFile(name_ + ": " + reasonOf(errno));
    }
}

/// At the end of a file that is followed: waits a while. False when there is nobody left to wait for; throws
/// BegunAnew when another file took the place of this one, or when this one became shorter.
bool TextSource::awaitGrowth()
{
    pollfd reader{STDOUT_FILENO, 0, 0};
    if (::poll(&reader, 1, followInterval) > 0)
        return false; // whoever read the output went away
    struct stat here = {};
    if (::fstat(descriptor_, &here) != 0 || here.st_size > static_cast<off_t>(consumed_ + end_))
        return true;
    struct stat named = {};
    bool const replaced = descriptor_ != STDIN_FILENO && ::stat(name_.c_str(), &named) == 0 &&
                          S_ISREG(named.st_mode) &&
                          (named.st_dev != here.st_dev || named.st_ino != here.st_ino);
    if (replaced) {
        int const other = ::open(name_.c_str(), O_RDONLY | O_CLOEXEC);
        if (other < 0)
            return true; // gone again, or not for us; perhaps the next time
        ::close(descriptor_);
        descriptor_ = other;
        throw BegunAnew();
    }
    if (here.st_size < static_cast<off_t>(consumed_ + end_)) {
        ::lseek(descriptor_, 0, SEEK_SET);
        throw BegunAnew();
    }
    return true;
}

/// Forgets all that was read of the file.
void TextSource::beginAnew()
{
    begin_ = end_ = 0;
    consumed_ = lineStart_ = 0;
    line_ = 1;
    inArray_ = commaAllowed_ = started_ = begunAnew_ = false;
    recover_ = 0;
}

/// Hands out `count` bytes, counting the lines in them.
void TextSource::advance(std::size_t count)
{
    char const* from = buffer_.data() + begin_;
    char const* const to = from + count;
    while (auto const* const newline =
               static_cast<char const*>(std::memchr(from, '\n', static_cast<std::size_t>(to - from)))) {
        ++line_;
        from = newline + 1;
        lineStart_ = consumed_ + static_cast<std::size_t>(from - buffer_.data());
    }
    begin_ += count;
}

/// Goes to the next byte that is not white space; false at the end of the file.
bool TextSource::skipSpace()
{
    for (;;) {
        std::size_t count = 0;
        while (begin_ + count < end_ && isSpace(buffer_[begin_ + count]))
            ++count;
        advance(count);
        if (begin_ < end_)
            return true;
        if (!more())
            return false;
    }
}

/// The quick way for one text a line: a line from "{" to "}". False when this line is not like that.
bool TextSource::wholeLine(std::size_t& length)
{
    char const* const from = buffer_.data() + begin_;
    auto const* to = static_cast<char const*>(std::memchr(from, '\n', end_ - begin_));
    if (to == nullptr) {
        if (!ended_)
            return false;
        to = buffer_.data() + end_;
    }
    while (to > from && isSpace(to[-1]))
        --to;
    length = static_cast<std::size_t>(to - from);
    return length >= 2 && to[-1] == '}';
}

/// The length of the text that begins here, by its brackets; false at a text that is too long. A text that
/// does not begin with a bracket is the rest of its line.
bool TextSource::findEnd(std::size_t& length, bool& broken)
{
    char const first = buffer_[begin_];
    broken = false;
    if (first != '{' && first != '[') {
        std::size_t known = 0;
        for (;;) {
            while (begin_ + known < end_) {
                char const c = buffer_[begin_ + known];
                if (c == '\n' || (inArray_ && known > 0 && (c == ',' || c == ']')))
                    break;
                ++known;
            }
            if (begin_ + known < end_)
                break;
            if (known > longest_)
                return false;
            if (!more())
                break;
        }
        while (known > 1 && isSpace(buffer_[begin_ + known - 1]))
            --known;
        length = known;
        return true;
    }
    BracketScanner scanner;
    for (;;) {
        auto const verdict = scanner.scan(std::string_view(buffer_.data() + begin_, end_ - begin_));
        length = scanner.length();
        if (verdict == BracketScanner::Verdict::complete)
            return length <= longest_;
        if (verdict == BracketScanner::Verdict::broken) {
            broken = true;
            break;
        }
        if (length > longest_)
            return false;
        if (!more()) {
            broken = true;
            break;
        }
    }
    while (length > 1 && isSpace(buffer_[begin_ + length - 1]))
        --length;
    return true;
}

/// Leaves a broken text: goes to the next line whose first byte is "{", not further right than the broken
/// text began (in an array also to its closing bracket). False at the end of the file.
bool TextSource::skipToNextText(std::size_t wanted)
{
    for (;;) {
        if (begin_ == end_ && !more())
            return false;
        auto const* const from = buffer_.data() + begin_;
        auto const* const newline = static_cast<char const*>(std::memchr(from, '\n', end_ - begin_));
        if (newline == nullptr) {
            advance(end_ - begin_);
            continue;
        }
        advance(static_cast<std::size_t>(newline - from) + 1);
        if (!skipSpace())
            return false;
        char const c = buffer_[begin_];
        if (column() <= wanted && (c == '{' || (inArray_ && (c == ']' || c == ','))))
            return true;
    }
}

bool TextSource::give(Text& text, std::size_t length, std::string_view problem)
{
    text.bytes = std::string_view(buffer_.data() + begin_, length);
    text.line = line_;
    text.column = column();
    text.problem = problem;
    advance(length);
    return true;
}

bool TextSource::next(Text& text)
{
    for (;;) {
        if (begunAnew_)
            beginAnew();
        try {
            if (!started_)
                skipByteOrderMark();
            return nextText(text);
        } catch (BegunAnew const&) {
            begunAnew_ = true;
            // What is left of a text is reported as broken off.
            if (begin_ < end_)
                return give(text, end_ - begin_);
        }
    }
}

/// A mark at the beginning of a file belongs to the file, not to its first message.
void TextSource::skipByteOrderMark()
{
    started_ = true;
    while (end_ - begin_ < 3 && more()) {
    }
    std::string_view const beginning(buffer_.data() + begin_, end_ - begin_);
    std::string_view const mark = "\xEF\xBB\xBF";
    if (beginning.substr(0, mark.size()) == mark) {
        begin_ += mark.size();
        lineStart_ += mark.size();
    }
    for (std::string_view const other : {"\xFF\xFE", "\xFE\xFF"}) {
        if (beginning.substr(0, other.size()) == other)
            throw UnreadableFile(name_ + ": the text is UTF-16; messages are UTF-8");
    }
}

bool TextSource::nextText(Text& text)
{
    for (;;) {
        if (recover_ != 0) {
            std::size_t const wanted = recover_;
            recover_ = 0;
            if (!skipToNextText(wanted))
                return false;
            commaAllowed_ = inArray_;
        }
        if (!skipSpace()) {
            if (!inArray_)
                return false;
            inArray_ = false;
            return give(text, 0, "the array of messages is not closed");
        }
        char const c = buffer_[begin_];
        if (inArray_ && c == ']') {
            inArray_ = false;
            advance(1);
            continue;
        }
        if (inArray_ && c == ',' && commaAllowed_) {
            commaAllowed_ = false;
            advance(1);
            continue;
        }
        if (!inArray_ && c == '[') {
            inArray_ = true;
            commaAllowed_ = false;
            advance(1);
            continue;
        }
        break;
    }
    std::size_t length = 0;
    if (!inArray_ && buffer_[begin_] == '{' && wholeLine(length))
        return give(text, length);
    bool broken = false;
    std::size_t const start = column();
    if (!findEnd(length, broken)) {
        recover_ = start;
        return give(text, 0, "the text is too long for the memory limit");
    }
    if (broken)
        recover_ = start;
    commaAllowed_ = true;
    return give(text, length);
}

} // namespace ZelkMsg
