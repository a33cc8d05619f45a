/// Puts a message of a kind together from members that a user names.
#pragma once

#include "framework/element.h"
#include "tools/zelk-msg/catalogue.h"

#include <string>
#include <string_view>
#include <vector>

namespace ZelkMsg {

class Composer {
public:
    /// Begins with a message as the class makes it.
    explicit Composer(Kind const& kind);

    /// Sets a member from "key=value". The key is the name of a member or its /path; the value is text as it
    /// is, or JSON for anything else (a list of plain values may also be 1,2,3). Throws Trouble that names
    /// the nearest key, or the type that is wanted.
    void set(std::string const& assignment);

    /// Sets members from an object, whose members have the names of members or nest as in the message itself.
    void edit(Zelk::MetaData::Element const& object);

    /// The message, accepted and written by the class. Throws Trouble when the class refuses it, or does not
    /// keep a value as it was given.
    Zelk::MetaData::Element finish() const;

private:
    struct Place;
    void edit(Zelk::MetaData::Element const& object, std::string const& prefix);
    Place const* find(std::string_view key) const;
    [[noreturn]] void refuseKey(std::string const& key) const;
    void put(Place const& place, std::string const& path, Zelk::MetaData::Element value);
    Zelk::MetaData::Element checkedLeaf(Type type, std::string const& what,
                                        Zelk::MetaData::Element value) const;
    Zelk::MetaData::Element checkedRecord(Place const& place, std::string const& what,
                                          Zelk::MetaData::Element const& value) const;
    std::string rightId() const;
    std::string nearestInRange(std::string const& path) const;

    /// What can be set: a leaf, or a whole list.
    struct Place {
        std::string path;
        std::string name;
        Type type; ///< of the leaf, or of the items
        bool list;
        std::vector<Member const*> columns; ///< of the items of a list of records
    };

    Kind const& kind_;
    std::vector<Place> places_;
    Zelk::MetaData::Element tree_;
};

} // namespace ZelkMsg
