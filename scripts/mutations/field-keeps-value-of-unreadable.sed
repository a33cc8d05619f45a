# file: framework/reflector.h
# tests: reflector_test
s/^        reset();/        uninit();/
