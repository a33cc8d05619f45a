# file: framework/reflector.h
# tests: reflector_test
s/^    this->init();//
