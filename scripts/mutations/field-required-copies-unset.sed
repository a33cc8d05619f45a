# file: framework/reflector.h
# tests: reflector_test
s/if (isRequired())/if (false)/
