#include "framework/error.h"

namespace Zelk::MetaData {

Error::Error(std::string const& text) : std::runtime_error(text) {}

// One home for each virtual table, so that an error thrown by one library is caught by type in another.
Error::~Error() = default;
TypeError::~TypeError() = default;
MissingMemberError::~MissingMemberError() = default;
UnsetFieldError::~UnsetFieldError() = default;

} // namespace Zelk::MetaData
