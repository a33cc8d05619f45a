# file: framework/element.cpp
# tests: element_test containers_test
s/no member named/no member called/
