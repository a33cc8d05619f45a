# file: msgs/common/message.cpp
# tests: message_test
s/"MsgId"/"MsgID"/
