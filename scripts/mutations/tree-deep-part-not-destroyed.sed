# file: framework/containers.cpp
# tests: tree_depth_test tree_memory_test
s/pending_ = inner;/inner->nextToDestroy = nullptr;/
