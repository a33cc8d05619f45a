# file: msgs/common/message.cpp
# tests: message_test
s/if (found != members.end() && /if (found == members.end() || /
