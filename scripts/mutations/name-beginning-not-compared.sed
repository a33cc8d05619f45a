# file: framework/names.h
# tests: containers_test
s/return haveEqualWord<Word>(a, b) \&\& /return /
