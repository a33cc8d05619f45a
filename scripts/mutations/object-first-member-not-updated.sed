# file: framework/containers.cpp
# tests: containers_test
s/if (&parent == tree._M_header._M_left)/if (false)/
