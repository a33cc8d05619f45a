# file: msgs/legacystate/subscriber_commands.cpp
# tests: legacystate_command_tests
s/setFilterFreq(element<double>("filterFreq"));/setFilterFreq(entry(*this, "filterFreq").asDouble());/
