/// The failures of the element tree and of reflected fields.
#pragma once

#include "framework/export.h"

#include <stdexcept>
#include <string>

namespace Zelk::MetaData {

/// Base of every failure that the element tree or a reflected field reports.
class ZELK_EXPORT Error : public std::runtime_error {
public:
    /// An error whose what() is `text`.
    explicit Error(std::string const& text);
    Error(Error const&) = default;
    Error& operator=(Error const&) = default;
    ~Error() override;
};

/// A node was used as a kind that it is not; what() is for example "expected integer, found string".
class ZELK_EXPORT TypeError : public Error {
public:
    using Error::Error;
    TypeError(TypeError const&) = default;
    TypeError& operator=(TypeError const&) = default;
    ~TypeError() override;
};

/// A required member is not in its object; what() is for example "no member named \"id\"".
class ZELK_EXPORT MissingMemberError : public Error {
public:
    using Error::Error;
    MissingMemberError(MissingMemberError const&) = default;
    MissingMemberError& operator=(MissingMemberError const&) = default;
    ~MissingMemberError() override;
};

/// The value of a reflected field was asked for while the field was not set; what() names the accessor that
/// refused and the key of the field.
class ZELK_EXPORT UnsetFieldError : public Error {
public:
    using Error::Error;
    UnsetFieldError(UnsetFieldError const&) = default;
    UnsetFieldError& operator=(UnsetFieldError const&) = default;
    ~UnsetFieldError() override;
};

} // namespace Zelk::MetaData
