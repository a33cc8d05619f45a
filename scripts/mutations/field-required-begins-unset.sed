# file: framework/mirrored_object.cpp
# tests: reflector_test mirrored_object_test
s/set_(required)/set_(false)/
