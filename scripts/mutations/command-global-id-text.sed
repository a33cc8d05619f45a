# file: msgs/legacystate/state_command.cpp
# tests: legacystate_command_tests
s/"event id does not match/"event ID does not match/
