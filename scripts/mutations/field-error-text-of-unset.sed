# file: framework/mirrored_object.cpp
# tests: reflector_test
s/" is not set"/" is unset"/
