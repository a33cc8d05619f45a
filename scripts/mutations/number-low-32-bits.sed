# file: framework/number.h
# tests: number_test
s/0xFFFFFFFF/0x7FFFFFFF/
