/// Where a member stands in a JSON text.
#pragma once

#include <cstddef>
#include <string_view>

namespace ZelkMsg {

/// Offset of the value at `path` ("/body/statelist/0/name") in a text that is JSON, or of the nearest value
/// around it that is there. Of a repeated name the last one counts, as for the reader.
std::size_t offsetOf(std::string_view text, std::string_view path);

} // namespace ZelkMsg
