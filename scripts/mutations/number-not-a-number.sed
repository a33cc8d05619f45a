# file: framework/number.h
# tests: number_test
s/^        return 0;/        return 1;/
