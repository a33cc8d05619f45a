# file: msgs/legacystate/metadata_response.cpp
# tests: legacystate_responses_test
s/params_\.clear();//
