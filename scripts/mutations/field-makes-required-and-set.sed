# file: framework/mirrored_object.cpp
# tests: reflector_test mirrored_object_test
s/    required_ = true;/    required_ = set_ = true;/
