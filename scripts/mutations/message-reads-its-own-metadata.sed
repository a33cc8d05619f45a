# file: framework/serializable.cpp
# tests: serializable_test
s/if (&source == &internal_)/if (false)/
