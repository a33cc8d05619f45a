# file: msgs/legacystate/state_response.cpp
# tests: legacystate_responses_test
s/"event ID does not match/"event id does not match/
