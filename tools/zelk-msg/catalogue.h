/// Every kind of message that the program knows: one table, and how a tree is recognised as one of its kinds.
///
/// The commands of the program ask this table and name no message class themselves (but for the drawing of a
/// state space, which needs its transitions). A new kind is a new entry here and nothing else.
#pragma once

#include "framework/element.h"

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ZelkMsg {

/// Who sends a message of a kind. A record is sent by nobody: it travels inside other messages or files.
enum class Direction { command, response, record };

/// What stands at a member: a leaf of the JSON form, or a list of leaves.
enum class Type { integer, number, boolean, text, anything };

/// When a member must be there.
enum class Presence {
    required,
    optional,
    withPrevious, ///< required when the member before it in the table is there
};

/// How numbers are read.
enum class Reading {
    strict,  ///< only a node of the very kind
    lenient, ///< any number or boolean, converted
    ignored, ///< written, never read
};

/// One member of the JSON form of a kind.
struct Member {
    /// Where it stands: "/body/statelist/*/name". A "*" is every item of a list, a "?" every name that no
    /// other member of the kind has at that place.
    std::string_view path;
    Type type;
    Presence presence;
    Reading reading;
    std::string_view meaning;
};

/// A message object of whatever class.
class AnyMessage {
public:
    virtual ~AnyMessage();
    /// Lets the class read the tree. Throws what the class throws, or IncompleteRecord.
    virtual void read(Zelk::MetaData::Element&& tree) = 0;
    /// What the class writes after reading, unknown members that it keeps included.
    virtual Zelk::MetaData::Element written() const = 0;
    /// Only the members that the class knows; those that it kept from the text are forgotten.
    virtual Zelk::MetaData::Element writtenKnown() = 0;
    /// writtenKnown() as JSON text, without the detour.
    virtual std::string textOfKnown() = 0;
};

/// A record of fields was read, but a required one is not set; fields themselves never fail.
class IncompleteRecord : public std::runtime_error {
public:
    /// `path` is where the field should stand.
    explicit IncompleteRecord(std::string path);
    IncompleteRecord(IncompleteRecord const&) = default;
    IncompleteRecord& operator=(IncompleteRecord const&) = default;
    ~IncompleteRecord() override;
    std::string const& path() const noexcept { return path_; }

private:
    std::string path_;
};

/// One kind of message: a class with its JSON form.
struct Kind {
    std::string_view name;
    Direction direction;
    /// The number that the class is bound to; none for kinds that are known by their members alone.
    std::optional<int> globalEventId;
    std::string_view purpose;
    /// In the order in which the class writes them, envelope first.
    std::vector<Member> members;
    /// A message of this kind as the class writes it.
    std::string_view example;
    /// A fresh object of the class.
    std::unique_ptr<AnyMessage> (*create)();
    /// Why the class would never come to an end with this tree (then with the path of the culprit), or
    /// nothing.
    struct Endless {
        std::string path;
        std::string reason;
    };
    std::optional<Endless> (*endless)(Zelk::MetaData::Element const& tree) = nullptr;
    /// Its lists belong together: item by item they describe one thing.
    bool parallelLists = false;
};

/// The table, commands first, then responses, then records.
std::vector<Kind> const& kinds();

/// The kind of that name. Case does not matter, nor do angle brackets, so that no shell needs quotes. Null
/// when there is none.
Kind const* findKind(std::string_view name);

/// The kind named by a user; throws Trouble with the nearest name otherwise.
Kind const& kindNamed(std::string const& name);

/// The kind that a tree is meant to be: by its envelope, then by the global event id, then by the members. A
/// wrong id does not hide the kind when members tell it: its class then refuses the message with its own
/// reason. Returns null and sets `reason` when nothing fits.
Kind const* recognise(Zelk::MetaData::Element const& tree, std::string& reason);

/// "client to service" and so on.
std::string_view nameOf(Direction direction);
/// "integer", "string" and so on.
std::string_view nameOf(Type type);

/// The path cut at its slashes.
std::vector<std::string_view> steps(std::string_view path);

/// The last name of a path, list marks left out: what a user calls the member.
std::string_view shortName(Member const& member);

/// True for the members that every message of the direction has.
bool inEnvelope(Kind const& kind, Member const& member);

} // namespace ZelkMsg
