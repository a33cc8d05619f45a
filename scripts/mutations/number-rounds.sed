# file: framework/number.h
# tests: number_test
s/static_cast<T>(value);/static_cast<T>(value + 0.5);/
