#include "tools/zelk-msg/view.h"

#include "framework/json_text.h"
#include "tools/zelk-msg/differences.h"
#include "tools/zelk-msg/table.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ZelkMsg {

namespace MetaData = Zelk::MetaData;
using MetaData::Element;

namespace {

constexpr std::size_t excerptLength = 160;

/// The part of a list member's path before its "*", and after it.
struct ListPath {
    explicit ListPath(std::string_view path)
    {
        std::size_t const star = path.find("/*");
        isList = star != std::string_view::npos;
        list = path.substr(0, star);
        if (isList)
            rest = path.substr(star + 2);
    }

    bool isList;
    std::string_view list;
    std::string_view rest;
};

/// The members that stand for the "?" of a path; "id" is the one name that has a meaning of its own there.
std::vector<MetaData::Object::const_iterator> openMembers(Element const& tree, Member const& member)
{
    std::vector<MetaData::Object::const_iterator> result;
    Element const* const parent = valueAt(tree, member.path.substr(0, member.path.rfind('/')));
    if (parent == nullptr)
        return result;
    MetaData::Object const& members = *parent;
    for (auto entry = members.begin(); entry != members.end(); ++entry) {
        if (entry->name() != "id")
            result.push_back(entry);
    }
    return result;
}

class MessageView {
public:
    MessageView(Output& output, Kind const& kind, Element const& tree)
        : output_(output), kind_(kind), tree_(tree)
    {
        for (Member const& member : kind.members)
            nameWidth_ = std::max(nameWidth_, width(shortName(member)));
    }

    void print()
    {
        std::string_view printed_list;
        for (Member const& member : kind_.members) {
            ListPath const path(member.path);
            if (!path.isList) {
                printLeaf(member);
            } else if (path.rest.empty()) {
                if (!kind_.parallelLists)
                    printPlainList(member, path.list);
            } else if (path.list != printed_list) {
                printed_list = path.list;
                printRecords(path.list);
            }
        }
        if (kind_.parallelLists)
            printParallelLists();
    }

private:
    void line(std::string_view name, std::string_view value)
    {
        output_ << "    ";
        output_.print(Style::name, padded(name, nameWidth_));
        output_ << "  " << value << "\n";
    }

    void printLeaf(Member const& member)
    {
        if (shortName(member) == "?") {
            printOpenMembers(member);
            return;
        }
        if (Element const* const value = valueAt(tree_, member.path))
            line(shortName(member), valueText(value));
    }

    void printOpenMembers(Member const& member)
    {
        auto const members = openMembers(tree_, member);
        if (members.empty())
            return;
        Table table({"name", std::string(nameOf(member.type))});
        for (auto const& entry : members)
            table.add({readable(entry->name()), valueText(&entry->element())});
        table.print(output_, "        ");
    }

    void printPlainList(Member const& member, std::string_view list)
    {
        Element const* const items = valueAt(tree_, list);
        if (items == nullptr)
            return;
        std::string text;
        for (Element const& item : static_cast<MetaData::Array const&>(*items))
            text += (text.empty() ? "" : ", ") + valueText(&item);
        line(shortName(member), text.empty() ? "(none)" : text);
    }

    /// A list of records: a row each, a column for every member that one of them has.
    void printRecords(std::string_view list)
    {
        Element const* const node = valueAt(tree_, list);
        if (node == nullptr)
            return;
        MetaData::Array const& items = *node;
        std::vector<Member const*> columns;
        for (Member const& member : kind_.members) {
            ListPath const path(member.path);
            auto const has = [&](Element const& item) { return valueAt(item, path.rest) != nullptr; };
            if (path.isList && path.list == list &&
                (member.presence == Presence::required || std::any_of(items.begin(), items.end(), has)))
                columns.push_back(&member);
        }
        std::string_view const name = list.substr(list.rfind('/') + 1);
        line(name, items.empty() ? "(none)" : std::to_string(items.size()));
        if (items.empty())
            return;
        std::vector<std::string> row;
        row.reserve(columns.size());
        for (Member const* const column : columns)
            row.emplace_back(shortName(*column));
        Table table(row);
        for (Element const& item : items) {
            row.clear();
            for (Member const* const column : columns)
                row.push_back(valueText(valueAt(item, ListPath(column->path).rest)));
            table.add(row);
        }
        table.print(output_, "        ");
    }

    void printParallelLists()
    {
        std::vector<Element const*> lists;
        std::vector<std::string> row;
        std::size_t rows = 0;
        for (Member const& member : kind_.members) {
            ListPath const path(member.path);
            if (!path.isList)
                continue;
            Element const* const list = valueAt(tree_, path.list);
            if (list != nullptr)
                rows = std::max<std::size_t>(rows, static_cast<MetaData::Array const&>(*list).size());
            lists.push_back(list);
            row.emplace_back(shortName(member));
        }
        Table table(row);
        for (std::size_t i = 0; i < rows; ++i) {
            row.clear();
            for (Element const* const list : lists)
                row.push_back(valueText(list == nullptr ? nullptr : valueAt(*list, '/' + std::to_string(i))));
            table.add(row);
        }
        table.print(output_, "        ");
    }

    Output& output_;
    Kind const& kind_;
    Element const& tree_;
    std::size_t nameWidth_ = 0;
};

/// Members of the text that the class does not know.
void printUnknown(Output& output, Reception const& reception, Element const& known)
{
    std::vector<Difference> unknown = differences(treeOf(reception), known);
    unknown.erase(std::remove_if(unknown.begin(), unknown.end(),
                                 [](Difference const& d) { return d.what != Difference::What::onlyLeft; }),
                  unknown.end());
    if (unknown.empty())
        return;
    output << "    ";
    output.print(Style::bad, "unknown members") << "\n";
    Table table({"member", "value"});
    for (Difference const& difference : unknown)
        table.add({harmless(difference.path), harmless(difference.left)});
    table.print(output, "        ");
}

/// The beginning of a text, on one line.
std::string excerpt(std::string_view text)
{
    if (text.size() <= excerptLength)
        return harmless(text);
    std::size_t length = excerptLength;
    while ((static_cast<unsigned char>(text[length]) & 0xC0u) == 0x80u)
        --length; // not inside a character
    return harmless(text.substr(0, length)) + "...";
}

void printHeading(Output& output, std::string const& file, Place place, std::string_view what, Style style)
{
    output.print(Style::faint, file + ':' + std::to_string(place.line)) << "  ";
    output.print(style, what);
}

} // namespace

std::string valueText(Element const* value)
{
    if (value == nullptr)
        return "-";
    if (value->GetElementType() == Element::string)
        return readable(value->asString());
    return harmless(Zelk::Json::printText(*value));
}

void printMessage(Output& output, std::string const& file, Reception& reception)
{
    if (!reception.accepted()) {
        printHeading(output, file, reception.begin, "refused", Style::bad);
        if (reception.kind != nullptr)
            output << "  " << reception.kind->name;
        output << "\n    ";
        output.print(Style::bad, harmless(reception.reason)) << "\n    ";
        output.print(Style::faint, excerpt(reception.text)) << "\n\n";
        return;
    }
    Kind const& kind = *reception.kind;
    bool const as_written = reception.message->textOfKnown() == reception.text;
    Element const known = reception.message->writtenKnown();
    printHeading(output, file, reception.begin, kind.name, Style::heading);
    output << "  ";
    output.print(Style::faint, nameOf(kind.direction)) << "\n";
    MessageView(output, kind, known).print();
    if (!as_written)
        printUnknown(output, reception, known);
    output << "\n";
}

std::string summary(Kind const& kind, Element const& known)
{
    constexpr unsigned int mostItems = 8;
    std::string text;
    auto const add = [&](std::string_view name, std::string const& value) {
        text += text.empty() ? "" : ", ";
        text.append(name).append(" ").append(value);
    };
    std::string_view counted;
    for (Member const& member : kind.members) {
        if (inEnvelope(kind, member))
            continue;
        ListPath const path(member.path);
        if (shortName(member) == "?") {
            for (auto const& entry : openMembers(known, member))
                add(readable(entry->name()), valueText(&entry->element()));
            continue;
        }
        Element const* const value = valueAt(known, path.list);
        if (value == nullptr)
            continue;
        if (!path.isList) {
            add(shortName(member), valueText(value));
            continue;
        }
        MetaData::Array const& items = *value;
        if (path.rest.empty() && items.size() <= mostItems)
            add(shortName(member), valueText(value));
        else if (path.list != counted)
            add(path.list.substr(path.list.rfind('/') + 1), "of " + std::to_string(items.size()));
        counted = path.list;
    }
    return text;
}

} // namespace ZelkMsg
