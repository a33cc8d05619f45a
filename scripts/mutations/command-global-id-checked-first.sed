# file: msgs/legacystate/state_command.h
# tests: legacystate_command_tests
/requireGlobalEventId(element<int>("id"), N);/d;/^void StateCommandWithGlobalEventId<N>::copyFromInternalMetaData/{n;s/{/{ requireGlobalEventId(element<int>("id"), N);/}
