# file: msgs/common/payload_message.h
# tests: payload_message_test info_test
s/BaseMessage(number)/BaseMessage(number ^ 1)/
