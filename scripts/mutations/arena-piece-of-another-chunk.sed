# file: framework/arena.cpp
# tests: tree_memory_test parsed_tree_test
s/head->chunk != chunk_/chunk_ == nullptr/
