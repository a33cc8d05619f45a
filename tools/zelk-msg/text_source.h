/// Cuts an input into texts, one message each, without reading more of it than needed.
///
/// An input is any mixture of: one JSON text a line, texts that follow each other over any number of lines,
/// and arrays of them. Where a text is broken off, reading goes on at the next line that begins a new one, so
/// that one bad message costs one message.
///
/// Nothing is checked here but brackets and quotes; a text that is cut out may still be anything but JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ZelkMsg {

/// One text and where it begins.
struct Text {
    std::string_view bytes;   ///< valid until the source is asked for the next text
    std::size_t line = 1;     ///< from 1
    std::size_t column = 1;   ///< from 1, in bytes
    std::string_view problem; ///< why this is no text at all; empty when it may be one
};

/// The texts of one file, or of standard input ("-").
class TextSource {
public:
    /// Throws UnreadableFile when the file cannot be opened. A text longer than `longest` bytes is given as a
    /// problem. With `follow`, a regular file is waited for at its end: to grow, to be begun anew, or to be
    /// replaced by another of its name. That ends only when nobody reads standard output any more.
    ///
    /// `beforeWaiting` is called before anything is read that may not be there yet: from a pipe, a terminal,
    /// or a file that is followed.
    TextSource(std::string const& file, std::size_t longest, std::function<void()> beforeWaiting = {},
               bool follow = false);
    TextSource(TextSource const&) = delete;
    TextSource& operator=(TextSource const&) = delete;
    ~TextSource();

    /// The next text; false at the end. Throws UnreadableFile when the file cannot be read.
    bool next(Text& text);

    /// The name for error lines: the file's, or "<stdin>".
    std::string const& name() const noexcept { return name_; }
    /// Bytes handed out so far, and of the whole file (0 when that is not known).
    std::uint64_t position() const noexcept { return consumed_ + begin_; }
    std::uint64_t size() const noexcept { return size_; }

private:
    struct BegunAnew;

    bool more();
    bool awaitGrowth();
    void beginAnew();
    void skipByteOrderMark();
    bool nextText(Text& text);
    bool skipSpace();
    void advance(std::size_t count);
    bool findEnd(std::size_t& length, bool& broken);
    bool wholeLine(std::size_t& length);
    bool skipToNextText(std::size_t column);
    bool give(Text& text, std::size_t length, std::string_view problem = {});
    std::size_t column() const noexcept
    {
        return static_cast<std::size_t>(consumed_ + begin_ - lineStart_) + 1;
    }

    std::string name_;
    int descriptor_;
    bool follow_ = false;
    std::size_t longest_;
    std::function<void()> beforeWaiting_;
    std::uint64_t size_ = 0;

    std::vector<char> buffer_;
    std::size_t begin_ = 0;       // of what is not handed out yet
    std::size_t end_ = 0;         // of what was read
    std::uint64_t consumed_ = 0;  // bytes of the file before the buffer
    std::uint64_t lineStart_ = 0; // offset in the file of the current line
    std::size_t line_ = 1;
    bool ended_ = false;
    bool started_ = false;
    bool begunAnew_ = false;
    bool inArray_ = false;
    bool commaAllowed_ = false;
    std::size_t recover_ = 0; // column of a broken text that must be skipped first; 0 when there is none
};

} // namespace ZelkMsg
