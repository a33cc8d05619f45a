#include "tools/zelk-msg/place_in_text.h"

#include "framework/json_text.h"
#include "tools/zelk-msg/catalogue.h"

#include <string>

namespace ZelkMsg {

namespace {

/// Walks over text that is known to be JSON.
class Walker {
public:
    explicit Walker(std::string_view text) : text_(text) { skipSpace(); }

    std::size_t position() const noexcept { return position_; }
    char peek() const noexcept { return text_[position_]; }

    /// Enters the value of that name or index in the value that begins here; false, with the position
    /// unchanged, when there is none.
    bool enter(std::string_view step)
    {
        std::size_t const begin = position_;
        std::size_t found = std::string_view::npos;
        bool const object = peek() == '{';
        if (!object && peek() != '[')
            return false;
        next();
        for (std::size_t index = 0; peek() != '}' && peek() != ']'; ++index) {
            bool match = !object && std::to_string(index) == step;
            if (object) {
                std::size_t const name = position_;
                skipString();
                match = nameIs(text_.substr(name, position_ - name), step);
                skipSpace();
                next(); // the colon
            }
            if (match)
                found = position_;
            skipValue();
            skipSpace();
            if (peek() == ',')
                next();
        }
        position_ = found == std::string_view::npos ? begin : found;
        return found != std::string_view::npos;
    }

private:
    static bool nameIs(std::string_view quoted, std::string_view name)
    {
        if (quoted.find('\\') == std::string_view::npos)
            return quoted.substr(1, quoted.size() - 2) == name;
        return Zelk::Json::readText(quoted).asString() == name;
    }

    void skipSpace()
    {
        position_ = text_.find_first_not_of(" \t\r\n", position_);
        if (position_ == std::string_view::npos)
            position_ = text_.size();
    }

    void next()
    {
        ++position_;
        skipSpace();
    }

    void skipString()
    {
        for (++position_; text_[position_] != '"'; ++position_) {
            if (text_[position_] == '\\')
                ++position_;
        }
        ++position_;
    }

    void skipValue()
    {
        std::size_t depth = 0;
        do {
            char const c = peek();
            if (c == '"') {
                skipString();
                continue;
            }
            if (c == '{' || c == '[')
                ++depth;
            else if (c == '}' || c == ']')
                --depth;
            else if (depth == 0) {
                position_ = text_.find_first_of(",]} \t\r\n", position_);
                return;
            }
            ++position_;
        } while (depth > 0);
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

} // namespace

std::size_t offsetOf(std::string_view text, std::string_view path)
{
    Walker walker(text);
    for (std::string_view const step : steps(path)) {
        if (!walker.enter(step))
            break;
    }
    return walker.position();
}

} // namespace ZelkMsg
