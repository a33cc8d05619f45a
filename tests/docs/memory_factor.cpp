/// Prints, for texts made to be as costly as can be, how many bytes of memory reading takes for each byte of
/// text: the greatest amount in use at one time while the tree is made, the text itself left out.
#include "framework/json_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <malloc.h>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

std::size_t inUse = 0;
std::size_t peak = 0;

} // namespace

void* operator new(std::size_t size)
{
    void* memory = std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    inUse += malloc_usable_size(memory);
    peak = std::max(peak, inUse);
    return memory;
}

void operator delete(void* memory) noexcept
{
    inUse -= malloc_usable_size(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace {

constexpr std::size_t length = 1000000;

/// An array of the item, again and again.
std::string arrayOf(std::string const& item)
{
    std::string text = "[" + item;
    while (text.size() < length)
        text.append(",").append(item);
    return text + "]";
}

/// An object whose members have short names, all different, and the value given.
std::string objectOf(std::string const& value)
{
    std::string text = "{\"\":" + value;
    for (unsigned int number = 0; text.size() < length; ++number) {
        std::string name;
        for (unsigned int rest = number; name.empty() || rest != 0; rest /= 64)
            name += static_cast<char>('0' + rest % 64 + (rest % 64 >= 44 ? 1 : 0)); // not the backslash
        text.append(",\"").append(name).append("\":").append(value);
    }
    return text + "}";
}

} // namespace

int main()
{
    std::string const deep(1023, '[');
    std::vector<std::pair<char const*, std::string>> const texts = {
        {"numbers", arrayOf("0")},
        {"empty arrays", arrayOf("[]")},
        {"arrays of one number", arrayOf("[0]")},
        {"arrays of an array", arrayOf("[[0]]")},
        {"arrays in arrays", arrayOf(deep + std::string(deep.size(), ']'))},
        {"empty objects", arrayOf("{}")},
        {"objects of one member", arrayOf("{\"\":0}")},
        {"objects in objects", arrayOf("{\"\":{\"\":{\"\":{\"\":0}}}}")},
        {"arrays of thirteen numbers", arrayOf("[0,0,0,0,0,0,0,0,0,0,0,0,0]")},
        {"objects of nine members",
         arrayOf("{\"\":0,\"a\":0,\"b\":0,\"c\":0,\"d\":0,\"e\":0,\"f\":0,\"g\":0,\"h\":0}")},
        {"one object", objectOf("0")},
        {"strings too long to stand in the node", arrayOf("\"0123456789abcdef\"")},
    };
    for (auto const& [name, text] : texts) {
        std::size_t const before = inUse;
        peak = inUse;
        {
            auto const tree = Zelk::Json::readText(text);
            if (inUse == before)
                return 1;
        }
        std::cout << name << ' ' << static_cast<double>(peak - before) / static_cast<double>(text.size())
                  << '\n';
    }
}
