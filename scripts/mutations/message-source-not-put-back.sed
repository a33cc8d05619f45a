# file: framework/serializable.cpp
# tests: serializable_test
s/^        source = std::move(internal_);//
