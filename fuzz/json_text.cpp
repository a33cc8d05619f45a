// The reader and the printer of JSON text beside those of a peer: the same texts are taken, but for the
// differences listed at refusedOnPurpose, with equal trees, and what we print the peer reads to the same.
#include "framework/json_text.h"

#include "framework/element.h"
#include "fuzz/harness.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>

namespace Zelk::Fuzzing {
namespace {

using Json::ParseError;
using MetaData::Array;
using MetaData::Element;
using MetaData::Object;
using Peer = nlohmann::json;

constexpr std::size_t deepestNesting = 1024;

bool sameDouble(double a, double b)
{
    return a == b && std::signbit(a) == std::signbit(b);
}

bool same(Element const& ours, Peer const& peer)
{
    unsigned int const kind = ours.GetElementType();
    switch (peer.type()) {
    case Peer::value_t::null:
        return kind == Element::empty;
    case Peer::value_t::boolean:
        return kind == Element::boolean && ours.asBoolean() == peer.get<bool>();
    case Peer::value_t::number_integer:
        return kind == Element::integer && ours.asInt64() == peer.get<std::int64_t>();
    case Peer::value_t::number_unsigned: {
        // The peer has a kind for the integers from 2^63 to 2^64 - 1; to us they are floating-point numbers.
        auto const value = peer.get<std::uint64_t>();
        if (value > std::uint64_t{std::numeric_limits<std::int64_t>::max()})
            return kind == Element::real && ours.asDouble() == static_cast<double>(value);
        return kind == Element::integer && ours.asInt64() == static_cast<std::int64_t>(value);
    }
    case Peer::value_t::number_float:
        return kind == Element::real && sameDouble(ours.asDouble(), peer.get<double>());
    case Peer::value_t::string:
        return kind == Element::string && ours.asString() == peer.get_ref<std::string const&>();
    case Peer::value_t::array: {
        if (kind != Element::array)
            return false;
        Array const& items = ours;
        if (items.size() != peer.size())
            return false;
        auto item = peer.begin();
        for (Element const& node : items) {
            if (!same(node, *item++))
                return false;
        }
        return true;
    }
    case Peer::value_t::object: {
        if (kind != Element::object)
            return false;
        Object const& members = ours;
        if (members.size() != peer.size())
            return false;
        auto entry = peer.begin();
        for (auto const& member : members) {
            if (member.name() != entry.key() || !same(member.element(), entry.value()))
                return false;
            ++entry;
        }
        return true;
    }
    default:
        return false;
    }
}

Peer readByPeer(std::string_view text)
{
    return Peer::parse(text.begin(), text.end(), nullptr, false);
}

std::optional<Element> readByUs(std::string_view text, std::optional<ParseError>& error)
{
    try {
        return Json::readText(text);
    } catch (ParseError const& e) {
        error = e;
        return std::nullopt;
    }
}

/// How many brackets are open behind a text that begins as JSON does.
std::size_t openBrackets(std::string_view text)
{
    std::size_t open = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char const c = text[i];
        if (inString && c == '\\')
            ++i;
        else if (c == '"')
            inString = !inString;
        else if (!inString && (c == '[' || c == '{'))
            ++open;
        else if (!inString && (c == ']' || c == '}'))
            --open;
    }
    return open;
}

/// Whether we refuse, for a good reason, a text that the peer takes. The peer
/// - skips a byte-order mark,
/// - takes a NUL byte behind the value for the end of the text,
/// - has no limit for the nesting.
bool refusedOnPurpose(std::string_view text, ParseError const& error)
{
    std::size_t const offset = error.offset();
    if (text.substr(0, 3) == "\xEF\xBB\xBF")
        return offset == 0;
    if (offset == text.size())
        return false;
    if (text[offset] == '\0')
        return true;
    return (text[offset] == '[' || text[offset] == '{') &&
           openBrackets(text.substr(0, offset)) == deepestNesting;
}

/// The place of an error is the first byte that cannot continue the text.
void checkPlace(std::string_view text, ParseError const& error)
{
    std::size_t const offset = error.offset();
    require(offset <= text.size(), "an error is in the text or at its end");
    std::string_view const before = text.substr(0, offset);
    std::size_t const lineFeed = before.rfind('\n');
    std::size_t const lineBegin = lineFeed == std::string_view::npos ? 0 : lineFeed + 1;
    auto const lines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    require(error.line() == lines, "the line of an error counts line feeds");
    require(error.column() == offset - lineBegin + 1, "the column of an error counts bytes");
    std::string const place =
        "line " + std::to_string(error.line()) + ", column " + std::to_string(error.column()) + ": ";
    require(std::string_view(error.what()).substr(0, place.size()) == place,
            "an error begins with its place");

    std::optional<ParseError> ofPart;
    readByUs(before, ofPart);
    require(!ofPart || ofPart->offset() == offset, "nothing is wrong before the place of an error");
    if (offset < text.size()) {
        ofPart.reset();
        readByUs(text.substr(0, offset + 1), ofPart);
        require(ofPart && ofPart->offset() == offset, "an error does not depend on what follows");
    }
}

void checkStream(std::string_view text, std::optional<Element> const& tree,
                 std::optional<ParseError> const& error)
{
    std::istringstream stream{std::string(text)};
    try {
        Element const streamed = Json::readText(stream);
        require(tree && streamed == *tree, "a stream is read as its text is");
    } catch (ParseError const& e) {
        require(error && e.offset() == error->offset() && std::string(e.what()) == error->what(),
                "a stream is refused as its text is");
    }
}

void checkPrinting(Element const& tree)
{
    std::string const printed = Json::printText(tree);
    require(same(tree, readByPeer(printed)), "the peer reads what is printed to the same");
    Element const again = Json::readText(printed);
    require(again == tree, "what is printed is read back as the same tree");
    require(Json::printText(again) == printed, "equal trees are printed alike");
    std::ostringstream stream;
    Json::printText(tree, stream);
    require(stream.str() == printed, "a stream gets the same text");

    Element const copy = tree;
    require(copy == tree, "a copy is equal");
}

} // namespace

std::vector<std::string> seeds()
{
    std::vector<std::string> inputs = testTexts();
    for (char const* text : {"\xEF\xBB\xBF[]",
                             "[1e400]",
                             "[1e-400]",
                             "[1.7976931348623158e308]",
                             "-0",
                             "-0.0",
                             "18446744073709551615",
                             "9223372036854775808",
                             "-9223372036854775809",
                             "2.2250738585072011e-308",
                             "\"\\ud83d\\ude00\"",
                             "\"\\ud83d\"",
                             "\"\\ude00\"",
                             "\"\\u0000\\\"\\\\\\/\\b\\f\\n\\r\\t\"",
                             "\"\xF0\x9F\x98\x80 \xC3\xA4\"",
                             "\"\xED\xA0\x80\"",
                             "\"\xC0\x80\"",
                             "{\"a\":1,\"b\":[],\"a\":{\"a\":{}}}",
                             " [ true , false , null ] ",
                             "[0.1,1e22,123456789012345678901234567890,5e-324,1E+3,9007199254740993]"})
        inputs.emplace_back(text);
    inputs.emplace_back("[]\0[", 4);
    for (std::size_t depth : {deepestNesting, deepestNesting + 1}) {
        inputs.push_back(std::string(depth, '[') + std::string(depth, ']'));
        std::string objects;
        for (std::size_t i = 0; i < depth; ++i)
            objects += "{\"\":";
        inputs.push_back(objects + "0" + std::string(depth, '}'));
    }
    // Long enough for the reader to take its memory in large pieces.
    std::string records;
    for (int i = 0; i < 60; ++i)
        records += (i == 0 ? "[" : ",") + std::string("{\"name\":\"n\",\"id\":") + std::to_string(i) +
                   ",\"l\":[1,[]]}";
    inputs.push_back(records + "]");
    return inputs;
}

} // namespace Zelk::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    using namespace Zelk::Fuzzing;
    std::string_view const text(reinterpret_cast<char const*>(data), size);
    std::optional<ParseError> error;
    std::optional<Element> const tree = readByUs(text, error);
    Peer const peer = readByPeer(text);
    if (tree) {
        require(!peer.is_discarded(), "what we take the peer takes");
        require(same(*tree, peer), "we and the peer read the same tree");
        checkPrinting(*tree);
    } else {
        require(peer.is_discarded() || refusedOnPurpose(text, *error), "what the peer takes we take");
        checkPlace(text, *error);
    }
    checkStream(text, tree, error);
    return 0;
}
