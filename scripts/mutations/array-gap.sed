# file: framework/element.cpp
# tests: containers_test element_test
s/growTo(std::size_t{index} + 1)/growTo(std::size_t{index} + 2)/
