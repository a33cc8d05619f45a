# file: msgs/legacystate/state_space_response.cpp
# tests: legacystate_responses_test
s/if (hasParam())/if (true)/
