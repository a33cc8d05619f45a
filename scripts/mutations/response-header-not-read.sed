# file: msgs/legacystate/state_response.cpp
# tests: legacystate_responses_test
s/setHeader(entry.*//
