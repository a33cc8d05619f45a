# file: msgs/legacystate/state_space_response.cpp
# tests: legacystate_responses_test
s/setParamType(members\["parametertype"\]\.asString());/if (members.find("parametertype") != members.end()) setParamType(members["parametertype"].asString());/
