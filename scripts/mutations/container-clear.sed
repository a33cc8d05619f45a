# file: framework/element.cpp
# tests: containers_test element_test
s/^    Detail::destroy(std::exchange(store_, nullptr));//
