# file: msgs/legacystate/registration_commands.cpp
# tests: legacystate_command_tests
s/ids\.size() != types\.size() || //
