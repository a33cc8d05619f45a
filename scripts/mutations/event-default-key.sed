# file: msgs/legacystate/metadata_response.cpp
# tests: legacystate_responses_test
s/"param0_default"/"param0_value"/
