/// How a message's tree gets from copyToMetaData into text without being copied.
///
/// The text forms of writing go through copyToMetaData or moveToMetaData, which a message answers from its
/// internal metadata object. They pass a Loan: an empty node that the message which is being written may fill
/// with its own tree for the time of the printing. To everyone else, messages within that message included,
/// it is an empty node like any other.
#pragma once

#include "framework/containers.h"
#include "framework/element.h"
#include "framework/serializable.h"

namespace Zelk::Json::Detail {

class Loan : public MetaData::Element {
public:
    /// A loan that only `writer` may give.
    explicit Loan(Serializable const& writer) noexcept : writer_(&writer)
    {
        MetaData::Detail::TreeAccess::setTakesLoan(*this);
    }
    Loan(Loan const&) = delete;
    Loan& operator=(Loan const&) = delete;
    ~Loan()
    {
        if (lender_ != nullptr)
            *lender_ = std::move(static_cast<MetaData::Element&>(*this));
    }

    /// The loan that `target` is and that `writer` may give, or null.
    static Loan* of(MetaData::Element& target, Serializable const& writer) noexcept
    {
        if (!MetaData::Detail::TreeAccess::takesLoan(target))
            return nullptr;
        auto* const loan = static_cast<Loan*>(&target);
        return loan->writer_ == &writer ? loan : nullptr;
    }

    /// Takes the tree of `lender`, which gets it back when the loan ends.
    void borrow(MetaData::Element& lender) noexcept
    {
        lender_ = &lender;
        MetaData::Element::operator=(std::move(lender));
    }

    /// Makes the loan a gift: nothing is given back.
    void keep() noexcept { lender_ = nullptr; }

private:
    Serializable const* writer_;
    MetaData::Element* lender_ = nullptr;
};

} // namespace Zelk::Json::Detail
