/// The command envelope of the legacy state protocol, and the event ids that many commands add to it.
///
/// Commands with a payload of their own derive from the classes here: from StateCommand when they carry no
/// event id, from StateCommandWithEventId when the event id is free, from NormalGlobalEventCommand<N> when it
/// is fixed. Numbers of commands are read leniently: any number or boolean will do (framework/number.h).
#pragma once

#include "framework/export.h"
#include "msgs/legacystate/state_message.h"

#include <string>

namespace Zelk::Json {
extern template unsigned int PartiallyDeserializable::element<unsigned int, 10>(char const (&)[10]) const;
extern template int PartiallyDeserializable::element<int, 3>(char const (&)[3]) const;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

/// A command: a command id and the name of the client that sends it.
///
///     {"clientname":"ui","commandid":0}
///
/// Reading throws MetaData::TypeError when a member is missing or is not of its kind. It is not
/// transactional, here and in every command: members read before a failure keep their new values.
class ZELK_EXPORT StateCommand : public StateMessage {
public:
    StateCommand();
    explicit StateCommand(unsigned short commandId);
    ~StateCommand() override;

    /// "commandid", 0 to 65535 unless it was read: reading takes any 32-bit value, without comparing it with
    /// the id that the command was built with. What is written is what this returns, overridden or not.
    virtual unsigned int commandId() const;

    /// "clientname".
    std::string const& clientName() const { return clientName_; }
    void setClientName(std::string const& name) { clientName_ = name; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

protected:
    /// Throws std::runtime_error "event id does not match expected value" unless the two are equal.
    static void requireGlobalEventId(int eventId, int expected);

private:
    unsigned int commandId_;
    std::string clientName_;
};

/// Base of commands that carry an event id of their own choice.
///
///     {"clientname":"ui","commandid":0,"id":7}
///
/// Reading throws MetaData::TypeError as StateCommand does.
class ZELK_EXPORT StateCommandWithEventId : public StateCommand {
public:
    explicit StateCommandWithEventId(unsigned short commandId = 0, int eventId = 0);
    ~StateCommandWithEventId() override = 0;

    /// "id".
    int eventId() const { return eventId_; }
    void setEventId(int eventId) { eventId_ = eventId; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    int eventId_;
};

/// Base of commands bound to the global event id N, a negative number.
///
///     {"clientname":"ui","commandid":0,"id":-10}
///
/// Reading throws std::runtime_error "event id does not match expected value" unless "id" is N; command id
/// and client name have been replaced by then. It throws MetaData::TypeError as StateCommand does.
template <int N>
class ZELK_EXPORT StateCommandWithGlobalEventId : public StateCommand {
public:
    explicit StateCommandWithGlobalEventId(unsigned short commandId = 0);
    ~StateCommandWithGlobalEventId() override = 0;

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

private:
    // Part of the layout of every such command; both hooks use the constant.
    int globalEventId_ = N;
};

/// A command that is its global event id and nothing else, and the base of those that add a payload to it.
template <int N>
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): virtual by a base that depends on N
class ZELK_EXPORT NormalGlobalEventCommand : public StateCommandWithGlobalEventId<N> {
public:
    /// Command id 0, empty client name.
    NormalGlobalEventCommand();
    ~NormalGlobalEventCommand() override;
};

template <int N>
StateCommandWithGlobalEventId<N>::StateCommandWithGlobalEventId(unsigned short commandId)
    : StateCommand(commandId)
{}

template <int N>
StateCommandWithGlobalEventId<N>::~StateCommandWithGlobalEventId() = default;

template <int N>
void StateCommandWithGlobalEventId<N>::copyToInternalMetaData() const
{
    StateCommand::copyToInternalMetaData();
    elementImpl(metaData(), "id") = MetaData::Element(MetaData::Trivial_T<long long>(N));
}

template <int N>
void StateCommandWithGlobalEventId<N>::copyFromInternalMetaData()
{
    StateCommand::copyFromInternalMetaData();
    requireGlobalEventId(element<int>("id"), N);
}

template <int N>
NormalGlobalEventCommand<N>::NormalGlobalEventCommand() = default;

template <int N>
NormalGlobalEventCommand<N>::~NormalGlobalEventCommand() = default;

extern template class StateCommandWithGlobalEventId<-3>;
extern template class StateCommandWithGlobalEventId<-4>;
extern template class StateCommandWithGlobalEventId<-5>;
extern template class StateCommandWithGlobalEventId<-6>;
extern template class StateCommandWithGlobalEventId<-10>;
extern template class NormalGlobalEventCommand<-3>;
extern template class NormalGlobalEventCommand<-4>;
extern template class NormalGlobalEventCommand<-5>;
extern template class NormalGlobalEventCommand<-6>;
extern template class NormalGlobalEventCommand<-10>;

} // namespace Zelk::Msgs::LegacyState
