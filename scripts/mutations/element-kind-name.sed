# file: framework/element.cpp
# tests: element_test
s/"floating-point number"/"real"/
