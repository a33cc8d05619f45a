# file: msgs/legacystate/registration_commands.cpp
# tests: legacystate_command_tests
s/put(ids\[index\], event\.id());/put(ids[index], event.filterType());/
