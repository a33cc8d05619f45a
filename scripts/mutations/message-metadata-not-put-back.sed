# file: framework/serializable.cpp
# tests: serializable_test
s/internal_ = std::move(former);//
