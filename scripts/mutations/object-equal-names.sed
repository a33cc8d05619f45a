# file: framework/element.cpp
# tests: containers_test element_test
s/nameA != nameB || //
