/// The measured work done with this library: the message object itself is what is read into and written from.
#pragma once

#include "bench/verify.h"
#include "framework/json_text.h"

#include <string>

namespace bench {

/// Text to tree and tree to text.
struct OurTree {
    static constexpr char const* name = "ours";
    static constexpr Numbers numbers = Numbers::exact;
    using Tree = Zelk::MetaData::Element;

    static Tree parse(std::string const& text) { return Zelk::Json::readText(text); }
    static std::string print(Tree const& tree) { return Zelk::Json::printText(tree); }
};

} // namespace bench
