# file: framework/reflector.h
# tests: reflector_test mirrored_object_test
s/if (!initialized())$/if (false)/
