# file: msgs/legacystate/metadata_response.cpp
# tests: legacystate_responses_test
s/"eventlist"/"eventsList"/;s/element("body", "eventsList")/elementImpl(metaData()["body"], "eventsList")/
