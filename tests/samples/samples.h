/// One filled object of every class of the library that has a metadata form, behind one interface, for the
/// tests that put all of them through the same.
#pragma once

#include "framework/element.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Zelk::Testing {

/// An object of one of the classes.
class Subject {
public:
    Subject() = default;
    Subject(Subject const&) = delete;
    Subject& operator=(Subject const&) = delete;
    virtual ~Subject();

    /// Gives every member a value of its own, through the setters and lists.
    virtual void fill() = 0;

    virtual std::unique_ptr<Subject> copy() const = 0;
    /// Copy-assigns the object of `other`, which must be of the same class.
    virtual void assign(Subject const& other) = 0;

    virtual void copyTo(MetaData::Element& target) const = 0;
    virtual void moveTo(MetaData::Element& target) = 0;
    virtual void copyFrom(MetaData::Element const& source) = 0;
    virtual void moveFrom(MetaData::Element&& source) = 0;
    virtual std::string toText() const = 0;
    virtual void toStream(std::ostream& stream) const = 0;
    virtual std::string moveToText() = 0;
    virtual void moveToStream(std::ostream& stream) = 0;
    virtual void fromText(std::string const& text) = 0;
    virtual void fromStream(std::istream& stream) = 0;

    /// The internal metadata object; null when the class has none.
    virtual MetaData::Element* internal() const = 0;

    /// Whether the class is made of reflected fields, whose copies are not always equal: a required field
    /// that is unset becomes set in the copy.
    virtual bool ofFields() const = 0;
};

/// One class.
struct Kind {
    /// Of a message the name of its golden text.
    std::string name;
    /// What an object that was filled is written as.
    std::string text;
    /// A new object.
    std::function<std::unique_ptr<Subject>()> blank;

    std::unique_ptr<Subject> filled() const;
};

/// How a test that has a kind for its parameter shows it.
void PrintTo(Kind const& kind, std::ostream* stream);

/// The messages and payloads, each with its golden text from tests/forms.
std::vector<Kind> const& messages();

/// The messages, the records inside of them and the lists.
std::vector<Kind> const& allKinds();

/// The kind of that name, which must be one of allKinds().
Kind const& kindNamed(std::string const& name);

/// For test parameters: the name with what is not a letter or digit replaced.
std::string testName(std::string name);

} // namespace Zelk::Testing
