#include "msgs/common/identifier.h"

namespace Zelk::Msgs {

Identifier::Identifier(unsigned long long value) noexcept : value_(value) {}

Identifier::~Identifier() = default;

Identifier::operator unsigned long long() const noexcept
{
    return value_;
}

unsigned long long Identifier::toValue(unsigned short first, unsigned short second, unsigned short third,
                                       unsigned short fourth) noexcept
{
    unsigned long long const high = static_cast<unsigned int>(first) << 16 | second;
    unsigned long long const low = static_cast<unsigned int>(third) << 16 | fourth;
    return high << 32 | low;
}

} // namespace Zelk::Msgs
