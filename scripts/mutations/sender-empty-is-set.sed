# file: msgs/common/message.cpp
# tests: message_test
s/if (!sender\.empty())/if (true)/
