# file: msgs/common/message.cpp
# tests: message_test
s/message identifier does not match/message id does not match/
