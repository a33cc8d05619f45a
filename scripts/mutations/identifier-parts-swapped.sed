# file: msgs/common/identifier.cpp
# tests: identifier_test
s/(third) << 16 | fourth/(fourth) << 16 | third/
