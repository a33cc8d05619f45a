# file: framework/containers.h
# tests: parsed_tree_test
/^        chunkEnd = next;/{n;s/chunkEnd - chunkItems/chunkEnd - chunkItems + 1/}
