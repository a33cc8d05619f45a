# file: msgs/legacystate/state_response.cpp
# tests: legacystate_responses_test
s/low32(element("body", "id")\.asInt64())/MetaData::numberAs<int>(element("body", "id"))/
