/// The number that says which message a message is.
#pragma once

#include "framework/export.h"

namespace Zelk::Msgs {

/// A 64-bit message identifier, made of four parts.
///
///     bits   | 63 ... 48 | 47 ... 32 | 31 ... 16 | 15 ... 0 |
///     part   | first     | second    | third     | fourth   |
///
/// In state messages the first three parts are 2, 0 and 1, and the fourth is the message number.
class ZELK_EXPORT Identifier {
public:
    /// The identifier with that value.
    explicit Identifier(unsigned long long value) noexcept;
    Identifier(Identifier const&) = default;
    Identifier& operator=(Identifier const&) = default;
    ~Identifier(); // NOLINT(performance-trivially-destructible): programs link with it

    /// The value that it was built from.
    operator unsigned long long() const noexcept;

    /// The value with the given parts: toValue(2, 0, 1, 4) is 0x0002000000010004.
    static unsigned long long toValue(unsigned short first, unsigned short second, unsigned short third,
                                      unsigned short fourth) noexcept;

private:
    unsigned long long value_;
};

} // namespace Zelk::Msgs
