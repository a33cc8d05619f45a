# file: framework/names.h
# tests: containers_test
s/i + sizeof(Word) < size;/i + sizeof(Word) < 0;/
