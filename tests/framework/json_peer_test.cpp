// The reader and the printer beside those of another library, which knows JSON by itself.
#include "framework/json_text.h"
#include "nodes.h"
#include "reading.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace Zelk::Json {
namespace {

using MetaData::Element;
using Tests::boolean;
using Tests::integer;
using Tests::real;
using Tests::shown;
using Tests::text;
using Peer = nlohmann::json;

bool isAccepted(std::string const& text)
{
    try {
        readText(text);
        return true;
    } catch (ParseError const&) {
        return false;
    }
}

/// Our tree of what the peer has read. Where it keeps an integer without sign that we keep as a double, so be
/// it.
Element treeOf(Peer const& value)
{
    switch (value.type()) {
    case Peer::value_t::object: {
        MetaData::Object members;
        for (auto const& [name, member] : value.items())
            members[name] = treeOf(member);
        return Element(std::move(members));
    }
    case Peer::value_t::array: {
        MetaData::Array items;
        for (Peer const& item : value)
            items[items.size()] = treeOf(item);
        return Element(std::move(items));
    }
    case Peer::value_t::string:
        return text(value.get<std::string>());
    case Peer::value_t::boolean:
        return boolean(value.get<bool>());
    case Peer::value_t::number_integer:
        return integer(value.get<long long>());
    case Peer::value_t::number_unsigned: {
        auto const number = value.get<std::uint64_t>();
        return number <= static_cast<std::uint64_t>(std::numeric_limits<long long>::max())
                   ? integer(static_cast<long long>(number))
                   : real(static_cast<double>(number));
    }
    case Peer::value_t::number_float:
        return real(value.get<double>());
    default:
        return Element();
    }
}

TEST(PeerReader, AcceptsTheSameBytesAndPairsOfBytes)
{
    // Without NUL, which the peer takes for the end of the text.
    for (int first = 1; first < 256; ++first) {
        std::string const one(1, static_cast<char>(first));
        ASSERT_EQ(isAccepted(one), Peer::accept(one)) << shown(one);
        for (int second = 1; second < 256; ++second) {
            std::string const two = one + static_cast<char>(second);
            ASSERT_EQ(isAccepted(two), Peer::accept(two)) << shown(two);
            std::string const quoted = '"' + two + '"';
            ASSERT_EQ(isAccepted(quoted), Peer::accept(quoted)) << shown(quoted);
        }
    }
}

TEST(PeerReader, AcceptsTheSameSpoiltTexts)
{
    std::string const text =
        "{\"a\\u00e9\\ud83d\\ude00\xC3\xA9\": [1, -2.5e+3 ,true,null],\"b\":{\"c\":\"\\n\",\"d\":[]}}";
    ASSERT_TRUE(isAccepted(text));
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::string const cut = text.substr(0, at);
        ASSERT_EQ(isAccepted(cut), Peer::accept(cut)) << shown(cut);
        std::string changed = text;
        for (int byte = 0; byte < 256; ++byte) {
            changed[at] = static_cast<char>(byte);
            ASSERT_EQ(isAccepted(changed), Peer::accept(changed)) << shown(changed);
        }
    }
}

/// Random valid texts in which nothing is regular: white space, escapes, repeated names, numbers of every
/// shape.
class TextWriter {
public:
    explicit TextWriter(std::uint64_t seed) : random_(seed) {}

    std::string write()
    {
        text_.clear();
        value(0);
        return text_;
    }

private:
    unsigned int below(unsigned int limit) { return static_cast<unsigned int>(random_() % limit); }

    void space()
    {
        for (auto count = below(5) == 0 ? below(4) : 0; count != 0; --count)
            text_ += " \n\t\r"[below(4)];
    }

    void value(unsigned int depth)
    {
        space();
        switch (below(depth > 6 ? 5 : 9)) {
        case 0:
            text_ += "null";
            break;
        case 1:
            text_ += below(2) == 0 ? "true" : "false";
            break;
        case 2:
        case 3:
            number();
            break;
        case 4:
            string(20);
            break;
        case 5:
        case 6:
            list('[', ']', depth);
            break;
        default:
            list('{', '}', depth);
        }
        space();
    }

    void list(char opening, char closing, unsigned int depth)
    {
        text_ += opening;
        space();
        unsigned int const count = below(4) == 0 ? below(30) : below(4);
        for (unsigned int i = 0; i < count; ++i) {
            if (i != 0)
                text_ += ',';
            if (opening == '{') {
                space();
                string(3);
                space();
                text_ += ':';
            }
            value(depth + 1);
        }
        text_ += closing;
    }

    void digits(unsigned int most)
    {
        for (unsigned int count = 1 + below(most); count != 0; --count)
            text_ += static_cast<char>('0' + below(10));
    }

    void number()
    {
        if (below(3) == 0)
            text_ += '-';
        if (below(5) == 0) {
            text_ += '0';
        } else {
            text_ += static_cast<char>('1' + below(9));
            if (below(2) == 0)
                digits(22);
        }
        if (below(3) == 0) {
            text_ += '.';
            digits(20);
        }
        if (below(4) == 0) {
            text_ += "eE"[below(2)];
            if (below(2) == 0)
                text_ += "+-"[below(2)];
            digits(2);
        }
    }

    void string(unsigned int most)
    {
        std::string const characters[] = {"\\\"",     "\\\\",         "\\/",
                                          "\\b",      "\\f",          "\\n",
                                          "\\r",      "\\t",          "\\u0000",
                                          "\\u00e9",  "\\u20AC",      "\\ud83d\\ude00",
                                          "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                          "\x7F"};
        text_ += '"';
        for (unsigned int count = below(most + 1); count != 0; --count) {
            if (below(4) == 0)
                text_ += characters[below(std::size(characters))];
            else
                text_ += static_cast<char>('a' + below(26));
        }
        text_ += '"';
    }

    std::mt19937_64 random_;
    std::string text_;
};

TEST(PeerReader, BuildsTheSameTreesOfRandomTexts)
{
    std::size_t bytes = 0;
    for (std::uint64_t seed = 0; seed < 1500; ++seed) {
        std::string const text = TextWriter(seed).write();
        bytes += text.size();
        ASSERT_EQ(readText(text), treeOf(Peer::parse(text))) << seed << ": " << shown(text);
    }
    EXPECT_GT(bytes, 50000u);
}

TEST(PeerReader, ReadsTheSameFromWhatIsPrinted)
{
    for (std::uint64_t seed = 0; seed < 1500; ++seed) {
        std::string const text = TextWriter(seed).write();
        Element const tree = readText(text);
        std::string const printed = printText(tree);
        ASSERT_EQ(Peer::parse(printed), Peer::parse(text)) << seed << ": " << shown(text);
        ASSERT_EQ(readText(printed), tree) << seed << ": " << shown(printed);
        ASSERT_EQ(printText(readText(printed)), printed) << seed;
        ASSERT_EQ(readText(Peer::parse(printed).dump()), tree) << seed;
    }
}

TEST(PeerReader, ReadsTheSameDoublesFromWhatIsPrinted)
{
    std::mt19937_64 random(17);
    for (int round = 0; round < 100000; ++round) {
        std::uint64_t const bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value))
            continue;
        auto const back = Peer::parse(printText(real(value))).get<double>();
        ASSERT_EQ(std::memcmp(&back, &value, sizeof value), 0) << printText(real(value));
    }
}

} // namespace
} // namespace Zelk::Json
