# file: msgs/common/message.cpp
# tests: message_test
s/found != members.end() \&\& //;s/static_cast<unsigned long long>(found->element().asInt64()) != identifier_/false/
