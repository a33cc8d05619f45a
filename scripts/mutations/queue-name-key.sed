# file: msgs/legacystate/queue_mapping_app_info.cpp
# tests: legacystate_responses_test
s/"body", "name"/"body", "nam\\x65s"/;s/element("body", "nam\\x65s")/elementImpl(metaData()["body"], "names")/
