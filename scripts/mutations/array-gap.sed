# file: framework/element.cpp
# tests: containers_test element_test
s/items\.resize(std::size_t{index} + 1)/items.resize(std::size_t{index} + 2)/
