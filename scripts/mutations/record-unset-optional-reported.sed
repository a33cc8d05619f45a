# file: framework/mirrored_object.cpp
# tests: mirrored_object_test
s/field->isRequired() && //
