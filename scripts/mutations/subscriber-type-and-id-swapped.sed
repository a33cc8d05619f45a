# file: msgs/legacystate/subscriber_commands.cpp
# tests: legacystate_command_tests
s/put(entry(\*this, "filterType"), filterType())/put(entry(*this, "filterType"), eventId())/
