# file: framework/names.h
# tests: containers_test
s/return word(a.data()) == word(b.data()) \&\& /return /
