# file: framework/mirrored_object.cpp
# tests: mirrored_object_test
s/^    static_cast<void>(static_cast<Object&>(target)).*//
