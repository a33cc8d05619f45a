# file: framework/element.cpp
# tests: element_test
s/if (a\.GetElementType() != b\.GetElementType())/if (false)/
