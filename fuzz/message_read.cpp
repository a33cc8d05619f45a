// Every class with a metadata form reads a text, writes what it read, and reads that again. The first byte of
// an input selects the class, the rest is the text.
//
// Whatever the text, only the documented exceptions leave; all ways of reading and of writing agree; an
// object can be written, copied and read into after a failure; and what was written is read and written to
// the same.
#include "framework/element.h"
#include "framework/error.h"
#include "framework/json_text.h"
#include "fuzz/harness.h"
#include "tests/samples/samples.h"

#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <typeinfo>
#include <utility>

namespace Zelk::Fuzzing {
namespace {

using MetaData::Array;
using MetaData::Element;
using MetaData::Object;
using Testing::Kind;
using Testing::Subject;

/// Whether an event in the tree has a parameter. A guard: by the rules of the protocol, reading such an event
/// ends only when memory does, so those texts are kept from the classes that read events. Any object with the
/// member is taken for an event, wherever it stands.
bool hasEventWithParameter(Element const& tree)
{
    if (tree.GetElementType() == Element::object) {
        Object const& members = tree;
        for (auto const& member : members) {
            if (member.name() == "param0_name" || hasEventWithParameter(member.element()))
                return true;
        }
    } else if (tree.GetElementType() == Element::array) {
        Array const& items = tree;
        for (Element const& item : items) {
            if (hasEventWithParameter(item))
                return true;
        }
    }
    return false;
}

bool readsEvents(Kind const& kind)
{
    return kind.name == "MetaDataResponse" || kind.name == "EventMetaData" ||
           kind.name == "Array<EventMetaData>";
}

/// How a reading ended: with the empty string, or with the exception.
std::string outcomeOf(std::function<void()> const& reading)
{
    try {
        reading();
        return {};
    } catch (std::exception const& e) {
        bool const documented =
            typeid(e) == typeid(Json::ParseError) || typeid(e) == typeid(MetaData::TypeError) ||
            typeid(e) == typeid(MetaData::MissingMemberError) || typeid(e) == typeid(std::runtime_error);
        require(documented, "only documented exceptions leave");
        return std::string(typeid(e).name()) + ": " + e.what();
    }
}

Element treeOf(Subject const& subject)
{
    Element tree;
    subject.copyTo(tree);
    return tree;
}

/// All ways of writing give the text that toText gave.
void checkWriting(Subject& subject, std::string const& text)
{
    std::ostringstream stream;
    subject.toStream(stream);
    require(stream.str() == text, "a stream gets the same text");
    require(Json::printText(treeOf(subject)) == text, "the tree of an object has the text of the object");
    require(subject.toText() == text, "writing changes nothing");

    std::unique_ptr<Subject> const copy = subject.copy();
    // Copied fields follow a rule of their own: those that are required become set.
    if (!subject.ofFields())
        require(copy->toText() == text, "a copy is written as the original");
    std::string const copyText = copy->toText();
    subject.assign(*copy);
    require(subject.toText() == copyText, "an object is written as what was assigned to it");
    std::unique_ptr<Subject> const moved = copy->copy();
    require(moved->moveToText() == copyText, "what is moved out is the same text");
    Element tree;
    copy->moveTo(tree);
    require(Json::printText(tree) == copyText, "what is moved out is the same tree");
}

/// An object that was written once, as most are before they are read into: it has an internal metadata
/// object.
std::unique_ptr<Subject> writtenOnce(Kind const& kind)
{
    std::unique_ptr<Subject> subject = kind.filled();
    require(subject->toText() == kind.text, "a filled object has the text of its class");
    return subject;
}

void checkReading(Kind const& kind, std::string const& text, std::optional<Element> const& tree)
{
    std::unique_ptr<Subject> const subject = writtenOnce(kind);
    std::string const outcome = outcomeOf([&] { subject->fromText(text); });
    require(tree.has_value() || !outcome.empty(), "a text that is not JSON is refused");
    if (!tree)
        require(subject->toText() == kind.text, "a text that is not JSON changes nothing");
    std::string const after = subject->toText();

    std::unique_ptr<Subject> const streamed = writtenOnce(kind);
    std::istringstream stream(text);
    require(outcomeOf([&] { streamed->fromStream(stream); }) == outcome, "a stream is read as its text is");
    require(streamed->toText() == after, "a stream fills an object as its text does");
    if (tree) {
        std::unique_ptr<Subject> const copied = writtenOnce(kind);
        require(outcomeOf([&] { copied->copyFrom(*tree); }) == outcome, "a tree is read as its text is");
        require(copied->toText() == after, "a tree fills an object as its text does");

        std::unique_ptr<Subject> const moved = writtenOnce(kind);
        Element given = *tree;
        require(outcomeOf([&] { moved->moveFrom(std::move(given)); }) == outcome,
                "a tree moved in is read alike");
        require(moved->toText() == after, "a tree moved in fills an object alike");
    }
    if (outcome.empty()) {
        std::unique_ptr<Subject> const again = kind.filled();
        again->fromText(after);
        require(again->toText() == after, "what is written is read and written to the same");
    }
    checkWriting(*subject, after);

    subject->fromText(kind.text);
}

} // namespace

std::vector<std::string> seeds()
{
    std::vector<std::string> const texts = testTexts();
    std::vector<std::string> inputs;
    for (std::size_t kind = 0; kind < Testing::allKinds().size(); ++kind) {
        auto const selector = static_cast<char>(kind);
        inputs.push_back(selector + Testing::allKinds()[kind].text);
        for (std::string const& text : texts)
            inputs.push_back(selector + text);
    }
    return inputs;
}

} // namespace Zelk::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    using namespace Zelk::Fuzzing;
    if (size == 0)
        return 0;
    Kind const& kind = Zelk::Testing::allKinds()[data[0] % Zelk::Testing::allKinds().size()];
    std::string const text(reinterpret_cast<char const*>(data + 1), size - 1);
    std::optional<Element> tree;
    try {
        tree = Zelk::Json::readText(text);
    } catch (Zelk::Json::ParseError const&) {
    }
    if (tree && readsEvents(kind) && hasEventWithParameter(*tree))
        return 0;
    checkReading(kind, text, tree);
    return 0;
}
