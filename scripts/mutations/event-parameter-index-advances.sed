# file: msgs/legacystate/metadata_response.cpp
# tests: legacystate_responses_test
s/put(target\["param0_name"\], param\.name());/put(target["param" + std::to_string(\&param - \&*params_.begin()) + "_name"], param.name());/
