# file: framework/serializable.cpp
# tests: serializable_test
s/^    tree\.keep();//
