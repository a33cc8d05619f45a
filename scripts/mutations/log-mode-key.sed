# file: msgs/legacystate/subscriber_commands.cpp
# tests: legacystate_command_tests
s/"value"/"Value"/
