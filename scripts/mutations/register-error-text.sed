# file: msgs/legacystate/registration_commands.cpp
# tests: legacystate_command_tests
s/event ids and filter lists do not match/event ids and filters do not match/
