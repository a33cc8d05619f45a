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

/// An array of the item, again and again until it has the length.
std::string arrayOf(std::string const& item, std::size_t length)
{
    std::string text = "[" + item;
    while (text.size() < length)
        text.append(",").append(item);
    return text + "]";
}

/// An object of the length whose members have short names, all different, and the value given.
std::string objectOf(std::string const& value, std::size_t length)
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

/// What is in use at most while the text is read.
std::size_t costOf(std::string const& text)
{
    std::size_t const before = inUse;
    peak = inUse;
    auto const tree = Zelk::Json::readText(text);
    return peak - before;
}

} // namespace

int main()
{
    std::string const arrays(500, '[');
    std::string objects;
    for (int depth = 0; depth < 500; ++depth)
        objects += "{\"\":";
    std::vector<std::pair<char const*, std::string>> const items = {
        {"numbers", "0"},
        {"empty arrays", "[]"},
        {"arrays of one number", "[0]"},
        {"arrays of an array", "[[0]]"},
        {"arrays in arrays", arrays + std::string(arrays.size(), ']')},
        {"arrays of thirteen numbers", "[0,0,0,0,0,0,0,0,0,0,0,0,0]"},
        {"empty objects", "{}"},
        {"objects of one member", "{\"\":0}"},
        {"objects in objects", objects + "0" + std::string(500, '}')},
        {"objects of nine members",
         "{\"\":0,\"a\":0,\"b\":0,\"c\":0,\"d\":0,\"e\":0,\"f\":0,\"g\":0,\"h\":0}"},
        {"strings too long to stand in the node", "\"0123456789abcdef\""},
    };
    // Short texts get their memory from the heap, long ones from chunks that grow and may be left half empty.
    std::size_t const lengths[] = {1, 1000, 1025, 5000, 20000, 1000000};
    auto const print = [](char const* name, std::string const& text) {
        std::cout << name << ", " << text.size() << " bytes "
                  << static_cast<double>(costOf(text)) / static_cast<double>(text.size()) << '\n';
    };
    for (std::size_t const length : lengths) {
        for (auto const& [name, item] : items)
            print(name, arrayOf(item, length));
        print("one object", objectOf("0", length));
    }
}
