# file: framework/containers.cpp
# tests: tree_memory_test containers_test
s/places\[chunks\] = chunkEnd = formerEnd;/places[chunks] = chunkEnd;/
