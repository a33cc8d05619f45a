# file: framework/loan.h
# tests: serializable_test
s/return loan->writer_ == &writer ? loan : nullptr;/return loan;/
