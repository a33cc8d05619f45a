/// The response envelope of the legacy state protocol. Responses with members of their own derive from
/// StateResponseWithEventId<N> and write them inside "body".
#pragma once

#include "framework/export.h"
#include "msgs/legacystate/state_message.h"

#include <string>

namespace Zelk::Json {
// "body" with "id", with "name", with "eventlist" or "statelist".
extern template MetaData::Element& PartiallyDeserializable::element<5, 3>(char const (&)[5],
                                                                          char const (&)[3]) const;
extern template MetaData::Element& PartiallyDeserializable::element<5, 5>(char const (&)[5],
                                                                          char const (&)[5]) const;
extern template MetaData::Element& PartiallyDeserializable::element<5, 10>(char const (&)[5],
                                                                           char const (&)[10]) const;
} // namespace Zelk::Json

namespace Zelk::Msgs::LegacyState {

/// A response: a header and the event id that it answers.
///
///     {"body":{"id":5},"header":"h"}
///
/// Reading is strict: MetaData::TypeError when a member is missing or is not of its kind, integers included.
/// It is not transactional, here and in every response: members read before a failure keep their new values.
class ZELK_EXPORT StateResponse : public StateMessage {
public:
    StateResponse();
    ~StateResponse() override;

    /// "header", free text of the sender.
    std::string const& header() const { return header_; }
    void setHeader(std::string const& header) { header_ = header; }

    void copyToInternalMetaData() const override;
    void copyFromInternalMetaData() override;

    /// "body"/"id". What is written is what this returns, overridden or not.
    virtual int eventId() const;
    /// Stores any value; reading calls it, overridden or not.
    virtual void setEventId(int eventId);

protected:
    /// Throws std::runtime_error "event ID does not match expected value" unless the two are equal.
    static void requireEventId(int eventId, int expected);

private:
    int eventId_ = 0;
    std::string header_;
};

/// Base of responses bound to the global event id N, a negative number.
///
///     {"body":{"id":-1},"header":"h"}
///
/// Reading throws std::runtime_error "event ID does not match expected value" unless the low 32 bits of
/// "body"/"id" are N; the header has been replaced by then. It throws MetaData::TypeError as StateResponse
/// does.
template <int N>
class ZELK_EXPORT StateResponseWithEventId : public virtual StateResponse {
public:
    StateResponseWithEventId();
    ~StateResponseWithEventId() override;

    /// N.
    int eventId() const override;
    /// Changes nothing; throws std::runtime_error "event ID does not match expected value" unless given N.
    void setEventId(int eventId) override;
};

template <int N>
StateResponseWithEventId<N>::StateResponseWithEventId() = default;

template <int N>
StateResponseWithEventId<N>::~StateResponseWithEventId() = default;

template <int N>
int StateResponseWithEventId<N>::eventId() const
{
    return N;
}

template <int N>
void StateResponseWithEventId<N>::setEventId(int eventId)
{
    requireEventId(eventId, N);
}

extern template class StateResponseWithEventId<-1>;
extern template class StateResponseWithEventId<-2>;
extern template class StateResponseWithEventId<-7>;
extern template class StateResponseWithEventId<-9>;

} // namespace Zelk::Msgs::LegacyState
