// Edits of trees beside the same edits of a plain model. The bytes of an input are a program: each
// instruction picks nodes of a few trees and does something to them; afterwards the trees are what the model
// says.
#include "framework/element.h"
#include "framework/error.h"
#include "framework/json_text.h"
#include "fuzz/harness.h"

#include <array>
#include <map>
#include <random>
#include <stdexcept>
#include <utility>

namespace Zelk::Fuzzing {
namespace {

using MetaData::Array;
using MetaData::Element;
using MetaData::Object;
using MetaData::Trivial_T;

/// A node as one would write it without a thought for speed or depth.
struct Model {
    unsigned int kind = Element::empty;
    bool boolean = false;
    long long integer = 0;
    double real = 0;
    std::string string;
    std::map<std::string, Model> members;
    std::vector<Model> items;

    std::size_t size() const
    {
        std::size_t nodes = 1;
        for (auto const& [name, value] : members)
            nodes += value.size();
        for (Model const& item : items)
            nodes += item.size();
        return nodes;
    }
};

bool operator==(Model const& a, Model const& b)
{
    return a.kind == b.kind && a.boolean == b.boolean && a.integer == b.integer && a.real == b.real &&
           a.string == b.string && a.members == b.members && a.items == b.items;
}

bool same(Element const& node, Model const& model)
{
    if (node.GetElementType() != model.kind)
        return false;
    switch (model.kind) {
    case Element::real:
        return node.asDouble() == model.real;
    case Element::integer:
        return node.asInt64() == model.integer;
    case Element::boolean:
        return node.asBoolean() == model.boolean;
    case Element::string:
        return node.asString() == model.string;
    case Element::object: {
        Object const& members = node;
        if (members.size() != model.members.size() || members.empty() != model.members.empty())
            return false;
        auto expected = model.members.begin();
        for (auto const& member : members) {
            auto const found = members.find(expected->first);
            if (member.name() != expected->first || found == members.end() ||
                &found->element() != &member.element() || &members[expected->first] != &member.element() ||
                !same(member.element(), expected->second))
                return false;
            ++expected;
        }
        return true;
    }
    case Element::array: {
        Array const& items = node;
        if (items.size() != model.items.size() || items.empty() != model.items.empty())
            return false;
        unsigned int index = 0;
        for (Element const& item : items) {
            if (&item != &items[index] || !same(item, model.items[index]))
                return false;
            ++index;
        }
        return true;
    }
    default:
        return true;
    }
}

/// The same node in a tree and in its model.
struct Place {
    Element* node;
    Model* model;
};

/// Whether `inner` is `outer` or below it.
bool contains(Model const& outer, Model const* inner)
{
    if (&outer == inner)
        return true;
    for (auto const& [name, value] : outer.members) {
        if (contains(value, inner))
            return true;
    }
    for (Model const& item : outer.items) {
        if (contains(item, inner))
            return true;
    }
    return false;
}

class Program {
public:
    Program(std::uint8_t const* data, std::size_t size) : next_(data), end_(data + size) {}

    void run()
    {
        while (next_ != end_) {
            for (int i = 0; i < stepsBetweenChecks && next_ != end_; ++i)
                step();
            checkAll();
        }
    }

private:
    static constexpr int stepsBetweenChecks = 8;
    static constexpr std::size_t mostNodes = 150;
    static constexpr unsigned int mostGrowth = 40;

    std::uint8_t byte() { return next_ == end_ ? std::uint8_t{0} : *next_++; }

    std::string name()
    {
        // Few names, so that they are met again; some longer than a string holds without memory of its own.
        std::uint8_t const choice = byte();
        std::string text(1, static_cast<char>('a' + choice % 20));
        if (choice >= 200)
            text += "-" + std::string(20 + choice % 4, 'n');
        return choice == 255 ? std::string() : text;
    }

    Place place()
    {
        std::uint8_t const start = byte();
        std::size_t const tree = start % trees_.size();
        Place at{&trees_[tree], &models_[tree]};
        for (unsigned int steps = start / trees_.size() % 4; steps > 0; --steps) {
            if (at.model->kind == Element::object && !at.model->members.empty()) {
                auto const member = std::next(at.model->members.begin(),
                                              static_cast<long>(byte() % at.model->members.size()));
                at = {&(*at.node)[member->first], &member->second};
            } else if (at.model->kind == Element::array && !at.model->items.empty()) {
                auto const index = static_cast<unsigned int>(byte() % at.model->items.size());
                at = {&static_cast<Array&>(*at.node)[index], &at.model->items[index]};
            } else {
                break;
            }
        }
        return at;
    }

    /// Does `edit`, which must be refused with a TypeError when `allowed` is false; tells whether it was
    /// done.
    template <typename Edit>
    static bool attempt(bool allowed, Edit edit)
    {
        try {
            edit();
            require(allowed, "a node of another kind is refused");
        } catch (MetaData::TypeError const&) {
            require(!allowed, "a node of the right kind is taken");
        }
        return allowed;
    }

    void setScalar(Place at)
    {
        Model value;
        std::uint8_t const choice = byte();
        switch (choice % 5) {
        case 0:
            value.kind = Element::real;
            value.real = choice * 0.125 - 3;
            *at.node = Trivial_T<double>(value.real);
            break;
        case 1:
            value.kind = Element::integer;
            value.integer = (choice - 128LL) * (1LL << choice % 56);
            *at.node = Trivial_T<long long>(value.integer);
            break;
        case 2:
            value.kind = Element::boolean;
            value.boolean = choice % 2 == 0;
            MetaData::SetAs(value.boolean, *at.node);
            break;
        case 3:
            value.kind = Element::string;
            value.string = name();
            MetaData::SetAs(value.string, *at.node);
            break;
        default:
            *at.node = Element();
        }
        *at.model = value;
    }

    /// Sets the member of some name, which is inserted when it is missing.
    void setMember(Place at)
    {
        std::string const key = name();
        bool const allowed = at.model->kind == Element::object || at.model->kind == Element::empty;
        if (!attempt(allowed, [&] { (*at.node)[key]; }))
            return;
        at.model->kind = Element::object;
        setScalar({&(*at.node)[key], &at.model->members[key]});
    }

    void setItem(Place at)
    {
        unsigned int const index = byte() % mostGrowth;
        bool const allowed = at.model->kind == Element::array || at.model->kind == Element::empty;
        if (!attempt(allowed, [&] { static_cast<Array&>(*at.node)[index]; }))
            return;
        at.model->kind = Element::array;
        if (index >= at.model->items.size())
            at.model->items.resize(index + 1);
        setScalar({&static_cast<Array&>(*at.node)[index], &at.model->items[index]});
    }

    void copyNode(Place to, Place from)
    {
        if (from.model->size() > mostNodes)
            return;
        *to.node = *from.node;
        Model const copy = *from.model;
        *to.model = copy;
    }

    void moveNode(Place to, Place from)
    {
        // A node cannot go into itself.
        if (to.model != from.model && contains(*from.model, to.model))
            return;
        bool const itself = to.model == from.model;
        bool const fromPart = contains(*to.model, from.model);
        *to.node = std::move(*from.node);
        if (itself)
            return;
        Model const moved = std::exchange(*from.model, Model());
        *to.model = moved;
        if (!fromPart)
            require(from.node->GetElementType() == Element::empty, "a move leaves an empty node");
    }

    /// Puts the node into a new object or array, which takes its place.
    void wrap(Place at)
    {
        Element outer;
        Model outerModel;
        if (byte() % 2 == 0) {
            std::string const key = name();
            outer[key] = std::move(*at.node);
            outerModel.kind = Element::object;
            outerModel.members[key] = *at.model;
        } else {
            static_cast<Array&>(outer)[0] = std::move(*at.node);
            outerModel.kind = Element::array;
            outerModel.items.push_back(*at.model);
        }
        *at.node = std::move(outer);
        *at.model = outerModel;
    }

    /// Takes the container of one node, by copy or by move, for that of another.
    void assignContainer(Place to, Place from)
    {
        bool const byMove = byte() % 2 == 0;
        unsigned int const kind = from.model->kind;
        bool const fits = to.model->kind == kind || to.model->kind == Element::empty;
        if (kind != Element::object && kind != Element::array)
            return;
        if (!fits || from.model->size() > mostNodes ||
            (byMove && from.model != to.model && contains(*from.model, to.model)))
            return;
        bool const fromPart = contains(*to.model, from.model);
        if (kind == Element::object)
            assign<Object>(to, from, byMove);
        else
            assign<Array>(to, from, byMove);
        // The target became a container before the source was copied, and may be a part of it.
        to.model->kind = kind;
        Model const content = *from.model;
        if (byMove && !fromPart) {
            from.model->members.clear();
            from.model->items.clear();
        }
        *to.model = content;
    }

    template <typename Container>
    static void assign(Place to, Place from, bool byMove)
    {
        Container& target = *to.node;
        Container& source = *from.node;
        if (byMove)
            target = std::move(source);
        else
            target = source;
    }

    static void clear(Place at)
    {
        if (at.model->kind == Element::object)
            static_cast<Object&>(*at.node).clear();
        else if (at.model->kind == Element::array)
            static_cast<Array&>(*at.node).clear();
        at.model->members.clear();
        at.model->items.clear();
    }

    void lookUp(Place at)
    {
        Element const& node = *at.node;
        unsigned int const kind = at.model->kind;
        std::string const key = name();
        bool found = false;
        try {
            node[key];
            found = true;
        } catch (MetaData::MissingMemberError const&) {
            require(kind == Element::object, "only an object lacks a member");
        } catch (MetaData::TypeError const&) {
            require(kind != Element::object, "an object has members");
        }
        require(found == (at.model->members.count(key) != 0), "a member is found when it is there");

        unsigned int const index = byte() % mostGrowth;
        found = false;
        attempt(kind == Element::array, [&] {
            Array const& items = node;
            try {
                items[index];
                found = true;
            } catch (std::out_of_range const&) {
            }
        });
        require(found == (index < at.model->items.size()), "an item is found when it is there");

        attempt(kind == Element::real, [&] { node.asDouble(); });
        attempt(kind == Element::integer, [&] { node.asInt64(); });
        attempt(kind == Element::boolean, [&] { node.asBoolean(); });
        attempt(kind == Element::string, [&] { node.asString(); });
    }

    /// Prints one node and reads the text into another; with space around it the reader takes its memory in
    /// large pieces.
    void printAndRead(Place to, Place from)
    {
        std::string const text = Json::printText(*from.node);
        Element tree = Json::readText(byte() % 2 == 0 ? text : text + std::string(2000, ' '));
        require(tree == *from.node, "what is printed is read back as the same tree");
        if (from.model->size() > mostNodes)
            return;
        Model const copy = *from.model;
        *to.node = std::move(tree);
        *to.model = copy;
    }

    void step()
    {
        std::uint8_t const instruction = byte();
        Place const at = place();
        switch (instruction % 13) {
        case 0:
            return setScalar(at);
        case 1:
        case 2:
            return setMember(at);
        case 3:
        case 4:
            return setItem(at);
        case 5:
            return copyNode(at, place());
        case 6:
            return moveNode(at, place());
        case 7:
            return wrap(at);
        case 8:
            return assignContainer(at, place());
        case 9:
            return clear(at);
        case 10:
            return lookUp(at);
        case 11:
            return printAndRead(at, place());
        default: {
            Place const other = place();
            bool const equal = *at.model == *other.model;
            require((*at.node == *other.node) == equal, "nodes are equal when their models are");
            require((*at.node != *other.node) != equal, "nodes differ when their models do");
        }
        }
    }

    void checkAll()
    {
        for (std::size_t tree = 0; tree < trees_.size(); ++tree) {
            require(same(trees_[tree], models_[tree]), "a tree is what its edits made of it");
            if (models_[tree].size() > mostNodes) {
                trees_[tree] = Element();
                models_[tree] = Model();
            }
        }
    }

    std::uint8_t const* next_;
    std::uint8_t const* end_;
    std::array<Element, 4> trees_;
    std::array<Model, 4> models_;
};

} // namespace

std::vector<std::string> seeds()
{
    // Any bytes are a program.
    std::vector<std::string> inputs = testTexts();
    std::mt19937 random(20); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same seeds every time
    for (std::size_t size = 16; size <= 2048; size *= 2) {
        for (int i = 0; i < 8; ++i) {
            std::string program;
            while (program.size() < size)
                program += static_cast<char>(random() & 0xFF);
            inputs.push_back(program);
        }
    }
    return inputs;
}

} // namespace Zelk::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Zelk::Fuzzing::Program(data, size).run();
    return 0;
}
