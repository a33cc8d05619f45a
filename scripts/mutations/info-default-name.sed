# file: msgs/msgidstate/info.h
# tests: info_test
s/"UnknownState"/"Unknown"/
