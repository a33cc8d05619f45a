# file: msgs/common/message.cpp
# tests: message_test
s/SenderID = sender;/ReceiverID = sender;/
