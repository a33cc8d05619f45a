# file: msgs/legacystate/queue_mapping_app_info.cpp
# tests: legacystate_responses_test
/Kept on purpose/{n;s/copyToInternalMetaData/copyFromInternalMetaData/}
