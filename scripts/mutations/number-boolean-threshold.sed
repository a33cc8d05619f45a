# file: framework/number.h
# tests: number_test
s/> 1e-05/>= 1e-05/
