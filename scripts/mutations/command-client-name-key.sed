# file: msgs/legacystate/state_command.cpp
# tests: legacystate_command_tests
s/"clientname"/"clientName"/
