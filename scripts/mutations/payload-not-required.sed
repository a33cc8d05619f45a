# file: msgs/common/payload_message.h
# tests: payload_message_test info_test
s/"Data", true/"Data", false/
