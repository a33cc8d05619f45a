# file: msgs/msgidstate/state_message.h
# tests: msgid_state_message_test info_test
s/toValue(2, 0, 1, number)/toValue(2, 1, 0, number)/
