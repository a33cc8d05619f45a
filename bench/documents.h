/// The JSON documents that parsing and printing of whole trees is measured with. All are generated, the same
/// in every run.
#pragma once

#include <string>

namespace bench {

/// String-heavy: posts of a social network, compact, with text in several scripts, emoji and every kind of
/// escape (0.7 MB).
std::string socialFeed();

/// Number-heavy: outlines of countries as lists of coordinate pairs, compact; half of the outlines have about
/// six significant digits, half the 15 to 17 of a computed double (2.0 MB).
std::string mapOutlines();

/// Key-heavy: events, seats and prices as many small objects under numeric keys, indented (1.1 MB).
std::string catalogue();

} // namespace bench
