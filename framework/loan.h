/// How a message's tree gets from copyToMetaData into text without being copied.
///
/// The text forms of writing go through copyToMetaData or moveToMetaData, which a message answers from its
/// internal metadata object. They pass a Loan: an empty node that a message may fill with its own tree for
/// the time of the printing. To everyone else it is an empty node like any other.
#pragma once

#include "framework/containers.h"
#include "framework/element.h"

namespace Zelk::Json::Detail {

class Loan : public MetaData::Element {
public:
    Loan() noexcept { MetaData::Detail::TreeAccess::setTakesLoan(*this); }
    Loan(Loan const&) = delete;
    Loan& operator=(Loan const&) = delete;
    ~Loan()
    {
        if (lender_ != nullptr)
            *lender_ = std::move(static_cast<MetaData::Element&>(*this));
    }

    /// The loan that `target` is, or null.
    static Loan* of(MetaData::Element& target) noexcept
    {
        return MetaData::Detail::TreeAccess::takesLoan(target) ? static_cast<Loan*>(&target) : nullptr;
    }

    /// Takes the tree of `lender`, which gets it back when the loan ends.
    void borrow(MetaData::Element& lender) noexcept
    {
        MetaData::Element::operator=(std::move(lender));
        lender_ = &lender;
    }

    /// Makes the loan a gift: nothing is given back.
    void keep() noexcept { lender_ = nullptr; }

private:
    MetaData::Element* lender_ = nullptr;
};

} // namespace Zelk::Json::Detail
