#include "tools/zelk-msg/reception.h"

#include "tools/zelk-msg/culprit.h"
#include "tools/zelk-msg/memory_limit.h"
#include "tools/zelk-msg/output.h"
#include "tools/zelk-msg/place_in_text.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

void refuse(Reception& reception, std::size_t offset, std::string reason, std::string rule)
{
    reception.message.reset();
    reception.place = placeAt(reception, offset);
    reception.reason = std::move(reason);
    reception.rule = std::move(rule);
}

void refuse(Reception& reception, std::size_t offset, std::string const& reason)
{
    refuse(reception, offset, reason, reason);
}

/// Refuses for a member, with its path and its place.
void refuseMember(Reception& reception, std::string const& path, std::string const& what)
{
    refuse(reception, offsetOf(reception.text, path), path + ": " + what, what);
}

void refuseForMemory(Reception& reception)
{
    refuse(reception, 0, tooMuchMemory());
    reception.outOfMemory = true;
}

void refuseByClass(Reception& reception, std::string const& what)
{
    // The tree was given away; reading it again is for refused messages only.
    Element const tree = treeOf(reception);
    std::optional<Culprit> const culprit = findCulprit(*reception.kind, tree, what);
    if (culprit) {
        refuseMember(reception, culprit->path, culprit->missing ? "missing (" + what + ")" : what);
        return;
    }
    refuse(reception, 0, what);
}

void readMessage(Reception& reception, Element&& tree)
{
    std::string reason;
    reception.kind = recognise(tree, reason);
    if (reception.kind == nullptr) {
        refuse(reception, 0, reason);
        return;
    }
    if (reception.kind->endless != nullptr) {
        if (auto const endless = reception.kind->endless(tree)) {
            refuseMember(reception, endless->path, endless->reason);
            return;
        }
    }
    auto message = reception.kind->create();
    try {
        message->read(std::move(tree));
        reception.message = std::move(message);
    } catch (IncompleteRecord const& e) {
        refuseMember(reception, e.path(), e.what());
    } catch (std::bad_alloc const&) {
        throw;
    } catch (std::exception const& e) {
        refuseByClass(reception, e.what());
    }
}

/// Of a text that does not parse as a whole, the beginning that is one complete value and is followed by
/// another.
std::optional<Element> firstOfSeveral(std::string_view text, std::size_t offset)
{
    if (offset == 0 || offset >= text.size() || text[offset] != '{')
        return std::nullopt;
    try {
        return Zelk::Json::readText(text.substr(0, offset));
    } catch (Zelk::Json::ParseError const&) {
        return std::nullopt;
    }
}

/// Reads the first message of reception.text and narrows that to its text; returns the number of bytes used.
std::size_t receiveFirst(Reception& reception)
{
    std::string_view const all = reception.text;
    try {
        Element tree;
        try {
            tree = Zelk::Json::readText(all);
        } catch (Zelk::Json::ParseError const& e) {
            auto first = firstOfSeveral(all, e.offset());
            if (!first) {
                refuse(reception, e.offset(), notJson(all, e), "not JSON");
                return all.size();
            }
            reception.text = all.substr(0, e.offset());
            tree = std::move(*first);
        }
        readMessage(reception, std::move(tree));
    } catch (std::bad_alloc const&) {
        refuseForMemory(reception);
    } catch (std::length_error const&) {
        refuseForMemory(reception);
    }
    return reception.text.size();
}

} // namespace

Place placeAt(Reception const& reception, std::size_t offset)
{
    std::string_view const before = reception.text.substr(0, offset);
    auto const newlines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    if (newlines == 0)
        return {reception.begin.line, reception.begin.column + offset};
    return {reception.begin.line + newlines, offset - before.rfind('\n')};
}

std::string notJson(std::string_view text, Zelk::Json::ParseError const& e)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (e.offset() == 0 && text.substr(0, mark.size()) == mark)
        return "not JSON: a byte order mark stands before the message";
    std::string const what = e.what();
    std::string const place =
        "line " + std::to_string(e.line()) + ", column " + std::to_string(e.column()) + ": ";
    return "not JSON: " + (what.compare(0, place.size(), place) == 0 ? what.substr(place.size()) : what);
}

std::string tooMuchMemory()
{
    return "needs more memory than the limit of " + memoryLimitText();
}

void receive(Text const& text, std::function<void(Reception&)> const& visit)
{
    Reception reception;
    reception.text = text.bytes;
    reception.begin = reception.place = {text.line, text.column};
    if (!text.problem.empty()) {
        refuse(reception, 0, std::string(text.problem));
        visit(reception);
        return;
    }
    for (;;) {
        std::string_view const all = reception.text;
        std::size_t const used = receiveFirst(reception);
        if (used == all.size()) {
            visit(reception);
            return;
        }
        Place const rest = placeAt(reception, used);
        visit(reception);
        reception = Reception();
        reception.text = all.substr(used);
        reception.begin = rest;
    }
}

std::string errorLine(std::string const& file, Place place, std::string_view what)
{
    std::string line = file;
    line += ':' + std::to_string(place.line) + ':' + std::to_string(place.column) + ": ";
    line += what;
    return harmless(line);
}

Element treeOf(Reception const& reception)
{
    return Zelk::Json::readText(reception.text);
}

Element const* valueAt(Element const& tree, std::string_view path)
{
    Element const* node = &tree;
    for (std::string_view const step : steps(path)) {
        if (node->GetElementType() == Element::object) {
            MetaData::Object const& members = *node;
            auto const found = members.find(std::string(step));
            if (found == members.end())
                return nullptr;
            node = &found->element();
        } else if (node->GetElementType() == Element::array) {
            MetaData::Array const& items = *node;
            unsigned int index = 0;
            auto const [end, error] = std::from_chars(step.data(), step.data() + step.size(), index);
            if (error != std::errc() || end != step.data() + step.size() || index >= items.size())
                return nullptr;
            node = &items[index];
        } else {
            return nullptr;
        }
    }
    return node;
}

} // namespace ZelkMsg
