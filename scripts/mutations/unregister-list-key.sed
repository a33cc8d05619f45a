# file: msgs/legacystate/registration_commands.cpp
# tests: legacystate_command_tests
s/events_\.copyToMetaData(element("eventlist", "ids"))/events_.copyToMetaData(entry(*this, "eventlist"))/
