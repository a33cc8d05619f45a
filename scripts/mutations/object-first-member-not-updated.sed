# file: framework/containers.h
# tests: containers_test
s/if (&parent == header._M_left)/if (false)/
