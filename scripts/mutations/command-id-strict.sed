# file: msgs/legacystate/state_command.cpp
# tests: legacystate_command_tests
s/commandId_ = element<unsigned int>("commandid");/commandId_ = static_cast<unsigned int>(low32(entry(*this, "commandid").asInt64()));/
