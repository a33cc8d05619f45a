# file: framework/element.cpp
# tests: containers_test element_test
s/if (index >= size())/if (index > size())/
