# file: framework/loan.h
# tests: serializable_test
s/if (lender_ != nullptr)/if (false)/
