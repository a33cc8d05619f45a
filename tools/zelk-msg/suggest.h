/// The nearest right word for a wrong one.
#pragma once

#include <string>
#include <vector>

namespace ZelkMsg {

/// "; did you mean 'x'?" with the nearest of `known`, or nothing when none is near.
std::string didYouMean(std::string const& word, std::vector<std::string> const& known);

} // namespace ZelkMsg
