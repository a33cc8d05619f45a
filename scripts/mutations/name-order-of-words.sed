# file: framework/names.h
# tests: containers_test
s/__builtin_bswap64(\([a-z]*\))/\1 + 0/
