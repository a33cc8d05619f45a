# file: framework/arena.cpp
# tests: tree_memory_test parsed_tree_test
s/std::exchange(counted_, 0)/std::exchange(counted_, 0) - 1/
